// Sums of bytes.
#ifndef SPECIALEFFECTS_IMAGING_BYTESUM_H
#define SPECIALEFFECTS_IMAGING_BYTESUM_H

#include <cstddef>
#include <cstdint>

/// Sum of `count` bytes, exact for every count.
uint64_t SumBytes(const uint8_t* data, size_t count);

#endif
