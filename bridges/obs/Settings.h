// What a filter keeps in OBS's settings:
//
//     effect            what sfx_create takes: "rain", "preset:noir", "sepia+rain:drop-size=9"
//     EFFECT.PROPERTY   a value that the user has set: "rain.drop-size"; an effect keeps its values while
//                       another one runs
//     seed
//     search, preset-name   texts that are being typed in the properties
//
// Values are numbers, booleans, colours in OBS's form (0xAABBGGRR), and the ids of choices.
#ifndef SPECIALEFFECTS_BRIDGES_OBS_SETTINGS_H
#define SPECIALEFFECTS_BRIDGES_OBS_SETTINGS_H

#include <obs.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "sfx/sfx.h"

namespace sfxobs {

inline constexpr const char* kEffectKey = "effect";
inline constexpr const char* kSeedKey = "seed";
inline constexpr const char* kSearchKey = "search";
inline constexpr const char* kPresetNameKey = "preset-name";

using Effect = std::unique_ptr<sfx_effect, decltype(&sfx_destroy)>;
using Data = std::unique_ptr<obs_data_t, decltype(&obs_data_release)>;

/// Null where libsfx refuses the text; sfx_message() says why.
Effect CreateEffect(const std::string& text);
/// The text that creates the same effect.
std::string TextOf(const sfx_effect* effect);

/// The effect and the values that the user has chosen.
struct Wish {
    std::string effect;
    uint32_t seed = SFX_DEFAULT_SEED;
    std::map<std::string, std::variant<long long, std::string>> values;  // by settings key

    bool operator==(const Wish&) const = default;
};

Wish ReadWish(obs_data_t* settings);

/// What sfx_set_int takes.
struct Value {
    std::string property;  // with its link: "0.drop-size"
    int32_t number = 0;

    bool operator==(const Value&) const = default;
};
/// The values of a wish that an effect has properties for.
std::vector<Value> ValuesFor(const Wish& wish, const sfx_effect* effect);

std::string KeyOf(const sfx_effect_info& effect, const sfx_property_info& property);
/// Whether a property's values are named: it is shown as a list, and its setting is the id of a choice.
bool HasChoices(const sfx_property_info& property);
/// The id of a choice, or the number where it has none.
std::string ChoiceText(const sfx_property_info& property, int32_t value);
/// 0xRRGGBB as OBS's opaque 0xAABBGGRR.
long long ColorSetting(int32_t color);

void SetDefaultValue(obs_data_t* settings, const std::string& key, const sfx_property_info& property,
                     int32_t value);
void SetDefaults(obs_data_t* settings);

/// Calls `visit(link, effect info, property info)` for all properties of all links.
template <class Visit>
void ForEachProperty(const sfx_effect* effect, Visit&& visit) {
    for (size_t link = 0; link < sfx_link_count(effect); ++link) {
        const sfx_effect_info& info = *sfx_link_info(effect, link);
        for (size_t i = 0; i < info.property_count; ++i) visit(link, info, *info.properties[i]);
    }
}

}  // namespace sfxobs

#endif
