#include "imaging/BoxFilter.h"

#include <algorithm>
#include <cstring>

namespace {

/// The interior of a plane inside a margin of half a mask. Its height is below 1 if the plane has no
/// interior.
box::Region Interior(const CPlane8u& src, CPlane8u& dst, int32_t maskSize) {
    const int32_t r = maskSize / 2;
    return {src.Row(r) + r,     src.width, dst.Row(r) + r, dst.width, src.width - 2 * r,
            src.height - 2 * r, maskSize,  maskSize,       r,         r};
}

}  // namespace

BoxFilter::BoxFilter(int32_t width, int32_t height, int32_t maskSize)
    : width_(width), height_(height), maskSize_(maskSize) {
    const int32_t margin = maskSize / 2 * 2;
    if (maskSize < 1 || maskSize >= width - margin || maskSize >= height - margin) return;
    box::Region region{};
    region.width = width - margin;
    region.height = height - margin;
    region.maskWidth = region.maskHeight = maskSize;
    region.anchorX = region.anchorY = maskSize / 2;
    scratch_ = std::make_unique<uint64_t[]>(box::ScratchBytes(region) / sizeof(uint64_t) + 1);
}

void BoxFilter::ApplyInPlace(CPlane8u& plane) {
    FilterInterior(plane, plane);
}

void BoxFilter::Apply(const CPlane8u& src, CPlane8u& dst) {
    if (scratch_) {
        CopyRing(src, dst, maskSize_ / 2);
    } else {
        dst.CopyPixels(src);
    }
    FilterInterior(src, dst);
}

void BoxFilter::ApplyBand(PlaneRows src, PlaneRows dst, RowRange rows) {
    if (!scratch_) {
        std::memcpy(dst[rows.begin], src[rows.begin], src.bytes(rows));
        return;
    }
    const ptrdiff_t mask = maskSize_, r = maskSize_ / 2;
    FilterBand(src, dst, rows, height_, maskSize_ / 2,
               [&](const uint8_t* from, ptrdiff_t fromStep, uint8_t* to, ptrdiff_t toStep, ptrdiff_t width,
                   ptrdiff_t height) {
                   box::Filter({from, fromStep, to, toStep, width, height, mask, mask, r, r}, scratch_.get());
               });
}

void BoxFilter::FilterInterior(const CPlane8u& src, CPlane8u& dst) {
    const auto fits = [this](const CPlane8u& plane) {
        return !plane.Empty() && plane.width == width_ && plane.height == height_;
    };
    if (scratch_ && fits(src) && fits(dst)) box::Filter(Interior(src, dst, maskSize_), scratch_.get());
}
