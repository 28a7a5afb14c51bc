#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <cwchar>

#include "framework/TextBridge.h"

namespace {

/// Units of the wide character at `text`: a pair of surrogates is one. 0 if `end` cuts it.
int WideLength(const WideChar* text, const WideChar* end) {
    if (!IS_HIGH_SURROGATE(text[0])) return 1;
    if (text + 1 == end) return 0;
    return IS_LOW_SURROGATE(text[1]) ? 2 : 1;
}

/// Bytes of the character at `text` in the system's code page; 0 if `end` cuts it.
int NarrowLength(const char* text, const char* end) {
    const auto lead = static_cast<unsigned char>(text[0]);
    int length = 1;
    if (GetACP() == CP_UTF8) {
        length = lead >= 0xF0 && lead <= 0xF4   ? 4
                 : lead >= 0xE0 && lead <= 0xEF ? 3
                 : lead >= 0xC2 && lead <= 0xDF ? 2
                                                : 1;
    } else if (IsDBCSLeadByte(lead)) {
        length = 2;
    }
    for (int i = 1; i < length; ++i) {
        if (text + i == end) return 0;
        if (text[i] == 0) return i;
    }
    return length;
}

int Length(const WideChar* text, const WideChar* end) {
    return WideLength(text, end);
}
int Length(const char* text, const char* end) {
    return NarrowLength(text, end);
}

// One character, or a few replacements for a broken one.
constexpr int kUnits = 16;
int Convert(const WideChar* text, int length, char (&units)[kUnits]) {
    return WideCharToMultiByte(0, 0, text, length, units, kUnits, nullptr, nullptr);
}
int Convert(const char* text, int length, WideChar (&units)[kUnits]) {
    return MultiByteToWideChar(0, 0, text, length, units, kUnits);
}

/// One character at a time, so that a text is cut between two of them.
template <class From, class To>
void ConvertText(const From* from, To* to, size_t size) {
    if (size == 0) return;
    const From* const end = from + size;
    size_t used = 0;
    while (from < end && *from != 0) {
        const int length = Length(from, end);
        To units[kUnits];
        const int count = length > 0 ? Convert(from, length, units) : 0;
        if (count <= 0 || used + static_cast<size_t>(count) >= size) break;
        for (int i = 0; i < count; ++i) to[used++] = units[i];
        from += length;
    }
    to[used] = 0;
}

}  // namespace

void NarrowFromWide(const WideChar* wide, char* narrow, size_t size) {
    ConvertText(wide, narrow, size);
}
void WideFromNarrow(const char* narrow, WideChar* wide, size_t size) {
    ConvertText(narrow, wide, size);
}

void NarrowPathFromWide(const WideChar* wide, char* narrow, size_t size) {
    NarrowFromWide(wide, narrow, size);
    WideChar back[kTextCapacity];
    WideFromNarrow(narrow, back, kTextCapacity);
    if (std::wcsncmp(wide, back, kTextCapacity) == 0) return;
    // Leaves a path that is too long as it is: there is no such file, either.
    char utf8[kTextCapacity];
    if (WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, kTextCapacity, nullptr, nullptr) == 0) return;
    for (size_t i = 0; i < size && i < kTextCapacity; ++i) narrow[i] = utf8[i];
}
