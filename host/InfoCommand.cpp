// `info`: one effect with its properties, or one preset.
#include <fmt/format.h>

#include <string_view>

#include "Commands.h"
#include "EffectChain.h"
#include "EffectWords.h"
#include "StandardOutput.h"

namespace host {
namespace {

constexpr std::string_view kPreset = "preset:";

void PrintProperty(const sfx_property_info& property) {
    Print("  {:<20} {}\n", property.id, property.description);
    const std::string range = property.choice_count > 0 ? "one of these" : RangeText(property);
    Print("  {:<20} {}; starts with {}\n", "", range, ValueText(property, property.start));
    for (size_t i = 0; i < property.choice_count; ++i) {
        const sfx_choice& choice = property.choices[i];
        Print("  {:<20}   {:<16} {}\n", "", choice.id, choice.description);
    }
}

void PrintWords(const sfx_effect_info& effect) {
    Print("{} ({}), {}\n", effect.title, effect.id, effect.kind);
    if (*effect.description != '\0') Print("{}\n", effect.description);
    if (const std::string traits = TraitsText(effect); !traits.empty()) Print("It {}.\n", traits);
    Print("\n");
    if (effect.property_count == 0) {
        Print("  no properties\n");
    } else {
        for (const sfx_property_info* property : PropertiesOf(effect)) PrintProperty(*property);
    }
    Print("\nGUID     {}\nexample  specialeffects apply -e {} INPUT OUTPUT\n", effect.guid,
          ExampleOf(effect));
}

const sfx_preset_info& RequirePreset(std::string_view id) {
    for (size_t i = 0; i < sfx_preset_count(); ++i) {
        const sfx_preset_info* preset = sfx_preset_at(i);
        if (id == preset->id) return *preset;
    }
    throw UsageError("there is no preset \"{}\"; \"specialeffects list\" shows them", id);
}

void PrintWords(const sfx_preset_info& preset) {
    Print("{} (preset:{})\n{}\n\neffects  {}\nexample  specialeffects apply -e preset:{} INPUT OUTPUT\n",
          preset.title, preset.id, preset.description, preset.effect, preset.id);
}

template <class Info>
void Show(const Info& info, bool json) {
    if (json) {
        Print("{}\n", JsonOf(info).Text());
    } else {
        PrintWords(info);
    }
}

}  // namespace

void Run(const InfoOptions& options) {
    const std::string_view name = options.effect;
    if (name.starts_with(kPreset)) {
        Show(RequirePreset(name.substr(kPreset.size())), options.json);
    } else {
        Show(RequireEffect(options.effect), options.json);
    }
}

}  // namespace host
