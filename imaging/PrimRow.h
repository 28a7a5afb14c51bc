// Rows of images whose steps are in bytes.
#ifndef SPECIALEFFECTS_IMAGING_PRIMROW_H
#define SPECIALEFFECTS_IMAGING_PRIMROW_H

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "imaging/PerLevel.h"

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

/// Columns from `begin` up to, but without, `end`.
struct Strip {
    ptrdiff_t begin;
    ptrdiff_t end;
};

/// The strips that make up a width, for a loop over them.
class Strips {
  public:
    SE_INLINE explicit Strips(ptrdiff_t width) : width_(width) {}

    struct Iterator {
        ptrdiff_t at;
        ptrdiff_t width;

        SE_INLINE Strip operator*() const { return {at, std::min(at + kStrip, width)}; }
        SE_INLINE Iterator& operator++() {
            at += kStrip;
            return *this;
        }
        SE_INLINE bool operator!=(const Iterator& end) const { return at < end.at; }
    };
    SE_INLINE Iterator begin() const { return {0, width_}; }
    SE_INLINE Iterator end() const { return {width_, width_}; }

  private:
    ptrdiff_t width_;
};

}  // namespace prim

#endif
