// Argument checks that the primitives share. Each gives the code of what is wrong, or kPrimOk.
#ifndef SPECIALEFFECTS_IMAGING_PRIMCHECK_H
#define SPECIALEFFECTS_IMAGING_PRIMCHECK_H

#include <cstdint>
#include <limits>

#include "imaging/Prim.h"

namespace prim {

/// Bytes of an element, as row steps count them.
template <typename T>
inline constexpr int32_t kSize = static_cast<int32_t>(sizeof(T));

constexpr PrimStatus CheckSize(int32_t width, int32_t height) {
    return width < 1 || height < 1 ? kPrimSizeError : kPrimOk;
}

/// `bytesPerPixel` counts all channels of a pixel.
constexpr PrimStatus CheckStep(int32_t step, int32_t width, int32_t bytesPerPixel = 1) {
    return step < 1 || step < int64_t{width} * bytesPerPixel ? kPrimStepError : kPrimOk;
}

constexpr PrimStatus CheckAlignment(int32_t step, int32_t elementSize) {
    return step % elementSize != 0 ? kPrimAlignmentError : kPrimOk;
}

/// The first code that is not kPrimOk.
template <typename... Codes>
constexpr PrimStatus FirstError(Codes... codes) {
    PrimStatus first = kPrimOk;
    ((first = first != kPrimOk ? first : codes), ...);
    return first;
}

template <typename... Pointers>
constexpr PrimStatus CheckPointers(const Pointers*... pointers) {
    return (... || (pointers == nullptr)) ? kPrimNullError : kPrimOk;
}

/// One 8uC1 image.
constexpr PrimStatus CheckImage(const uint8_t* data, int32_t step, int32_t width, int32_t height) {
    return FirstError(CheckPointers(data), CheckSize(width, height), CheckStep(step, width));
}

/// Two 8uC1 images of one size.
constexpr PrimStatus CheckImages(const uint8_t* first, int32_t firstStep, const uint8_t* second,
                                 int32_t secondStep, int32_t width, int32_t height) {
    return FirstError(CheckPointers(first, second), CheckSize(width, height), CheckStep(firstStep, width),
                      CheckStep(secondStep, width));
}

/// The code of a square mask.
constexpr PrimStatus CheckMask(int32_t mask) {
    return mask == kPrimMask3x3 || mask == kPrimMask5x5 ? kPrimOk : kPrimMaskError;
}

/// The place of the pixel in a mask of a size along one axis.
constexpr PrimStatus CheckAnchor(int32_t anchor, int32_t size) {
    return anchor < 0 || anchor >= size ? kPrimAnchorError : kPrimOk;
}

/// A rectangle in a table or a window. Its right and lower edge have to be numbers too.
constexpr PrimStatus CheckRect(const PrimRect& rect) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    const bool good = rect.x >= 0 && rect.y >= 0 && rect.width >= 1 && rect.height >= 1 &&
                      rect.x <= kMost - rect.width && rect.y <= kMost - rect.height;
    return good ? kPrimOk : kPrimSizeError;
}

}  // namespace prim

#endif
