// Remapping of planes through fixed maps.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_GATHER_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_GATHER_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "framework/StreamRules.h"
#include "imaging/IndexGather.h"
#include "imaging/Plane8u.h"

/// A map between pictures of one size; `indices` has the source of each pixel.
inline GatherMap MakeGatherMap(const std::vector<uint32_t>& indices, int32_t width, int32_t pixelBytes = 1) {
    GatherMap map;
    map.Build(indices, width, indices.size(), pixelBytes);
    return map;
}

/// Remaps a plane in place through a copy in `scratch`, which must be at least as large.
inline void GatherInPlace(const GatherMap& map, const FramePlane& plane, CPlane8u& scratch) {
    std::memcpy(scratch.data, plane.data,
                static_cast<size_t>(plane.width) * static_cast<size_t>(plane.height));
    map.Apply(scratch.data, plane.data);
}

#endif
