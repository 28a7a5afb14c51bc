// Box means with everything prepared.
#ifndef SPECIALEFFECTS_IMAGING_BOXFILTER_H
#define SPECIALEFFECTS_IMAGING_BOXFILTER_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include "imaging/Bands.h"
#include "imaging/Plane8u.h"

/// What `PrimFilterBox8uC1` stands on. Nothing is checked here.
namespace box {

/// dst(x, y) = mean of the pixels of `src` from (x - anchorX, y - anchorY) on that the mask covers. The two
/// are different images, or the same one.
struct Region {
    const uint8_t* src;
    ptrdiff_t srcStep;
    uint8_t* dst;
    ptrdiff_t dstStep;
    ptrdiff_t width, height;
    ptrdiff_t maskWidth, maskHeight;
    ptrdiff_t anchorX, anchorY;

    bool InPlace() const { return src == dst; }
    /// Columns that the masks of a row cover.
    ptrdiff_t Columns() const { return width + maskWidth - 1; }
    int64_t Area() const { return int64_t{maskWidth} * maskHeight; }
};

/// Bytes of working memory that `Filter` needs for this region, or for one that is lower.
size_t ScratchBytes(const Region& region);

/// `scratch` is aligned to 8 bytes and needs no contents.
void Filter(const Region& region, void* scratch);

}  // namespace box

/// Means of maskSize by maskSize for planes of one size; a frame of maskSize / 2 pixels is left over.
class BoxFilter {
  public:
    /// Filters nothing.
    BoxFilter() = default;
    /// Throws std::bad_alloc when the allocation fails. Filters nothing where the mask is not smaller
    /// than the interior.
    BoxFilter(int32_t width, int32_t height, int32_t maskSize);

    /// As `FilterBoxInPlace`.
    void ApplyInPlace(CPlane8u& plane);

    /// The same from a plane to another one: first a copy, then the means of its interior.
    void Apply(const CPlane8u& src, CPlane8u& dst);

    /// Rows of the same, for a pass with a reach of maskSize / 2.
    void ApplyBand(PlaneRows src, PlaneRows dst, RowRange rows);

  private:
    void FilterInterior(const CPlane8u& src, CPlane8u& dst);

    int32_t width_ = 0, height_ = 0, maskSize_ = 0;
    std::unique_ptr<uint64_t[]> scratch_;
};

#endif
