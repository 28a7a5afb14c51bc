// Edge map from two gradients: thinning across the edge, then hysteresis along it.
//
// Works on squared magnitudes, which are integers of up to 32 bits. Different squares have different roots in
// double precision, so comparing squares equals comparing magnitudes.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRow.h"

using prim::CheckAlignment;
using prim::CheckPointers;
using prim::CheckSize;
using prim::CheckStep;
using prim::FirstError;
using prim::Row;

namespace {

// Intermediate states of pixels. Weak pixels become edges if they touch one.
constexpr uint8_t kNone = 0;
constexpr uint8_t kWeak = 1;
constexpr uint8_t kEdge = 255;

/// The caller's buffer: three lines of squared magnitudes with a 0 on either side, and a stack that every
/// pixel enters at most once.
int64_t BufferEntries(int32_t width, int32_t height) {
    return 3 * (int64_t{width} + 2) + int64_t{width} * height;
}

constexpr int64_t kEntrySize = sizeof(uint32_t);
constexpr size_t kAlign = alignof(uint32_t);

/// The smallest squared magnitude whose root is above the threshold.
uint32_t FirstSquareAbove(float threshold) {
    constexpr double kMost = 2.0 * 32768 * 32768;
    const double limit = threshold;
    if (limit < 0) {
        return 0;
    }
    // The product is exact, so its whole part has a root that is not above.
    double square = std::min(std::floor(limit * limit), kMost + 1);
    while (square <= kMost && std::sqrt(square) <= limit) {
        ++square;
    }
    return static_cast<uint32_t>(square);
}

SE_INLINE uint32_t Magnitude(int16_t v) {
    return static_cast<uint32_t>(v < 0 ? -v : v);
}

SE_INLINE void SquaredMagnitudes(const int16_t* SE_RESTRICT dx, const int16_t* SE_RESTRICT dy,
                                 uint32_t* SE_RESTRICT squares, ptrdiff_t width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        squares[x] = static_cast<uint32_t>(dx[x] * dx[x]) + static_cast<uint32_t>(dy[x] * dy[x]);
    }
}

/// Keeps the pixels of a row that exceed the neighbour on one side of the gradient's sector and are not below
/// that on the other. The sectors meet where one component is the tangent of 22.5 degrees, root 2 - 1, times
/// the other: b <= (root 2 - 1) * a is the same as b * (2 * a + b) <= a * a.
SE_INLINE void ThinRow(const int16_t* SE_RESTRICT dx, const int16_t* SE_RESTRICT dy,
                       const uint32_t* SE_RESTRICT above, const uint32_t* SE_RESTRICT at,
                       const uint32_t* SE_RESTRICT below, uint8_t* SE_RESTRICT map, ptrdiff_t width,
                       uint32_t weak, uint32_t strong) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        const uint32_t a = Magnitude(dx[x]);
        const uint32_t b = Magnitude(dy[x]);
        const bool horizontal = b * (2 * a + b) <= a * a;
        const bool vertical = a * (2 * b + a) <= b * b;
        const bool rising = (dx[x] ^ dy[x]) >= 0;  // dx grows to the left, dy downwards

        const uint32_t here = at[x];
        const uint32_t left = at[x - 1];
        const uint32_t right = at[x + 1];
        const uint32_t up = above[x];
        const uint32_t upLeft = above[x - 1];
        const uint32_t upRight = above[x + 1];
        const uint32_t down = below[x];
        const uint32_t downLeft = below[x - 1];
        const uint32_t downRight = below[x + 1];
        const uint32_t before = horizontal ? left : vertical ? up : rising ? downLeft : upLeft;
        const uint32_t after = horizontal ? right : vertical ? down : rising ? upRight : downRight;
        const uint8_t kind = here >= strong ? kEdge : here >= weak ? kWeak : kNone;
        const bool survives = (here > before) & (here >= after);
        map[x] = survives ? kind : kNone;
    }
}

SE_INLINE void DropWeak(uint8_t* map, ptrdiff_t width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        map[x] = map[x] == kEdge ? kEdge : kNone;
    }
}

/// Propagates edges to weak neighbours. The stack holds pixels as y * width + x.
void FollowEdges(uint8_t* map, ptrdiff_t step, uint32_t width, uint32_t height, uint32_t* stack,
                 size_t depth) {
    while (depth > 0) {
        const uint32_t pixel = stack[--depth];
        const uint32_t x = pixel % width;
        const uint32_t y = pixel / width;
        for (uint32_t ny = y - (y > 0 ? 1 : 0); ny <= y + 1 && ny < height; ++ny) {
            uint8_t* const row = Row(map, step, static_cast<ptrdiff_t>(ny));
            for (uint32_t nx = x - (x > 0 ? 1 : 0); nx <= x + 1 && nx < width; ++nx) {
                if (row[nx] == kWeak) {
                    row[nx] = kEdge;
                    stack[depth++] = ny * width + nx;
                }
            }
        }
    }
}

}  // namespace

PrimStatus PrimCannyGetBufferSize(int32_t width, int32_t height, int32_t* size) {
    if (const PrimStatus status = FirstError(CheckPointers(size), CheckSize(width, height))) {
        return status;
    }
    const int64_t entries = BufferEntries(width, height);
    constexpr int64_t kMostEntries = (std::numeric_limits<int32_t>::max() - int64_t{kAlign}) / kEntrySize;
    if (entries > kMostEntries) {
        return kPrimSizeError;
    }
    *size = static_cast<int32_t>(entries * kEntrySize + int64_t{kAlign} - 1);
    return kPrimOk;
}

PrimStatus PrimCanny16s8u(const int16_t* dx, int32_t dxStep, const int16_t* dy, int32_t dyStep, uint8_t* dst,
                          int32_t dstStep, int32_t width, int32_t height, float lowThresh, float highThresh,
                          uint8_t* buffer) {
    if (const PrimStatus status =
            FirstError(CheckPointers(dx, dy), CheckPointers(dst, buffer), CheckSize(width, height),
                       CheckStep(dxStep, width, 2), CheckStep(dyStep, width, 2), CheckStep(dstStep, width),
                       CheckAlignment(dxStep, 2), CheckAlignment(dyStep, 2),
                       highThresh >= lowThresh ? kPrimOk : kPrimThresholdError)) {
        return status;
    }
    // Row y of the magnitudes is line (y + 3) % 3. Outside the region they are 0.
    const size_t upToAligned = (0 - reinterpret_cast<uintptr_t>(buffer)) & (kAlign - 1);
    auto* const entries = reinterpret_cast<uint32_t*>(buffer + upToAligned);
    const ptrdiff_t line = ptrdiff_t{width} + 2;
    uint32_t* const stack = entries + 3 * line;
    std::fill(entries, stack, 0);
    const auto squares = [&](ptrdiff_t y) { return entries + (y + 3) % 3 * line + 1; };
    const auto enter = [&](ptrdiff_t y) {
        if (y < height) {
            AtLevel<SquaredMagnitudes>(Row(dx, dxStep, y), Row(dy, dyStep, y), squares(y), width);
        } else {
            std::fill_n(squares(y), width, 0);
        }
    };

    const uint32_t weak = FirstSquareAbove(lowThresh);
    const uint32_t strong = FirstSquareAbove(highThresh);
    size_t depth = 0;
    enter(0);
    for (ptrdiff_t y = 0; y < height; ++y) {
        enter(y + 1);
        uint8_t* const map = Row(dst, dstStep, y);
        AtLevel<ThinRow>(Row(dx, dxStep, y), Row(dy, dyStep, y), squares(y - 1), squares(y), squares(y + 1),
                         map, width, weak, strong);
        const auto first = static_cast<uint32_t>(y * width);
        for (uint32_t x = 0; x < static_cast<uint32_t>(width); ++x) {
            if (map[x] == kEdge) {
                stack[depth++] = first + x;
            }
        }
    }
    FollowEdges(dst, dstStep, static_cast<uint32_t>(width), static_cast<uint32_t>(height), stack, depth);
    for (ptrdiff_t y = 0; y < height; ++y) {
        AtLevel<DropWeak>(Row(dst, dstStep, y), width);
    }
    return kPrimOk;
}
