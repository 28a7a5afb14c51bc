// Tables of source coordinates.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_REMAPTABLE_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_REMAPTABLE_H

#include <cstddef>
#include <cstdint>
#include <vector>

/// The column and the row of the source of each pixel, row after row. Looks at memory of somebody else.
struct RemapTable {
    float* xMap;
    float* yMap;
    int32_t width, height;

    float* XRow(int32_t y) const { return xMap + static_cast<ptrdiff_t>(y) * width; }
    float* YRow(int32_t y) const { return yMap + static_cast<ptrdiff_t>(y) * width; }

    /// Every pixel is its own source.
    void FillIdentity() const;

    /// The indices of the source pixels, coordinates rounded half up; CGatherMap::kKeep where the source lies
    /// outside the picture.
    std::vector<uint32_t> NearestIndices() const;
};

#endif
