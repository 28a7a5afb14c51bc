// GUIDs from their registry form, at compile time.
#ifndef SPECIALEFFECTS_FRAMEWORK_GUID_H
#define SPECIALEFFECTS_FRAMEWORK_GUID_H

#include <cstring>
#include <string_view>

#include "framework/SpecialEffectFactory.h"

namespace guid_detail {

constexpr uint32_t HexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<uint32_t>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<uint32_t>(c - 'A' + 10);
    throw "not an upper case hexadecimal digit";
}

constexpr uint32_t Hex(std::string_view digits) {
    uint32_t value = 0;
    for (const char c : digits) value = value * 16 + HexDigit(c);
    return value;
}

}  // namespace guid_detail

/// "{ABC27FCB-B469-428E-9A2F-C2117AD7148E}" as 16 bytes. Anything else does not compile.
consteval EffectGuid ParseGuid(std::string_view text) {
    using guid_detail::Hex;
    if (text.size() != 38 || text[0] != '{' || text[37] != '}' || text[9] != '-' || text[14] != '-' ||
        text[19] != '-' || text[24] != '-') {
        throw "not a GUID in registry form";
    }
    EffectGuid guid{Hex(text.substr(1, 8)),
                    static_cast<uint16_t>(Hex(text.substr(10, 4))),
                    static_cast<uint16_t>(Hex(text.substr(15, 4))),
                    {}};
    for (size_t i = 0; i < 8; ++i) {
        guid.Data4[i] = static_cast<uint8_t>(Hex(text.substr(i < 2 ? 20 + 2 * i : 21 + 2 * i, 2)));
    }
    return guid;
}

inline bool SameGuid(const EffectGuid& a, const EffectGuid& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

#endif
