// Division of small numbers by constants as multiplications that vectorise in 16 bits. Each is the truncated
// quotient over its whole range, which the compiler checks below.
#ifndef SPECIALEFFECTS_IMAGING_EXACTDIVISION_H
#define SPECIALEFFECTS_IMAGING_EXACTDIVISION_H

#include <cstdint>

/// n / 255 for n up to 255 * 255: products and blends of two bytes.
constexpr uint16_t DivideBy255(uint16_t n) {
    const auto scaled = static_cast<uint16_t>(n + 1 + (n >> 8));
    return static_cast<uint16_t>(scaled >> 8);
}

/// n / 13 for n up to 13 * 255: weighted means of thirteen parts.
constexpr uint16_t DivideBy13(uint16_t n) {
    return static_cast<uint16_t>((uint32_t{n} * 5042) >> 16);
}

/// n / 3 for n up to 3 * 255: means of three bytes.
constexpr uint16_t DivideBy3(uint16_t n) {
    return static_cast<uint16_t>((uint32_t{n} * 21846) >> 16);
}

namespace exact_division_detail {
template <class Divide>
consteval bool IsExact(Divide divide, uint32_t divisor, uint32_t last) {
    for (uint32_t n = 0; n <= last; ++n) {
        if (divide(static_cast<uint16_t>(n)) != n / divisor) return false;
    }
    return true;
}
static_assert(IsExact(DivideBy255, 255, 255 * 255));
static_assert(IsExact(DivideBy13, 13, 13 * 255));
static_assert(IsExact(DivideBy3, 3, 3 * 255));
}  // namespace exact_division_detail

#endif
