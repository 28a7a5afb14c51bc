// What the program says of an effect.
#ifndef SPECIALEFFECTS_HOST_EFFECTWORDS_H
#define SPECIALEFFECTS_HOST_EFFECTWORDS_H

#include <span>
#include <string>

#include "Json.h"
#include "sfx/sfx.h"

namespace host {

/// "integer", "boolean", "color" or "choice".
const char* TypeName(sfx_type type);

/// A value as `-e` takes it: "9", "true", "#0000c0", "regular-stars".
std::string ValueText(const sfx_property_info& property, int32_t value);

/// "2 to 16", "true or false", "#rrggbb", "stars, hearts".
std::string RangeText(const sfx_property_info& property);

std::span<const sfx_property_info* const> PropertiesOf(const sfx_effect_info& effect);

/// A text for `-e` that sets a property to something else than its starting value.
std::string ExampleOf(const sfx_effect_info& effect);

/// "keeps a memory of earlier frames, moves by itself"; empty for an effect that depends on nothing but the
/// frame.
std::string TraitsText(const sfx_effect_info& effect);

Json JsonOf(const sfx_effect_info& effect);
Json JsonOf(const sfx_preset_info& preset);

}  // namespace host

#endif
