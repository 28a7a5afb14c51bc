// Bytes through a table of 256 entries, faster than a load for each.
#ifndef SPECIALEFFECTS_IMAGING_LOOKUP_H
#define SPECIALEFFECTS_IMAGING_LOOKUP_H

#include <cstddef>
#include <cstdint>

/// data[i] = table[data[i]] for `count` bytes. `table` has 256 entries and does not overlap the data.
void LookupBytes(const uint8_t* table, uint8_t* data, size_t count);

/// dst[i] = table[src[i]]. `src` and `dst` are the same or do not overlap.
void LookupBytes(const uint8_t* table, const uint8_t* src, uint8_t* dst, size_t count);

#endif
