#include "effects/distortion/LinearWarp.h"

#include "imaging/Multiversion.h"

namespace {

/// Where a coordinate falls between two neighbours. The fraction is exact in single precision: it is a
/// multiple of the coordinate's last place and smaller than the coordinate, or the coordinate itself.
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

SE_MULTIVERSION
void WarpSpan(const uint8_t* SE_RESTRICT src, const int32_t* SE_RESTRICT source,
              const float* SE_RESTRICT fractionX, const float* SE_RESTRICT fractionY, int32_t right,
              int32_t below, int32_t count, uint8_t* SE_RESTRICT dst) {
    for (int32_t i = 0; i < count; ++i) {
        const uint8_t* const upper = src + source[i];
        const uint8_t* const lower = upper + below;
        const double fx = double{fractionX[i]}, fy = double{fractionY[i]};
        const double top = upper[0] + (upper[right] - upper[0]) * fx;
        const double bottom = lower[0] + (lower[right] - lower[0]) * fx;
        dst[i] = static_cast<uint8_t>(static_cast<int32_t>(0.5 + top + fy * (bottom - top)));
    }
}

}  // namespace

CLinearWarp::CLinearWarp(const RemapTable& table) {
    const int32_t width = table.width, height = table.height;
    const bool nearest = width < 2 || height < 2;  // there is nothing to interpolate with
    if (!nearest) {
        right_ = 1;
        below_ = width;
    }
    for (int32_t y = 0; y < height; ++y) {
        int32_t count = 0, unmoved = 0;
        for (int32_t x = 0; x < width; ++x) {
            const float sx = table.XRow(y)[x], sy = table.YRow(y)[x];
            const bool inside = sx >= 0 && sx <= static_cast<float>(width - 1) && sy >= 0 &&
                                sy <= static_cast<float>(height - 1);
            const bool moves = inside && (sx != static_cast<float>(x) || sy != static_cast<float>(y));
            if (count == 0 && !moves) continue;
            if (count == 0) spans_.push_back({y * width + x, 0});
            const float fromX = moves ? sx : static_cast<float>(x),
                        fromY = moves ? sy : static_cast<float>(y);
            if (nearest) {
                source_.push_back(static_cast<int32_t>(double{fromY} + 0.5) * width +
                                  static_cast<int32_t>(double{fromX} + 0.5));
                fractionX_.push_back(0);
                fractionY_.push_back(0);
            } else {
                const Tap tapX(fromX, width - 1), tapY(fromY, height - 1);
                source_.push_back(tapY.index * width + tapX.index);
                fractionX_.push_back(tapX.fraction);
                fractionY_.push_back(tapY.fraction);
            }
            ++count;
            unmoved = moves ? 0 : unmoved + 1;
        }
        if (count == 0) continue;
        spans_.back().count = count - unmoved;
        const size_t kept = source_.size() - static_cast<size_t>(unmoved);
        source_.resize(kept);
        fractionX_.resize(kept);
        fractionY_.resize(kept);
    }
}

void CLinearWarp::Apply(const uint8_t* src, uint8_t* dst) const {
    size_t done = 0;
    for (const Span& span : spans_) {
        WarpSpan(src, source_.data() + done, fractionX_.data() + done, fractionY_.data() + done, right_,
                 below_, span.count, dst + span.firstPixel);
        done += static_cast<size_t>(span.count);
    }
}
