// The unchecked form of a primitive.
#ifndef SPECIALEFFECTS_IMAGING_MORPHOLOGY_H
#define SPECIALEFFECTS_IMAGING_MORPHOLOGY_H

#include <cstddef>
#include <cstdint>

namespace prim {

/// dst = the largest of the 3 by 3 pixels around each of `src`, which is another image; one pixel around the
/// region is read.
void Dilate3x3(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
               ptrdiff_t height);

}  // namespace prim

#endif
