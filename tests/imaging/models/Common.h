// What the plain models share: rounding words and access to pixels by coordinates.
//
// A model is the definition of a primitive written as the simplest loops. It checks no arguments, uses no
// tricks, and shares no code with the primitive. Plain code is preferred to fast code.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_MODELS_COMMON_H
#define SPECIALEFFECTS_TESTS_IMAGING_MODELS_COMMON_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace model {

/// The element (x, y) of an image whose rows are `step` bytes apart.
template <typename T>
T& At(T* image, int32_t step, int64_t x, int64_t y) {
    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(image) + y * step)[x];
}

inline uint8_t Sat8(int64_t v) {
    return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

/// trunc(x + 0.5), less 1 when that is odd and equals x + 0.5 exactly.
inline int32_t HalfToEven(double x) {
    const auto t = static_cast<int32_t>(x + 0.5);
    return t % 2 != 0 && t == x + 0.5 ? t - 1 : t;
}

/// The integer form of half to even, for v / 2^s.
inline int64_t EvenShift(int64_t v, int32_t s) {
    return (v + (int64_t{1} << (s - 1)) - 1 + ((v >> s) & 1)) >> s;
}

/// Calls op(x, y) for every pixel, row by row.
template <typename Op>
void ForEach(int32_t width, int32_t height, Op op) {
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            op(x, y);
        }
    }
}

}  // namespace model

#endif
