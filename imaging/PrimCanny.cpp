// Edge map from two gradients: thinning across the gradient, then hysteresis along the edge.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "imaging/Prim.h"

namespace {

constexpr uint8_t kNone = 0;
constexpr uint8_t kWeak = 1;
constexpr uint8_t kEdge = 255;

/// Row y of an image whose rows lie `step` bytes apart.
const int16_t* Row(const int16_t* image, int32_t step, ptrdiff_t y) {
    return reinterpret_cast<const int16_t*>(reinterpret_cast<const char*>(image) + y * step);
}

}  // namespace

PrimStatus PrimCannyGetBufferSize(int32_t width, int32_t height, int32_t* size) {
    if (size == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    // The stack of edge pixels whose neighbours are still to be visited. Each pixel enters it once.
    const int64_t bytes = int64_t{width} * height * int64_t{sizeof(uint32_t)} + 3;
    if (bytes > std::numeric_limits<int32_t>::max()) return kPrimSizeError;
    *size = static_cast<int32_t>(bytes);
    return kPrimOk;
}

PrimStatus PrimCanny16s8u(const int16_t* dx, int32_t dxStep, const int16_t* dy, int32_t dyStep, uint8_t* dst,
                          int32_t dstStep, int32_t width, int32_t height, float lowThresh, float highThresh,
                          uint8_t* buffer) {
    if (dx == nullptr || dy == nullptr || dst == nullptr || buffer == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (dxStep < int64_t{width} * 2 || dyStep < int64_t{width} * 2 || dstStep < width) return kPrimStepError;
    if (dxStep % 2 != 0 || dyStep % 2 != 0) return kPrimAlignmentError;
    if (!(highThresh >= lowThresh)) return kPrimThresholdError;

    const auto magnitude = [&](ptrdiff_t x, ptrdiff_t y) {
        if (x < 0 || y < 0 || x >= width || y >= height) return 0.0;
        const double gx = Row(dx, dxStep, y)[x];
        const double gy = Row(dy, dyStep, y)[x];
        return std::sqrt(gx * gx + gy * gy);
    };

    auto* stack = reinterpret_cast<uint32_t*>((reinterpret_cast<uintptr_t>(buffer) + 3) & ~uintptr_t{3});
    size_t depth = 0;
    for (ptrdiff_t y = 0; y < height; ++y) {
        uint8_t* to = dst + y * dstStep;
        for (ptrdiff_t x = 0; x < width; ++x) {
            const int gx = Row(dx, dxStep, y)[x];
            const int gy = Row(dy, dyStep, y)[x];
            const double ax = std::abs(gx);
            const double ay = std::abs(gy);
            // The step across the edge. dx grows to the left and dy downwards.
            ptrdiff_t sx = 1;
            ptrdiff_t sy = 0;
            if (ay >= 2.414213562373095 * ax) {
                sx = 0;
                sy = 1;
            } else if (ay > 0.41421356237309503 * ax) {
                sy = (gx < 0) == (gy < 0) ? -1 : 1;
            }
            const double here = magnitude(x, y);
            const bool survives = here > magnitude(x - sx, y - sy) && here >= magnitude(x + sx, y + sy);
            to[x] = !survives || !(here > double{lowThresh}) ? kNone
                    : here > double{highThresh}              ? kEdge
                                                             : kWeak;
            if (to[x] == kEdge) stack[depth++] = static_cast<uint32_t>(y * width + x);
        }
    }
    while (depth > 0) {
        const uint32_t at = stack[--depth];
        const ptrdiff_t x = at % static_cast<uint32_t>(width);
        const ptrdiff_t y = at / static_cast<uint32_t>(width);
        for (ptrdiff_t ny = y > 0 ? y - 1 : y; ny <= y + 1 && ny < height; ++ny) {
            for (ptrdiff_t nx = x > 0 ? x - 1 : x; nx <= x + 1 && nx < width; ++nx) {
                uint8_t& neighbour = dst[ny * dstStep + nx];
                if (neighbour != kWeak) continue;
                neighbour = kEdge;
                stack[depth++] = static_cast<uint32_t>(ny * width + nx);
            }
        }
    }
    for (ptrdiff_t y = 0; y < height; ++y) {
        uint8_t* to = dst + y * dstStep;
        for (ptrdiff_t x = 0; x < width; ++x) to[x] = to[x] == kEdge ? kEdge : kNone;
    }
    return kPrimOk;
}
