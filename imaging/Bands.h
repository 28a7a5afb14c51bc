// Passes over a picture in bands of rows.
//
// Passes that run one after the other over a whole picture move every plane between them through memory. In
// bands a pass reads the rows that the one before it has just written, which are still in the cache, and rows
// that no pass needs any more are overwritten. The results are the same.
#ifndef SPECIALEFFECTS_IMAGING_BANDS_H
#define SPECIALEFFECTS_IMAGING_BANDS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "imaging/Plane8u.h"

/// Rows from `begin` up to, but without, `end`.
struct RowRange {
    int32_t begin;
    int32_t end;

    int32_t count() const { return end - begin; }
};

/// Rows of a plane that are in memory, under their numbers in the plane. Rows are packed.
class PlaneRows {
  public:
    PlaneRows(uint8_t* data, int32_t first, int32_t width) : data_(data), first_(first), width_(width) {}
    /// All rows of a plane.
    PlaneRows(const CPlane8u& plane) : PlaneRows(plane.data, 0, plane.width) {}

    uint8_t* operator[](int32_t y) const { return data_ + ptrdiff_t{y - first_} * width_; }
    int32_t width() const { return width_; }
    size_t bytes(RowRange rows) const {
        return static_cast<size_t>(rows.count()) * static_cast<size_t>(width_);
    }

  private:
    uint8_t* data_;
    int32_t first_;
    int32_t width_;
};

/// One of several passes. `make(rows)` makes these rows of the pass's result; it may read the results of the
/// passes before it from `reach` rows above them to `reach` rows below. A `reach` may be larger than needed,
/// to hold a pass back.
template <class Make>
struct BandPass {
    int32_t reach;
    Make make;
};
template <class Make>
BandPass(int32_t, Make) -> BandPass<Make>;

/// Rows of the last pass that are made together.
inline constexpr int32_t kBandRows = 16;

/// Runs the passes for a picture of `height` rows: all of them for one band after the other, from top to
/// bottom. The reach of the first one counts for nothing, since what it reads is there. The last pass may
/// overwrite what the first one reads, if the reaches of those after the first add up to at least the first
/// one's.
template <class... Passes>
void RunInBands(int32_t height, const Passes&... passes) {
    constexpr size_t kCount = sizeof...(Passes), kLast = kCount - 1;
    const int32_t reach[kCount] = {passes.reach...};
    int32_t done[kCount] = {};
    while (done[kLast] < height) {
        int32_t end[kCount];
        end[kLast] = std::min(done[kLast] + kBandRows, height);
        for (size_t k = kLast; k > 0; --k) end[k - 1] = std::min(end[k] + reach[k], height);
        size_t k = 0;
        const auto run = [&](const auto& pass) {
            if (done[k] < end[k]) pass.make(RowRange{done[k], end[k]});
            done[k] = end[k];
            ++k;
        };
        (run(passes), ...);
    }
}

/// The latest rows of a plane between two passes.
class RowWindow {
  public:
    RowWindow() = default;
    /// Keeps at least `kept` rows above those that are made. The passes up to the last one that reads it
    /// reach down at most kBandRows rows in all. Throws std::bad_alloc when the allocation fails.
    RowWindow(int32_t width, int32_t kept) : plane_(NewPlane(width, kept + 2 * kBandRows)), kept_(kept) {}

    /// Makes room for rows that follow those made before, or start a picture. Their pixels are undefined.
    PlaneRows Advance(RowRange rows) {
        if (rows.begin == 0) first_ = 0;
        const int32_t keep = std::max(rows.begin - kept_, first_);
        std::memmove(plane_.data, Rows()[keep], Rows().bytes({keep, rows.begin}));
        first_ = keep;
        return Rows();
    }

    PlaneRows Rows() const { return {plane_.data, first_, plane_.width}; }

  private:
    CPlane8u plane_;
    int32_t kept_ = 0;
    int32_t first_ = 0;  ///< number of the plane's row 0
};

/// Filters rows of a plane of `height` rows with a mask that reaches `r` pixels in all directions:
/// filter(src, srcStep, dst, dstStep, width, height) for the interior, while the ring of r pixels is copied.
template <class Filter>
void FilterBand(PlaneRows src, PlaneRows dst, RowRange rows, int32_t height, int32_t r, Filter filter) {
    const int32_t width = src.width();
    const bool hasInterior = r <= (std::min(width, height) - 1) / 2;
    const int32_t begin = hasInterior ? std::clamp(r, rows.begin, rows.end) : rows.end;
    const int32_t end = hasInterior ? std::clamp(height - r, begin, rows.end) : rows.end;
    std::memcpy(dst[rows.begin], src[rows.begin], src.bytes({rows.begin, begin}));
    if (begin < end) {
        const auto side = static_cast<size_t>(r);
        for (int32_t y = begin; y < end; ++y) {
            std::memcpy(dst[y], src[y], side);
            std::memcpy(dst[y] + width - r, src[y] + width - r, side);
        }
        filter(src[begin] + r, width, dst[begin] + r, width, width - 2 * r, end - begin);
    }
    std::memcpy(dst[end], src[end], src.bytes({end, rows.end}));
}

#endif
