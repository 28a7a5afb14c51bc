#include "framework/TextBridge.h"

#include <cstdint>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Returns the character at `text` and advances `text` past it; 0 if `end` cuts the character. `text` must
/// not be at `end` or at the terminator. Nothing from `end` on is read.
char32_t NextCharacter(const WideChar*& text, const WideChar* end) {
    const char32_t unit = static_cast<char16_t>(*text++);
    if (IsHighSurrogate(unit)) {
        if (text == end) return 0;
        const char32_t low = static_cast<char16_t>(*text);
        if (!IsLowSurrogate(low)) return kReplacement;
        ++text;
        return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    return IsLowSurrogate(unit) ? kReplacement : unit;
}

char32_t NextCharacter(const char*& text, const char* end) {
    const auto lead = static_cast<uint8_t>(*text++);
    if (lead < 0x80) return lead;
    const int more = lead >= 0xC2 && lead <= 0xDF   ? 1
                     : lead >= 0xE0 && lead <= 0xEF ? 2
                     : lead >= 0xF0 && lead <= 0xF4 ? 3
                                                    : 0;
    if (more == 0) return kReplacement;
    char32_t character = lead & (0x3FU >> more);
    for (int i = 0; i < more; ++i) {
        if (text + i == end) return 0;
        const auto next = static_cast<uint8_t>(text[i]);
        if ((next & 0xC0U) != 0x80) return kReplacement;
        character = (character << 6) | (next & 0x3FU);
    }
    constexpr char32_t kShortest[] = {0, 0x80, 0x800, 0x10000};
    if (character < kShortest[more] || character > 0x10FFFF || IsHighSurrogate(character) ||
        IsLowSurrogate(character)) {
        return kReplacement;
    }
    text += more;
    return character;
}

size_t Encode(char32_t character, char (&units)[4]) {
    if (character < 0x80) {
        units[0] = static_cast<char>(character);
        return 1;
    }
    const size_t length = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    for (size_t i = length - 1; i > 0; --i) {
        units[i] = static_cast<char>(0x80U | (character & 0x3FU));
        character >>= 6;
    }
    constexpr uint32_t kLead[] = {0, 0, 0xC0, 0xE0, 0xF0};
    units[0] = static_cast<char>(kLead[length] | character);
    return length;
}

size_t Encode(char32_t character, WideChar (&units)[4]) {
    if (character < 0x10000) {
        units[0] = static_cast<WideChar>(character);
        return 1;
    }
    units[0] = static_cast<WideChar>(0xD800 + ((character - 0x10000) >> 10));
    units[1] = static_cast<WideChar>(0xDC00 + ((character - 0x10000) & 0x3FF));
    return 2;
}

template <class From, class To>
void Convert(const From* from, To* to, size_t size) {
    if (size == 0) return;
    const From* const end = from + size;
    size_t used = 0;
    while (from < end && *from != 0) {
        const char32_t character = NextCharacter(from, end);
        if (character == 0) break;
        To units[4];
        const size_t length = Encode(character, units);
        if (used + length >= size) break;
        for (size_t i = 0; i < length; ++i) to[used++] = units[i];
    }
    to[used] = 0;
}

}  // namespace

void NarrowFromWide(const WideChar* wide, char* narrow, size_t size) {
    Convert(wide, narrow, size);
}
void WideFromNarrow(const char* narrow, WideChar* wide, size_t size) {
    Convert(narrow, wide, size);
}
void NarrowPathFromWide(const WideChar* wide, char* narrow, size_t size) {
    NarrowFromWide(wide, narrow, size);
}
