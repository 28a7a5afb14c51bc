#include "effects/distortion/LinearWarp.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "imaging/PerLevel.h"

namespace {

constexpr int32_t kStretch = 64;  // pixels mixed at once

/// Whole part and fraction of a coordinate from 0 to `last`. The fraction is exact in single precision: it is
/// a multiple of the coordinate's last place, and no larger than the coordinate.
struct Tap {
    int32_t index;
    float fraction;
};

SE_INLINE Tap Split(float position, int32_t last) {
    const auto whole = static_cast<int32_t>(double{position} + 1e-7);
    const float rest = position - static_cast<float>(whole);
    return {std::min(whole, last - 1), whole < last ? rest : 1.0F};
}

/// Where the sources of pixels have to be: in a picture with these numbers of the last column and row.
struct Bounds {
    int32_t lastX, lastY;

    SE_INLINE bool Hold(SourcePoint<float> point) const {
        return (point.x >= 0) & (point.x <= static_cast<float>(lastX)) & (point.y >= 0) &
               (point.y <= static_cast<float>(lastY));
    }
};

/// Splits the sources of the pixels from (x, y) on. Those with sources outside the picture are their own.
SE_INLINE void SplitSpan(const SourcePoint<float>* points, Bounds bounds, int32_t x, int32_t y, int32_t count,
                         int32_t* SE_RESTRICT source, float* SE_RESTRICT fractionX,
                         float* SE_RESTRICT fractionY) {
    for (int32_t i = 0; i < count; ++i) {
        const SourcePoint<float> point = points[i];
        const bool inside = bounds.Hold(point);
        const Tap tapX = Split(inside ? point.x : static_cast<float>(x + i), bounds.lastX);
        const Tap tapY = Split(inside ? point.y : static_cast<float>(y), bounds.lastY);
        source[i] = tapY.index * (bounds.lastX + 1) + tapX.index;
        fractionX[i] = tapX.fraction;
        fractionY[i] = tapY.fraction;
    }
}

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

LinearWarp::LinearWarp(int32_t width, int32_t height, size_t pixels) : width_(width), height_(height) {
    source_.reserve(pixels);
    fractionX_.reserve(pixels);
    fractionY_.reserve(pixels);
}

LinearWarp::LinearWarp(const RemapTable& table) : width_(table.width), height_(table.height) {
    std::vector<SourcePoint<float>> points(static_cast<size_t>(width_));
    for (int32_t y = 0; y < height_; ++y) {
        std::transform(table.XRow(y), table.XRow(y) + width_, table.YRow(y), points.begin(),
                       [](float sourceX, float sourceY) {
                           return SourcePoint<float>{sourceX, sourceY};
                       });
        Add(0, y, points);
    }
}

void LinearWarp::Add(int32_t x, int32_t y, std::span<const SourcePoint<float>> points) {
    const Bounds bounds{width_ - 1, height_ - 1};
    const auto moves = [&](size_t i) {
        const SourcePoint<float> point = points[i];
        const auto column = static_cast<float>(x + static_cast<int32_t>(i));
        return bounds.Hold(point) && (point.x != column || point.y != static_cast<float>(y));
    };
    size_t first = 0, end = points.size();
    while (first < end && !moves(first)) ++first;
    while (first < end && !moves(end - 1)) --end;
    if (first == end) return;
    const auto count = static_cast<int32_t>(end - first);
    x += static_cast<int32_t>(first);
    spans_.push_back({y * width_ + x, count});

    const size_t done = source_.size(), pixels = done + static_cast<size_t>(count);
    source_.resize(pixels);
    fractionX_.resize(pixels);
    fractionY_.resize(pixels);
    AtLevel<SplitSpan>(&points[first], bounds, x, y, count, &source_[done], &fractionX_[done],
                       &fractionY_[done]);
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
