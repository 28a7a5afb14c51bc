// Names as people type them, and values as text. Independent of the process's locale.
#ifndef SPECIALEFFECTS_SFX_WORDS_H
#define SPECIALEFFECTS_SFX_WORDS_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sfx {

/// Without blanks at its ends.
std::string_view Trimmed(std::string_view text);
/// Equal except for the case of ASCII letters.
bool SameText(std::string_view a, std::string_view b);
/// Lower case, with blanks and underscores as dashes, without blanks at its ends.
std::string DashedLower(std::string_view text);
/// "drop-size" from "DropSize", "rotation-speed" from "Rotation Speed", "color-1" from "Color 1".
std::string DashedName(std::string_view name);

/// Bytes of the UTF-8 character that a text begins with; 0 where it begins with none.
size_t CharacterLength(std::string_view text);
/// Whether a text is whole characters of UTF-8, none of which is 0.
bool IsUtf8(std::string_view text);

std::vector<std::string_view> Split(std::string_view text, char separator);

/// A whole decimal number; beyond 32 bits the nearest bound. Nothing for anything else.
std::optional<int32_t> ParseInteger(std::string_view text);
/// true, false, yes, no, on, off, 1, 0.
std::optional<bool> ParseBoolean(std::string_view text);
/// 0xRRGGBB from "#rrggbb" or "red,green,blue"; sets `clamped` where a channel is beyond 0 to 255.
std::optional<int32_t> ParseColor(std::string_view text, bool& clamped);
std::string PrintColor(int32_t color);

/// The names nearest to what was typed, at most three, the nearest first: those that contain it, then those
/// a few letters away.
std::vector<std::string_view> NearestNames(std::string_view typed, std::span<const std::string_view> names);
/// "; did you mean a, b or c?" or, where nothing is near, "".
std::string Suggestion(std::string_view typed, std::span<const std::string_view> names);

}  // namespace sfx

#endif
