// Warps through tables of source coordinates.
#include <algorithm>
#include <cstring>

#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRoi.h"

namespace {

using prim::Roi;
using prim::RowAt;

/// Everything that the sampling of one image needs.
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

    /// Calls sample(x, y, dstPixel) for each destination pixel whose source lies in the region.
    template <int channels, class Sample>
    void ForEachPixel(Sample sample) const {
        const double left = roi.x0(), right = roi.x1(), top = roi.y0(), bottom = roi.y1();
        for (int32_t row = 0; row < dstHeight; ++row) {
            const float* const xs = MapRow(xMap, xMapStep, row);
            const float* const ys = MapRow(yMap, yMapStep, row);
            uint8_t* const out = RowAt(dst, dstStep, row);
            for (ptrdiff_t k = 0; k < dstWidth; ++k) {
                const double x = xs[k], y = ys[k];
                if (x >= left && x <= right && y >= top && y <= bottom) sample(x, y, out + channels * k);
            }
        }
    }

    static const float* MapRow(const float* map, int32_t step, int32_t row) {
        return reinterpret_cast<const float*>(RowAt(reinterpret_cast<const uint8_t*>(map), step, row));
    }
};

template <int channels>
void RemapNearest(const Warp& warp) {
    warp.ForEachPixel<channels>([&warp](double x, double y, uint8_t* out) {
        const auto column = static_cast<ptrdiff_t>(x + 0.5);
        const uint8_t* const pixel =
            RowAt(warp.src, warp.srcStep, static_cast<int32_t>(y + 0.5)) + channels * column;
        for (int c = 0; c < channels; ++c) out[c] = pixel[c];
    });
}

/// Where a coordinate falls between two samples of an axis.
struct LinearTap {
    int32_t first, second;
    double fraction;

    /// The samples are those from `begin` to `end`, both included.
    LinearTap(double position, int32_t begin, int32_t end) {
        const auto whole = static_cast<int32_t>(position + 1e-7);
        if (whole < end) {
            first = whole;
            second = whole + 1;
            fraction = position - whole;
        } else {
            first = std::max(end - 1, begin);
            second = end;
            fraction = 1.0;
        }
    }
};

template <int channels>
void RemapLinear(const Warp& warp) {
    const Roi& roi = warp.roi;
    warp.ForEachPixel<channels>([&](double x, double y, uint8_t* out) {
        const LinearTap h(x, roi.x0(), roi.x1());
        const LinearTap v(y, roi.y0(), roi.y1());
        const uint8_t* const upper = RowAt(warp.src, warp.srcStep, v.first);
        const uint8_t* const lower = RowAt(warp.src, warp.srcStep, v.second);
        const ptrdiff_t left = channels * static_cast<ptrdiff_t>(h.first);
        const ptrdiff_t right = channels * static_cast<ptrdiff_t>(h.second);
        for (int c = 0; c < channels; ++c) {
            const double top = upper[left + c] + (upper[right + c] - upper[left + c]) * h.fraction;
            const double bottom = lower[left + c] + (lower[right + c] - lower[left + c]) * h.fraction;
            out[c] = static_cast<uint8_t>(0.5 + top + v.fraction * (bottom - top));
        }
    });
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
    if (interpolation == kPrimNearest || srcWidth == 1 || srcHeight == 1)
        RemapNearest<channels>(warp);
    else
        RemapLinear<channels>(warp);
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
