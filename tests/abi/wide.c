#include "wide.h"

size_t wide_length(const Wide* text) {
    size_t n = 0;
    while (text[n]) ++n;
    return n;
}

void widen(Wide* to, const char* text) {
    do *to++ = (unsigned char)*text;
    while (*text++);
}

bool wide_is(const Wide* wide, const char* text) {
    while (*wide && *wide == (unsigned char)*text) ++wide, ++text;
    return *wide == (unsigned char)*text;
}

size_t units_that_fit(const Wide* text, size_t size) {
    size_t units = 0, bytes = 0;
    while (text[units]) {
        const Wide unit = text[units];
        const bool pair = unit >= 0xD800 && unit < 0xDC00;
        const size_t needed = pair ? 4 : unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3;
        if (bytes + needed >= size) break;
        bytes += needed;
        units += pair ? 2 : 1;
    }
    return units;
}
