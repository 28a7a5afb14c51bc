// Medians of few tones, by votes.
//
// With at most eight tones a pixel fits in a byte as a row of seven flags: flag k says whether the tone is
// above k. The median of a window is above k exactly where most of its pixels are, so that each flag
// of the median is the majority of that flag. Logical operations on bytes count eight votes at a time,
// without any comparison: a quarter of the work of a sorting network.
#ifndef SPECIALEFFECTS_IMAGING_BITMEDIAN_H
#define SPECIALEFFECTS_IMAGING_BITMEDIAN_H

#include <cstddef>
#include <cstdint>

/// Each bit of dst(x, y) is the value of that bit in most pixels of the 5 by 5 window around src(x, y). The
/// source has two more pixels on each side; steps are in bytes. The images do not overlap.
void FilterMajority5(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                     ptrdiff_t height);

#endif
