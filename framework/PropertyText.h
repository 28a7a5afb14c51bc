// String forms of property values. Independent of the process's locale.
#ifndef SPECIALEFFECTS_FRAMEWORK_PROPERTYTEXT_H
#define SPECIALEFFECTS_FRAMEWORK_PROPERTYTEXT_H

#include <cstddef>
#include <cstdint>

#include "framework/SpecialEffectFilter.h"

/// Copies `source` to a buffer of `size` bytes and terminates it. kTextTruncated when it had to be cut;
/// kInvalidArgument, with nothing written, for a size of 0 or a null pointer.
ResultCode StringCopySafe(char* destination, size_t size, const char* source);

/// Whether two property names are equal, ignoring ASCII case.
bool SameName(const char* a, const char* b);

/// The decimal number at the start of a text, after blanks; 0 without a number. Numbers beyond 32 bits
/// saturate.
int32_t IntegerFromString(const char* text);
void IntegerToString(int32_t value, char* buffer, size_t size);

/// True for "TRUE" in any case, false for every other text.
bool BoolFromString(const char* text);
void BoolToString(bool value, char* buffer, size_t size);

/// "red,green,blue" in decimal, each clamped to 0..255, packed with red in the low byte. Black when the text
/// does not hold three numbers.
uint32_t ColorFromString(const char* text);
void ColorToString(uint32_t color, char* buffer, size_t size);

#endif
