// Pixels through a table of source indices.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_GATHER_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_GATHER_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

/// Stands in a table for a pixel that keeps its value.
inline constexpr uint32_t kKeepPixel = 0xFFFFFFFF;

/// dst[i] = src[indices[i]] for every entry that is not kKeepPixel.
inline void GatherPixels(const std::vector<uint32_t>& indices, const uint8_t* src, uint8_t* dst) {
    for (size_t i = 0; i < indices.size(); ++i) {
        if (indices[i] != kKeepPixel) dst[i] = src[indices[i]];
    }
}

/// The same on one plane, by way of a copy in `scratch`.
inline void GatherInPlace(const std::vector<uint32_t>& indices, uint8_t* plane, uint8_t* scratch) {
    std::memcpy(scratch, plane, indices.size());
    GatherPixels(indices, scratch, plane);
}

#endif
