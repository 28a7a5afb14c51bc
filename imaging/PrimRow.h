// Rows of images whose steps are in bytes.
#ifndef SPECIALEFFECTS_IMAGING_PRIMROW_H
#define SPECIALEFFECTS_IMAGING_PRIMROW_H

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "imaging/Multiversion.h"

namespace prim {

/// Row y of an image whose rows lie `step` bytes apart.
template <typename T>
SE_INLINE T* Row(T* image, ptrdiff_t step, ptrdiff_t y) {
    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(image) + y * step);
}

/// Widest part of a row that a filter works on at once. Line buffers of that length fit on the stack and stay
/// in the first-level cache from the pass that fills them to the pass that reads them.
inline constexpr ptrdiff_t kStrip = 2048;

/// Calls filter(begin, end) for the strips of columns that make up the width.
template <typename Filter>
SE_INLINE void ForStrips(ptrdiff_t width, Filter filter) {
    for (ptrdiff_t begin = 0; begin < width; begin += kStrip) {
        filter(begin, std::min(begin + kStrip, width));
    }
}

}  // namespace prim

#endif
