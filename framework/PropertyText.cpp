#include "framework/PropertyText.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Reads a number at `text` and advances `text` past it. Returns false, with `text` unchanged, if there is no
/// number.
bool ReadInteger(const char*& text, int32_t& value) {
    char* end = nullptr;
    const long long number = std::strtoll(text, &end, 10);
    if (end == text) return false;
    text = end;
    value = static_cast<int32_t>(std::clamp<long long>(number, std::numeric_limits<int32_t>::min(),
                                                       std::numeric_limits<int32_t>::max()));
    return true;
}

}  // namespace

ResultCode StringCopySafe(char* destination, size_t size, const char* source) {
    if (size == 0 || destination == nullptr || source == nullptr) return kInvalidArgument;
    for (size_t i = 0; i < size; ++i) {
        destination[i] = source[i];
        if (source[i] == '\0') return kSuccess;
    }
    destination[size - 1] = '\0';
    return kTextTruncated;
}

bool SameName(const char* a, const char* b) {
    while (LowerAscii(*a) == LowerAscii(*b)) {
        if (*a == '\0') return true;
        ++a;
        ++b;
    }
    return false;
}

int32_t IntegerFromString(const char* text) {
    int32_t value = 0;
    return ReadInteger(text, value) ? value : 0;
}

void IntegerToString(int32_t value, char* buffer, size_t size) {
    std::snprintf(buffer, size, "%d", value);
}

bool BoolFromString(const char* text) {
    return SameName(text, "TRUE");
}

void BoolToString(bool value, char* buffer, size_t size) {
    StringCopySafe(buffer, size, value ? "TRUE" : "FALSE");
}

uint32_t ColorFromString(const char* text) {
    uint32_t color = 0;
    for (uint32_t channel = 0; channel < 3; ++channel) {
        int32_t value = 0;
        if (channel > 0 && *text++ != ',') return 0;
        if (!ReadInteger(text, value)) return 0;
        color |= static_cast<uint32_t>(std::clamp(value, 0, 255)) << (8 * channel);
    }
    return color;
}

void ColorToString(uint32_t color, char* buffer, size_t size) {
    std::snprintf(buffer, size, "%u,%u,%u", color & 255U, (color >> 8) & 255U, (color >> 16) & 255U);
}
