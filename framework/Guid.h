// GUIDs from their registry form, at compile time.
#ifndef SPECIALEFFECTS_FRAMEWORK_GUID_H
#define SPECIALEFFECTS_FRAMEWORK_GUID_H

#include <cstring>
#include <string_view>

#include "framework/SpecialEffectFactory.h"

/// "{ABC27FCB-B469-428E-9A2F-C2117AD7148E}" as 16 bytes. Anything else does not compile.
consteval EffectGuid ParseGuid(std::string_view text) {
    const auto hex = [text](size_t first, size_t count) {
        uint32_t value = 0;
        for (const char c : text.substr(first, count)) {
            const bool isDigit = c >= '0' && c <= '9';
            if (!isDigit && !(c >= 'A' && c <= 'F')) throw "not an upper case hexadecimal digit";
            value = value * 16 + static_cast<uint32_t>(isDigit ? c - '0' : c - 'A' + 10);
        }
        return value;
    };
    if (text.size() != 38 || text[0] != '{' || text[37] != '}' || text[9] != '-' || text[14] != '-' ||
        text[19] != '-' || text[24] != '-') {
        throw "not a GUID in registry form";
    }
    EffectGuid guid{hex(1, 8), static_cast<uint16_t>(hex(10, 4)), static_cast<uint16_t>(hex(15, 4)), {}};
    for (size_t i = 0; i < 8; ++i) {
        guid.Data4[i] = static_cast<uint8_t>(hex(i < 2 ? 20 + 2 * i : 21 + 2 * i, 2));
    }
    return guid;
}

inline bool SameGuid(const EffectGuid& a, const EffectGuid& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

#endif
