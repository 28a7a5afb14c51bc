// The text form of effects: "sepia+rain:drop-size=9".
#ifndef SPECIALEFFECTS_SFX_EFFECTTEXT_H
#define SPECIALEFFECTS_SFX_EFFECTTEXT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sfx/EffectList.h"

namespace sfx {

/// What has been set of an effect's properties, in their order; nothing where the starting value holds.
using Settings = std::vector<std::optional<int32_t>>;

/// One effect of a row, as it is described.
struct LinkText {
    const EffectEntry* effect;
    Settings settings;
};

inline constexpr size_t kMostLinks = 64;

/// Reads a text. Throws Failure; sets `clamped` where a value was out of range.
std::vector<LinkText> ParseEffect(std::string_view text, bool& clamped);
/// The same without presets in it, as a preset's own text has to be.
std::vector<LinkText> ParsePlainEffect(std::string_view text);

std::string PrintLink(const LinkText& link);

}  // namespace sfx

#endif
