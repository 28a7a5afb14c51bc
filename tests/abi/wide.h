/* The little that a host needs of UTF-16 and UTF-8. */
#ifndef ABI_WIDE_H
#define ABI_WIDE_H

#include "module.h"

size_t wide_length(const Wide* text);

/* ASCII to UTF-16 with the terminator; `to` holds the whole text. */
void widen(Wide* to, const char* text);
bool wide_is(const Wide* wide, const char* text);

/*
 * How many units of well-formed UTF-16 are kept when the text is cut at a whole character to fit a UTF-8
 * buffer of `size` bytes with its terminator.
 */
size_t units_that_fit(const Wide* text, size_t size);

#endif
