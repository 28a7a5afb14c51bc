// Argument checks that the primitives share. Each gives the code of what is wrong, or kPrimOk.
#ifndef SPECIALEFFECTS_IMAGING_PRIMCHECK_H
#define SPECIALEFFECTS_IMAGING_PRIMCHECK_H

#include <cstdint>

#include "imaging/Prim.h"

namespace prim {

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

}  // namespace prim

#endif
