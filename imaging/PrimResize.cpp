// Scaling of a region to another size: the checks, and the nearest mode.
//
// Both axes are treated alike and alone: where the samples of a destination row or column come from is worked
// out once for the row and once for the column.
#include <algorithm>

#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRoi.h"
#include "imaging/PrimRow.h"
#include "imaging/ResizeAxis.h"

namespace {

using prim::Roi;
using prim::Row;

/// The mode that a source of this size is scaled with.
int32_t EffectiveMode(int32_t interpolation, int32_t width, int32_t height) {
    const int32_t side = std::min(width, height);
    if (interpolation == kPrimLanczos && side < 8) interpolation = kPrimCubic;
    if (interpolation == kPrimCubic && side < 4) interpolation = kPrimLinear;
    return side < 2 ? kPrimNearest : interpolation;
}

}  // namespace

PrimStatus resize::Nearest(const Image& image) {
    Buffer<int32_t> columns(static_cast<size_t>(image.x.count));
    if (!columns) return kPrimMemoryError;
    int32_t* const column = columns.data();
    for (int32_t k = 0; k < image.x.count; ++k) column[k] = image.x.NearestSample(k);
    for (int32_t y = 0; y < image.y.count; ++y) {
        const uint8_t* const row = Row(image.src, image.srcStep, image.y.NearestSample(y));
        uint8_t* const out = Row(image.dst, image.dstStep, y);
        for (int32_t k = 0; k < image.x.count; ++k) out[k] = row[column[k]];
    }
    return kPrimOk;
}

PrimStatus PrimResize8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                          int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight, uint8_t* dst,
                          int32_t dstStep, int32_t dstWidth, int32_t dstHeight, double xFactor,
                          double yFactor, int32_t interpolation) {
    const Roi roi{roiX, roiY, roiWidth, roiHeight};
    const bool goodFactors = xFactor > 0.0 && yFactor > 0.0;
    const bool knownMode = interpolation == kPrimNearest || interpolation == kPrimLinear ||
                           interpolation == kPrimCubic || interpolation == kPrimArea ||
                           interpolation == kPrimLanczos;
    const PrimStatus status = prim::FirstError(
        prim::CheckPointers(src, dst), prim::CheckSize(srcWidth, srcHeight), prim::CheckRoiSize(roi),
        prim::CheckRoiInside(roi, srcWidth, srcHeight), prim::CheckSize(dstWidth, dstHeight),
        prim::CheckStep(srcStep, srcWidth), prim::CheckStep(dstStep, dstWidth),
        goodFactors ? kPrimOk : kPrimSizeError, knownMode ? kPrimOk : kPrimInterpolationError);
    if (status != kPrimOk) return status;

    const Roi clipped = prim::ClipRoi(roi, srcWidth, srcHeight);
    const resize::Image image{Row(src, srcStep, clipped.y) + clipped.x,
                              srcStep,
                              dst,
                              dstStep,
                              resize::Axis(clipped.width, xFactor, dstWidth),
                              resize::Axis(clipped.height, yFactor, dstHeight)};
    if (image.x.count == 0 || image.y.count == 0) return kPrimOk;
    switch (EffectiveMode(interpolation, srcWidth, srcHeight)) {
        case kPrimNearest:
            return resize::Nearest(image);
        case kPrimLanczos:
            return resize::Lanczos(image);
        default:
            return resize::Linear(image);
    }
}
