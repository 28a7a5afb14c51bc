// The free functions on planes that stand on the primitives.
#include <algorithm>
#include <cstdlib>

#include "imaging/Plane8u.h"
#include "imaging/Prim.h"

namespace {

/// Calls filter(src, srcStep, dst, dstStep, width, height) on the interior that a frame of `r` pixels leaves
/// of `src`, at the same place in `dst`.
template <class Filter>
void FilterInterior(const CPlane8u& src, CPlane8u& dst, int32_t r, Filter filter) {
    if (src.Empty() || dst.Empty() || dst.width < src.width || dst.height < src.height) return;
    if (r < 0 || r > (std::min(src.width, src.height) - 1) / 2) return;
    filter(src.Row(r) + r, src.width, dst.Row(r) + r, dst.width, src.width - 2 * r, src.height - 2 * r);
}

using MaskFilter = PrimStatus (*)(const uint8_t*, int32_t, uint8_t*, int32_t, int32_t, int32_t, int32_t);

/// For a primitive that takes a mask code.
void FilterWithMask(MaskFilter primitive, const CPlane8u& src, CPlane8u& dst, int32_t mask) {
    const int32_t r = mask == kPrimMask3x3 ? 1 : 2;
    FilterInterior(src, dst, r, [primitive, mask](auto... region) { primitive(region..., mask); });
}

}  // namespace

// ---- filters ---------------------------------------------------------------------------------------

void FilterGauss3(const CPlane8u& src, CPlane8u& dst) {
    FilterWithMask(PrimFilterGauss8uC1, src, dst, kPrimMask3x3);
}

void FilterGauss5(const CPlane8u& src, CPlane8u& dst) {
    FilterWithMask(PrimFilterGauss8uC1, src, dst, kPrimMask5x5);
}

void FilterLowpass3(const CPlane8u& src, CPlane8u& dst) {
    FilterWithMask(PrimFilterLowpass8uC1, src, dst, kPrimMask3x3);
}

void FilterLowpass5(const CPlane8u& src, CPlane8u& dst) {
    FilterWithMask(PrimFilterLowpass8uC1, src, dst, kPrimMask5x5);
}

void FilterMedian5(const CPlane8u& src, CPlane8u& dst) {
    FilterInterior(src, dst, 2, [](auto... region) { PrimFilterMedian8uC1(region..., 5, 5, 2, 2); });
}

void FilterBoxInPlace(CPlane8u& plane, int32_t maskSize) {
    const int32_t r = maskSize / 2;
    FilterInterior(plane, plane, r,
                   [=](const uint8_t*, int32_t, uint8_t* data, int32_t step, int32_t width, int32_t height) {
                       Require(PrimFilterBox8uC1(data, step, width, height, maskSize, maskSize, r, r) !=
                               kPrimMemoryError);
                   });
}

void Dilate3(CPlane8u& plane) {
    FilterInterior(plane, plane, 1,
                   [](const uint8_t*, int32_t, uint8_t* data, int32_t step, int32_t width, int32_t height) {
                       Require(PrimDilate3x38uC1(data, step, width, height) != kPrimMemoryError);
                   });
}

void Erode3(const CPlane8u& src, CPlane8u& dst) {
    FilterInterior(src, dst, 1, [](auto... region) { PrimErode3x38uC1(region...); });
}

// ---- grey levels -----------------------------------------------------------------------------------

void ThresholdPlane(CPlane8u& plane, uint8_t lo, uint8_t loValue, uint8_t hi, uint8_t hiValue) {
    PrimThresholdLTValGTValInPlace8uC1(plane.data, plane.width, plane.width, plane.height, lo, loValue, hi,
                                       hiValue);
}

// ---- geometry --------------------------------------------------------------------------------------

void ResizePlane(const CPlane8u& src, CPlane8u& dst) {
    dst.ResizeRegion(src, src.width, src.height, 0, 0);
}

void RemapPlane(const CPlane8u& src, const float* xMap, const float* yMap, CPlane8u& dst,
                int32_t interpolation) {
    const int32_t mapStep = static_cast<int32_t>(4 * static_cast<uint32_t>(dst.width));
    PrimRemap8uC1(src.data, src.width, src.height, src.width, 0, 0, src.width, src.height, xMap, mapStep,
                  yMap, mapStep, dst.data, dst.width, dst.width, dst.height, interpolation);
}

// ---- chance ----------------------------------------------------------------------------------------

PlanePoint RandomPoint(const CPlane8u& plane, int32_t (*rand)()) {
    const int32_t x = rand();
    const int32_t y = rand();
    if (plane.Empty()) return {0, 0};
    return {x % plane.width, y % plane.height};
}

bool RandomChance(double p, int32_t (*rand)()) {
    return p * 10000.0 > rand() % 10000;
}
