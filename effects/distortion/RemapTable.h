// Tables of source coordinates.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_REMAPTABLE_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_REMAPTABLE_H

#include <cstddef>
#include <cstdint>
#include <vector>

/// The source column and source row of each pixel, row by row. Does not own its memory.
struct RemapTable {
    float* xMap;
    float* yMap;
    int32_t width, height;

    float* XRow(int32_t y) const { return xMap + static_cast<ptrdiff_t>(y) * width; }
    float* YRow(int32_t y) const { return yMap + static_cast<ptrdiff_t>(y) * width; }

    /// Makes every pixel its own source.
    void FillIdentity() const;

    /// The indices of the source pixels, coordinates rounded half up; GatherMap::kKeep where the source lies
    /// outside the picture.
    std::vector<uint32_t> NearestIndices() const;
};

/// A table that owns its memory; entries start at 0.
class OwnedRemapTable {
  public:
    OwnedRemapTable(int32_t width, int32_t height)
        : xMap_(static_cast<size_t>(width) * static_cast<size_t>(height)),
          yMap_(xMap_.size()),
          width_(width),
          height_(height) {}

    RemapTable View() { return {xMap_.data(), yMap_.data(), width_, height_}; }

  private:
    std::vector<float> xMap_, yMap_;
    int32_t width_, height_;
};

#endif
