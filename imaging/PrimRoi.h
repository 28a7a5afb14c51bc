// Regions of interest in a source image, as the geometric primitives clip them.
#ifndef SPECIALEFFECTS_IMAGING_PRIMROI_H
#define SPECIALEFFECTS_IMAGING_PRIMROI_H

#include <algorithm>
#include <cstdint>

#include "imaging/PrimCheck.h"

namespace prim {

/// A rectangle of pixels; its corners [x0, x1] by [y0, y1] are pixels of it.
struct Roi {
    int32_t x, y, width, height;

    int32_t x0() const { return x; }
    int32_t y0() const { return y; }
    int32_t x1() const { return x + width - 1; }
    int32_t y1() const { return y + height - 1; }
};

constexpr PrimStatus CheckRoiSize(const Roi& roi) {
    return roi.x < 0 || roi.y < 0 ? kPrimSizeError : CheckSize(roi.width, roi.height);
}

/// Whether a region with an origin of 0 or more has a pixel in the image.
constexpr PrimStatus CheckRoiInside(const Roi& roi, int32_t imageWidth, int32_t imageHeight) {
    return roi.x >= imageWidth || roi.y >= imageHeight ? kPrimOutsideSource : kPrimOk;
}

/// The part of a region that lies in the image, once the two checks have passed.
inline Roi ClipRoi(const Roi& roi, int32_t imageWidth, int32_t imageHeight) {
    return {roi.x, roi.y, std::min(roi.width, imageWidth - roi.x), std::min(roi.height, imageHeight - roi.y)};
}

/// trunc(x + 0.5): the nearest whole number of an x from 0 up, halves upwards.
inline int32_t RoundHalfUp(double x) {
    const double raised = x + 0.5;
    return static_cast<int32_t>(raised);
}

}  // namespace prim

#endif
