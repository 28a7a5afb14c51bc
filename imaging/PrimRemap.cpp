// Warps through tables of source coordinates.
//
// The coordinates of a stretch of pixels are first turned into places in the source, in a loop that the
// compiler vectorises; then the pixels are fetched one by one, and in the linear mode mixed by another such
// loop.
#include <algorithm>
#include <array>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRoi.h"
#include "imaging/PrimRow.h"

namespace {

using prim::Roi;
using prim::Row;

constexpr ptrdiff_t kStretch = 256;  // pixels that are handled at once

/// How far the sampled region reaches along one axis, in single precision.
struct Range {
    float low, high;
};

/// The sources of the pixels of a stretch.
struct Places {
    std::array<int32_t, kStretch> offset;  // of the pixel (the upper left one of four) from that of the image
    std::array<int32_t, kStretch> inside;  // 0 where the pixel is unchanged
    std::array<float, kStretch> xFraction, yFraction;  // linear mode only
};

/// The coordinate clamped to the range. A result that differs from the coordinate, as for NaN, means out of
/// range.
SE_INLINE float Clamp(float position, Range range) {
    const float notBelow = position > range.low ? position : range.low;
    return notBelow < range.high ? notBelow : range.high;
}

/// The pixel nearest to a coordinate from 0 up, halves upwards. Adding one half in single precision could
/// round up what lies just below a half, so the fraction is compared instead.
SE_INLINE int32_t NearestPixel(float position) {
    const auto whole = static_cast<int32_t>(position);
    return whole + static_cast<int32_t>(position - static_cast<float>(whole) >= 0.5f);
}

/// Returns whether all pixels of the stretch have a source.
SE_INLINE bool FindNearest(const float* SE_RESTRICT xs, const float* SE_RESTRICT ys, ptrdiff_t count,
                           Range xRange, Range yRange, int32_t step, int32_t channels,
                           Places& SE_RESTRICT places) {
    int32_t all = 1;
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const float x = Clamp(xs[i], xRange);
        const float y = Clamp(ys[i], yRange);
        const int32_t inside = static_cast<int32_t>(x == xs[i]) & static_cast<int32_t>(y == ys[i]);
        places.offset[i] = NearestPixel(y) * step + NearestPixel(x) * channels;
        places.inside[i] = inside;
        all &= inside;
    }
    return all != 0;
}

/// The pixel before a coordinate and the way from there; at the last pixel it is the last but one, and the
/// way is 1. A coordinate that is not 1e-7 short of the next pixel counts as that one; in single precision
/// there is only one such number, the last below 1. `last` is 2 at least.
struct Tap {
    int32_t first;
    float fraction;
};
SE_INLINE Tap LinearTap(float position, int32_t last) {
    constexpr float kAlmostOne = 0x1.fffffep-1f;
    const int32_t whole = static_cast<int32_t>(position) + static_cast<int32_t>(position == kAlmostOne);
    const int32_t first = std::min(whole, last - 1);
    return {first, position - static_cast<float>(first)};
}

SE_INLINE bool FindLinear(const float* SE_RESTRICT xs, const float* SE_RESTRICT ys, ptrdiff_t count,
                          Range xRange, Range yRange, int32_t step, int32_t channels,
                          Places& SE_RESTRICT places) {
    const auto xLast = static_cast<int32_t>(xRange.high), yLast = static_cast<int32_t>(yRange.high);
    int32_t all = 1;
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const float x = Clamp(xs[i], xRange);
        const float y = Clamp(ys[i], yRange);
        const Tap column = LinearTap(x, xLast);
        const Tap row = LinearTap(y, yLast);
        places.offset[i] = row.first * step + column.first * channels;
        places.xFraction[i] = column.fraction;
        places.yFraction[i] = row.fraction;
        const int32_t inside = static_cast<int32_t>(x == xs[i]) & static_cast<int32_t>(y == ys[i]);
        places.inside[i] = inside;
        all &= inside;
    }
    return all != 0;
}

/// The four pixels around each place of a stretch: two rows, the left one in the low byte.
struct Corners {
    std::array<uint16_t, kStretch> upper, lower;
};

SE_INLINE void MixCorners(const Corners& SE_RESTRICT corners, const Places& SE_RESTRICT places,
                          ptrdiff_t count, uint8_t* SE_RESTRICT mixed) {
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const double fx = places.xFraction[i], fy = places.yFraction[i];
        const int32_t p00 = corners.upper[i] & 255, p10 = corners.upper[i] >> 8;
        const int32_t p01 = corners.lower[i] & 255, p11 = corners.lower[i] >> 8;
        const double top = p00 + (p10 - p00) * fx;
        const double bottom = p01 + (p11 - p01) * fx;
        mixed[i] = static_cast<uint8_t>(static_cast<int32_t>(0.5 + top + fy * (bottom - top)));
    }
}

/// The parameters of sampling one image.
struct Warp {
    const uint8_t* src;
    int32_t srcStep;
    Roi roi;  // clipped
    const float* xMap;
    int32_t xMapStep;
    const float* yMap;
    int32_t yMapStep;
    uint8_t* dst;
    int32_t dstStep, dstWidth, dstHeight;

    Range xRange() const { return {static_cast<float>(roi.x0()), static_cast<float>(roi.x1())}; }
    Range yRange() const { return {static_cast<float>(roi.y0()), static_cast<float>(roi.y1())}; }

    /// Whether coordinates are exact in single precision, and offsets fit in 32 bits.
    bool Ordinary(int32_t srcWidth, int32_t srcHeight) const {
        constexpr int32_t kExact = 1 << 24;
        return srcWidth <= kExact && srcHeight <= kExact &&
               static_cast<int64_t>(srcStep) * srcHeight <= INT32_MAX;
    }
};

/// Calls stretch(xs, ys, count, out) for all stretches of all rows.
template <int channels, class Stretch>
void ForEachStretch(const Warp& warp, Stretch stretch) {
    for (int32_t row = 0; row < warp.dstHeight; ++row) {
        const float* const xs = Row(warp.xMap, warp.xMapStep, row);
        const float* const ys = Row(warp.yMap, warp.yMapStep, row);
        uint8_t* const out = Row(warp.dst, warp.dstStep, row);
        for (ptrdiff_t x = 0; x < warp.dstWidth; x += kStretch) {
            stretch(xs + x, ys + x, std::min<ptrdiff_t>(kStretch, warp.dstWidth - x), out + channels * x);
        }
    }
}

template <int channels>
void RemapNearest(const Warp& warp) {
    Places places;
    ForEachStretch<channels>(warp, [&](const float* xs, const float* ys, ptrdiff_t count, uint8_t* out) {
        const bool all =
            AtLevel<FindNearest>(xs, ys, count, warp.xRange(), warp.yRange(), warp.srcStep, channels, places);
#pragma GCC unroll 4  // or the speed depends on where the linker puts the loop
        for (ptrdiff_t i = 0; i < count; ++i) {
            if (all || places.inside[static_cast<size_t>(i)] != 0) {
                std::memcpy(out + channels * i, warp.src + places.offset[static_cast<size_t>(i)], channels);
            }
        }
    });
}

template <int channels>
void RemapLinear(const Warp& warp) {
    Places places;
    Corners corners;
    std::array<uint8_t, kStretch> mixed;
    ForEachStretch<channels>(warp, [&](const float* xs, const float* ys, ptrdiff_t count, uint8_t* out) {
        const bool all =
            AtLevel<FindLinear>(xs, ys, count, warp.xRange(), warp.yRange(), warp.srcStep, channels, places);
        for (ptrdiff_t c = 0; c < channels; ++c) {
            const uint8_t* const upper = warp.src + c;
            const uint8_t* const lower = upper + warp.srcStep;
            for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
                const ptrdiff_t left = places.offset[i], right = left + channels;
                corners.upper[i] = static_cast<uint16_t>(upper[left] | upper[right] << 8);
                corners.lower[i] = static_cast<uint16_t>(lower[left] | lower[right] << 8);
            }
            const bool direct = channels == 1 && all;
            AtLevel<MixCorners>(corners, places, count, direct ? out : mixed.data());
            if (direct) continue;
            for (ptrdiff_t i = 0; i < count; ++i) {
                if (all || places.inside[static_cast<size_t>(i)] != 0) {
                    out[channels * i + c] = mixed[static_cast<size_t>(i)];
                }
            }
        }
    });
}

/// Pixel by pixel in double precision, for images of unusual size and the smallest regions.
template <int channels>
void RemapPlain(const Warp& warp, bool nearest) {
    const Roi& roi = warp.roi;
    const auto tap = [](double position, int32_t begin, int32_t end, int32_t& first, int32_t& second) {
        const auto whole = static_cast<int32_t>(position + 1e-7);
        first = whole < end ? whole : std::max(end - 1, begin);
        second = whole < end ? whole + 1 : end;
        return whole < end ? position - whole : 1.0;
    };
    for (int32_t row = 0; row < warp.dstHeight; ++row) {
        const float* const xs = Row(warp.xMap, warp.xMapStep, row);
        const float* const ys = Row(warp.yMap, warp.yMapStep, row);
        uint8_t* const out = Row(warp.dst, warp.dstStep, row);
        for (ptrdiff_t k = 0; k < warp.dstWidth; ++k) {
            const double x = xs[k], y = ys[k];
            if (!(x >= roi.x0() && x <= roi.x1() && y >= roi.y0() && y <= roi.y1())) continue;
            if (nearest) {
                const uint8_t* const line = Row(warp.src, warp.srcStep, prim::RoundHalfUp(y));
                std::memcpy(out + channels * k,
                            line + channels * static_cast<ptrdiff_t>(prim::RoundHalfUp(x)), channels);
                continue;
            }
            int32_t left = 0, right = 0, upper = 0, lower = 0;
            const double fx = tap(x, roi.x0(), roi.x1(), left, right);
            const double fy = tap(y, roi.y0(), roi.y1(), upper, lower);
            const uint8_t* const lines[2] = {Row(warp.src, warp.srcStep, upper),
                                             Row(warp.src, warp.srcStep, lower)};
            for (ptrdiff_t c = 0; c < channels; ++c) {
                const auto along = [&](const uint8_t* line) {
                    const int32_t a = line[channels * static_cast<ptrdiff_t>(left) + c];
                    const int32_t b = line[channels * static_cast<ptrdiff_t>(right) + c];
                    return a + (b - a) * fx;
                };
                const double top = along(lines[0]), bottom = along(lines[1]);
                out[channels * k + c] = static_cast<uint8_t>(0.5 + top + fy * (bottom - top));
            }
        }
    }
}

template <int channels>
PrimStatus Remap(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep, const Roi& roi,
                 const float* xMap, int32_t xMapStep, const float* yMap, int32_t yMapStep, uint8_t* dst,
                 int32_t dstStep, int32_t dstWidth, int32_t dstHeight, int32_t interpolation) {
    const bool knownMode =
        interpolation == kPrimNearest || interpolation == kPrimLinear || interpolation == kPrimCubic;
    const PrimStatus status = prim::FirstError(
        prim::CheckPointers(src, dst), prim::CheckPointers(xMap, yMap), prim::CheckSize(srcWidth, srcHeight),
        prim::CheckSize(dstWidth, dstHeight), prim::CheckRoiSize(roi),
        knownMode ? kPrimOk : kPrimInterpolationError, prim::CheckStep(srcStep, srcWidth, channels),
        prim::CheckStep(xMapStep, dstWidth, sizeof(float)),
        prim::CheckStep(yMapStep, dstWidth, sizeof(float)), prim::CheckStep(dstStep, dstWidth, channels),
        prim::CheckAlignment(xMapStep, sizeof(float)), prim::CheckAlignment(yMapStep, sizeof(float)),
        prim::CheckRoiInside(roi, srcWidth, srcHeight));
    if (status != kPrimOk) return status;

    const Warp warp{src,      srcStep,  prim::ClipRoi(roi, srcWidth, srcHeight),
                    xMap,     xMapStep, yMap,
                    yMapStep, dst,      dstStep,
                    dstWidth, dstHeight};
    const bool nearest = interpolation == kPrimNearest || srcWidth == 1 || srcHeight == 1;
    const bool ordinary = warp.Ordinary(srcWidth, srcHeight);
    if (ordinary && nearest) {
        RemapNearest<channels>(warp);
    } else if (ordinary && warp.roi.width > 1 && warp.roi.height > 1 && warp.roi.x1() > 1 &&
               warp.roi.y1() > 1) {
        RemapLinear<channels>(warp);
    } else {
        RemapPlain<channels>(warp, nearest);
    }
    return kPrimOk;
}

}  // namespace

PrimStatus PrimRemap8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                         int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight, const float* xMap,
                         int32_t xMapStep, const float* yMap, int32_t yMapStep, uint8_t* dst, int32_t dstStep,
                         int32_t dstWidth, int32_t dstHeight, int32_t interpolation) {
    return Remap<1>(src, srcWidth, srcHeight, srcStep, {roiX, roiY, roiWidth, roiHeight}, xMap, xMapStep,
                    yMap, yMapStep, dst, dstStep, dstWidth, dstHeight, interpolation);
}

PrimStatus PrimRemap8uC3(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                         int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight, const float* xMap,
                         int32_t xMapStep, const float* yMap, int32_t yMapStep, uint8_t* dst, int32_t dstStep,
                         int32_t dstWidth, int32_t dstHeight, int32_t interpolation) {
    return Remap<3>(src, srcWidth, srcHeight, srcStep, {roiX, roiY, roiWidth, roiHeight}, xMap, xMapStep,
                    yMap, yMapStep, dst, dstStep, dstWidth, dstHeight, interpolation);
}
