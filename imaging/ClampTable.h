// Saturation of small sums by look-up.
#ifndef SPECIALEFFECTS_IMAGING_CLAMPTABLE_H
#define SPECIALEFFECTS_IMAGING_CLAMPTABLE_H

#include <cstdint>

/// The zero of a shared, constant table that clamps to a byte: entry i, for i from -1024 to 1023, is i where
/// that is a byte, 0 below and 255 above. A frame-sized loop is better served by a comparison that the
/// compiler can vectorise; the result is the same.
const uint8_t* GetClampTable();

#endif
