#include "effects/distortion/LinearWarp.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "imaging/PerLevel.h"

namespace {

constexpr int32_t kStretch = 64;  // pixels mixed at once

/// Splits a coordinate into whole part and fraction. The fraction is exact in single precision: it is a
/// multiple of the coordinate's last place, and no larger than the coordinate.
struct Tap {
    int32_t index;
    float fraction;

    Tap(float position, int32_t last) {
        index = static_cast<int32_t>(double{position} + 1e-7);
        if (index < last) {
            fraction = position - static_cast<float>(index);
        } else {
            index = last - 1;
            fraction = 1.0F;
        }
    }
};

/// The neighbours of a stretch of pixels: two rows of pairs, the left pixel in the low byte.
struct Neighbours {
    std::array<uint16_t, kStretch> upper, lower;
};

SE_INLINE uint16_t LoadPair(const uint8_t* pixels) {
    return static_cast<uint16_t>(pixels[0] | pixels[1] << 8);
}

template <class Real>
SE_INLINE Real Mix(uint16_t upper, uint16_t lower, Real fx, Real fy) {
    const auto along = [fx](int32_t pair) {
        const int32_t left = pair & 255, right = pair >> 8;
        return static_cast<Real>(left) + static_cast<Real>(right - left) * fx;
    };
    const Real top = along(upper), bottom = along(lower);
    return Real{0.5} + top + fy * (bottom - top);
}

/// The reference result: mixed in double precision and truncated.
SE_INLINE void MixExactly(const Neighbours& pixels, const float* SE_RESTRICT fractionX,
                          const float* SE_RESTRICT fractionY, int32_t count, uint8_t* SE_RESTRICT dst) {
    for (int32_t i = 0; i < count; ++i) {
        const auto k = static_cast<size_t>(i);
        dst[i] = static_cast<uint8_t>(static_cast<int32_t>(
            Mix(pixels.upper[k], pixels.lower[k], double{fractionX[i]}, double{fractionY[i]})));
    }
}

/// The mix in single precision, at half the cost. Its rounding errors add up to less than 2^-13. Returns
/// false if a value lies so close to a whole number that the error could change the truncated result.
SE_INLINE bool MixQuickly(const Neighbours& pixels, const float* SE_RESTRICT fractionX,
                          const float* SE_RESTRICT fractionY, int32_t count, uint8_t* SE_RESTRICT dst) {
    constexpr float kMargin = 0x1p-12F;
    int32_t doubtful = 0;
    for (int32_t i = 0; i < count; ++i) {
        const auto k = static_cast<size_t>(i);
        const float value = Mix(pixels.upper[k], pixels.lower[k], fractionX[i], fractionY[i]);
        const auto whole = static_cast<int32_t>(value);
        const float rest = value - static_cast<float>(whole);
        dst[i] = static_cast<uint8_t>(whole);
        doubtful |= static_cast<int32_t>(rest < kMargin) | static_cast<int32_t>(rest > 1.0F - kMargin);
    }
    return doubtful == 0;
}

}  // namespace

LinearWarp::LinearWarp(const RemapTable& table) : width_(table.width) {
    const int32_t lastX = table.width - 1, lastY = table.height - 1;
    const auto moves = [&](int32_t x, int32_t y) {
        const float sx = table.XRow(y)[x], sy = table.YRow(y)[x];
        const bool inside =
            sx >= 0 && sx <= static_cast<float>(lastX) && sy >= 0 && sy <= static_cast<float>(lastY);
        return inside && (sx != static_cast<float>(x) || sy != static_cast<float>(y));
    };
    for (int32_t y = 0; y <= lastY; ++y) {
        int32_t first = 0, end = table.width;
        while (first < end && !moves(first, y)) ++first;
        while (first < end && !moves(end - 1, y)) --end;
        if (first == end) continue;
        spans_.push_back({y * table.width + first, end - first});
        for (int32_t x = first; x < end; ++x) {
            const bool moved = moves(x, y);
            const Tap tapX(moved ? table.XRow(y)[x] : static_cast<float>(x), lastX);
            const Tap tapY(moved ? table.YRow(y)[x] : static_cast<float>(y), lastY);
            source_.push_back(tapY.index * table.width + tapX.index);
            fractionX_.push_back(tapX.fraction);
            fractionY_.push_back(tapY.fraction);
        }
    }
}

void LinearWarp::Apply(const uint8_t* src, uint8_t* dst) const {
    const int32_t* source = source_.data();
    const float* fractionX = fractionX_.data();
    const float* fractionY = fractionY_.data();
    Neighbours pixels;
    for (const Span& span : spans_) {
        for (int32_t done = 0; done < span.count; done += kStretch) {
            const int32_t count = std::min(kStretch, span.count - done);
            uint8_t* const out = dst + span.firstPixel + done;
            for (int32_t i = 0; i < count; ++i) {
                pixels.upper[static_cast<size_t>(i)] = LoadPair(src + source[i]);
                pixels.lower[static_cast<size_t>(i)] = LoadPair(src + source[i] + width_);
            }
            if (!AtLevel<MixQuickly>(pixels, fractionX, fractionY, count, out)) {
                AtLevel<MixExactly>(pixels, fractionX, fractionY, count, out);
            }
            source += count;
            fractionX += count;
            fractionY += count;
        }
    }
}
