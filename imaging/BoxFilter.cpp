#include "imaging/BoxFilter.h"

#include <algorithm>

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

void BoxFilter::FilterInterior(const CPlane8u& src, CPlane8u& dst) {
    const auto fits = [this](const CPlane8u& plane) {
        return !plane.Empty() && plane.width == width_ && plane.height == height_;
    };
    if (scratch_ && fits(src) && fits(dst)) box::Filter(Interior(src, dst, maskSize_), scratch_.get());
}
