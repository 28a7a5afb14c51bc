// Edge strengths computed while drawing, without storing gradient planes.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_EDGES_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_EDGES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "imaging/PerLevel.h"

/// |dx| + |dy| of the 3 by 3 Sobel pair at a pixel with neighbours on all sides, 0 to 2040. `step` is the
/// distance between rows in bytes.
///
/// All of it fits 16 bits. Loops over edges compare strengths with numbers of that size, so that compilers
/// fill vectors with as many pixels as possible.
SE_INLINE int16_t EdgeStrength(const uint8_t* pixel, ptrdiff_t step) {
    const uint8_t* const above = pixel - step;
    const uint8_t* const below = pixel + step;
    const auto dx =
        static_cast<int16_t>((below[-1] + 2 * below[0] + below[1]) - (above[-1] + 2 * above[0] + above[1]));
    const auto dy =
        static_cast<int16_t>((above[-1] - above[1]) + 2 * (pixel[-1] - pixel[1]) + (below[-1] - below[1]));
    const auto size = [](int16_t d) { return std::max(d, static_cast<int16_t>(-d)); };
    return static_cast<int16_t>(size(dx) + size(dy));
}

/// Whether there is a row above row `y` of a plane and one below.
inline bool IsInside(int32_t height, int32_t y) {
    return y > 0 && y < height - 1;
}

/// Calls draw(x, strength) for the pixels of a row of a plane, given whether it is inside. The outermost
/// pixels of a plane have strength 0. `draw` must not write to the plane.
template <class Draw>
SE_INLINE void ForEdgesOfRow(const uint8_t* row, ptrdiff_t step, ptrdiff_t width, bool inside, Draw draw) {
    if (!inside || width < 3) {
        for (ptrdiff_t x = 0; x < width; ++x) draw(x, int16_t{0});
        return;
    }
    draw(ptrdiff_t{0}, int16_t{0});
    for (ptrdiff_t x = 1; x < width - 1; ++x) draw(x, EdgeStrength(row + x, step));
    draw(width - 1, int16_t{0});
}

#endif
