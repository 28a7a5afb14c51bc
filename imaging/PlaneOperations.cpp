// The free functions on planes that use the primitives.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "imaging/BoxFilter.h"
#include "imaging/Morphology.h"
#include "imaging/Plane8u.h"
#include "imaging/Prim.h"

namespace {

/// Whether a margin of `r` pixels leaves an interior.
bool HasInterior(const CPlane8u& plane, int32_t r) {
    return r <= (std::min(plane.width, plane.height) - 1) / 2;
}

/// Calls filter(src, srcStep, dst, dstStep, width, height) on the interior of `src` inside a margin of `r`
/// pixels, and the same region of `dst`.
template <class Filter>
void FilterInterior(const CPlane8u& src, CPlane8u& dst, int32_t r, Filter filter) {
    if (src.Empty() || dst.Empty() || dst.width < src.width || dst.height < src.height) return;
    if (r < 0 || !HasInterior(src, r)) return;
    filter(src.Row(r) + r, src.width, dst.Row(r) + r, dst.width, src.width - 2 * r, src.height - 2 * r);
}

using MaskFilter = PrimStatus (*)(const uint8_t*, int32_t, uint8_t*, int32_t, int32_t, int32_t, int32_t);

/// For a primitive that takes a mask code.
void FilterWithMask(MaskFilter primitive, const CPlane8u& src, CPlane8u& dst, int32_t mask, FilterRing ring) {
    const int32_t r = mask == kPrimMask3x3 ? 1 : 2;
    if (ring == FilterRing::kCopied) CopyRing(src, dst, r);
    FilterInterior(src, dst, r, [primitive, mask](auto... region) { primitive(region..., mask); });
}

/// Goes down the plane in bands. The scratch holds the rows of a band and those around it.
void FilterWithMaskInPlace(MaskFilter primitive, CPlane8u& plane, CPlane8u& scratch, int32_t mask) {
    const int32_t r = mask == kPrimMask3x3 ? 1 : 2, around = 2 * r;
    const int32_t width = plane.width, bottom = plane.height - r;
    if (plane.Empty() || scratch.Empty() || !HasInterior(plane, r)) return;
    if (scratch.width != width || scratch.height != kBandHeight) return;
    const auto copyRows = [width](const uint8_t* from, uint8_t* to, int32_t count) {
        std::memmove(to, from, static_cast<size_t>(count) * static_cast<size_t>(width));
    };
    copyRows(plane.data, scratch.data, around);
    for (int32_t y = r; y < bottom;) {
        const int32_t rows = std::min(kBandHeight - around, bottom - y);
        copyRows(plane.Row(y + r), scratch.Row(around), rows);
        primitive(scratch.Row(r) + r, width, plane.Row(y) + r, width, width - around, rows, mask);
        copyRows(scratch.Row(rows), scratch.data, around);
        y += rows;
    }
}

}  // namespace

// ---- filters ---------------------------------------------------------------------------------------

void CopyRing(const CPlane8u& src, CPlane8u& dst, int32_t thickness) {
    if (src.Empty() || src.width != dst.width || src.height != dst.height || thickness < 1) return;
    if (!HasInterior(src, thickness)) {
        dst.CopyPixels(src);
        return;
    }
    const auto side = static_cast<size_t>(thickness), row = static_cast<size_t>(src.width);
    const int32_t right = src.width - thickness, bottom = src.height - thickness;
    std::memcpy(dst.data, src.data, side * row);
    std::memcpy(dst.Row(bottom), src.Row(bottom), side * row);
    for (int32_t y = thickness; y < bottom; ++y) {
        std::memcpy(dst.Row(y), src.Row(y), side);
        std::memcpy(dst.Row(y) + right, src.Row(y) + right, side);
    }
}

void FilterGauss3(const CPlane8u& src, CPlane8u& dst, FilterRing ring) {
    FilterWithMask(PrimFilterGauss8uC1, src, dst, kPrimMask3x3, ring);
}

void FilterGauss5(const CPlane8u& src, CPlane8u& dst, FilterRing ring) {
    FilterWithMask(PrimFilterGauss8uC1, src, dst, kPrimMask5x5, ring);
}

void FilterGauss3InPlace(CPlane8u& plane, CPlane8u& scratch) {
    FilterWithMaskInPlace(PrimFilterGauss8uC1, plane, scratch, kPrimMask3x3);
}

void FilterGauss5InPlace(CPlane8u& plane, CPlane8u& scratch) {
    FilterWithMaskInPlace(PrimFilterGauss8uC1, plane, scratch, kPrimMask5x5);
}

void FilterLowpass3(const CPlane8u& src, CPlane8u& dst, FilterRing ring) {
    FilterWithMask(PrimFilterLowpass8uC1, src, dst, kPrimMask3x3, ring);
}

void FilterLowpass5(const CPlane8u& src, CPlane8u& dst, FilterRing ring) {
    FilterWithMask(PrimFilterLowpass8uC1, src, dst, kPrimMask5x5, ring);
}

void FilterMedian5(const CPlane8u& src, CPlane8u& dst) {
    FilterInterior(src, dst, 2, [](auto... region) { PrimFilterMedian8uC1(region..., 5, 5, 2, 2); });
}

void FilterBoxInPlace(CPlane8u& plane, int32_t maskSize) {
    BoxFilter(plane.width, plane.height, maskSize).ApplyInPlace(plane);
}

void Dilate3(CPlane8u& plane) {
    FilterInterior(plane, plane, 1,
                   [](const uint8_t*, int32_t, uint8_t* data, int32_t step, int32_t width, int32_t height) {
                       Require(PrimDilate3x38uC1(data, step, width, height) != kPrimMemoryError);
                   });
}

void Dilate3(const CPlane8u& src, CPlane8u& dst, FilterRing ring) {
    if (ring == FilterRing::kCopied) CopyRing(src, dst, 1);
    FilterInterior(src, dst, 1, [](auto... region) { prim::Dilate3x3(region...); });
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
