#include "imaging/Lookup.h"

void LookupBytes(const uint8_t* table, const uint8_t* src, uint8_t* dst, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = table[src[i]];
    }
}

void LookupBytes(const uint8_t* table, uint8_t* data, size_t count) {
    LookupBytes(table, data, data, count);
}
