// Scaling of a region to another size: the checks, and the nearest mode.
//
// The axes are independent: the source positions are computed once for each destination row and once for each
// column.
#include <algorithm>
#include <memory>

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

class NearestPlan final : public resize::Plan {
  public:
    NearestPlan(const resize::Axis& x, const resize::Axis& y)
        : x_(x), y_(y), columns_(static_cast<size_t>(x.count)) {
        if (columns_) resize::NearestColumns(x, columns_.data());
    }

    bool Ready() const { return static_cast<bool>(columns_); }

    void Run(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep) override {
        resize::ScaleNearest(x_, columns_.data(), y_, src, srcStep, dst, dstStep);
    }

  private:
    resize::Axis x_, y_;
    resize::Buffer<int32_t> columns_;
};

}  // namespace

void resize::NearestColumns(const Axis& x, int32_t* columns) {
    for (int32_t k = 0; k < x.count; ++k) columns[k] = x.NearestSample(k);
}

void resize::ScaleNearest(const Axis& x, const int32_t* columns, const Axis& y, const uint8_t* src,
                          int32_t srcStep, uint8_t* dst, int32_t dstStep) {
    const int32_t count = x.count;
    for (int32_t line = 0; line < y.count; ++line) {
        const uint8_t* const row = Row(src, srcStep, y.NearestSample(line));
        uint8_t* const out = Row(dst, dstStep, line);
#pragma GCC unroll 4  // or the speed depends on where the linker puts the loop
        for (int32_t k = 0; k < count; ++k) out[k] = row[columns[k]];
    }
}

std::unique_ptr<resize::Plan> resize::Nearest(const Axis& x, const Axis& y) {
    return MakePlan<NearestPlan>(x, y);
}

std::unique_ptr<resize::Plan> resize::PlanFor(int32_t interpolation, int32_t srcWidth, int32_t srcHeight,
                                              const Axis& x, const Axis& y) {
    switch (EffectiveMode(interpolation, srcWidth, srcHeight)) {
        case kPrimNearest:
            return Nearest(x, y);
        case kPrimLanczos:
            return Lanczos(x, y);
        default:
            return Linear(x, y);
    }
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
    const resize::Axis x(clipped.width, xFactor, dstWidth), y(clipped.height, yFactor, dstHeight);
    if (x.count == 0 || y.count == 0) return kPrimOk;
    const std::unique_ptr<resize::Plan> plan = resize::PlanFor(interpolation, srcWidth, srcHeight, x, y);
    if (!plan) return kPrimMemoryError;
    plan->Run(Row(src, srcStep, clipped.y) + clipped.x, srcStep, dst, dstStep);
    return kPrimOk;
}
