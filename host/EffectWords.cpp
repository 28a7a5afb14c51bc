#include "EffectWords.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

namespace host {
namespace {

std::span<const sfx_choice> ChoicesOf(const sfx_property_info& property) {
    return {property.choices, property.choice_count};
}

const sfx_choice* FindChoice(const sfx_property_info& property, int32_t value) {
    const auto choices = ChoicesOf(property);
    const auto found = std::find_if(choices.begin(), choices.end(),
                                    [value](const sfx_choice& choice) { return choice.value == value; });
    return found == choices.end() ? nullptr : &*found;
}

// Another value than the one at the start, well inside the range.
int32_t OtherValue(const sfx_property_info& property) {
    const auto choices = ChoicesOf(property);
    switch (property.type) {
        case SFX_BOOLEAN:
            return property.start == 0 ? 1 : 0;
        case SFX_COLOR:
            return property.start == 0x40a0ff ? 0xffa040 : 0x40a0ff;
        case SFX_CHOICE: {
            const auto other = std::find_if(choices.begin(), choices.end(), [&](const sfx_choice& choice) {
                return choice.value != property.start;
            });
            return other == choices.end() ? property.start : other->value;
        }
        case SFX_INTEGER:
            break;
    }
    const auto span = static_cast<int64_t>(property.maximum) - property.minimum;
    const auto value = static_cast<int32_t>(property.minimum + span * 2 / 3);
    return value == property.start ? property.maximum : value;
}

Json JsonOf(const sfx_property_info& property) {
    Json::Array choices;
    for (const sfx_choice& choice : ChoicesOf(property)) {
        choices.push_back(
            Json::Object{{"value", choice.value}, {"id", choice.id}, {"description", choice.description}});
    }
    return Json::Object{{"id", property.id},
                        {"name", property.name},
                        {"description", property.description},
                        {"type", TypeName(property.type)},
                        {"range", RangeText(property)},
                        {"minimum", property.minimum},
                        {"maximum", property.maximum},
                        {"start", ValueText(property, property.start)},
                        {"choices", choices}};
}

}  // namespace

const char* TypeName(sfx_type type) {
    switch (type) {
        case SFX_INTEGER:
            return "integer";
        case SFX_BOOLEAN:
            return "boolean";
        case SFX_COLOR:
            return "color";
        case SFX_CHOICE:
            return "choice";
    }
    return "unknown";
}

std::string ValueText(const sfx_property_info& property, int32_t value) {
    if (const sfx_choice* choice = FindChoice(property, value)) return choice->id;
    if (property.type == SFX_BOOLEAN) return value != 0 ? "true" : "false";
    if (property.type == SFX_COLOR) return fmt::format("#{:06x}", value);
    return std::to_string(value);
}

std::string RangeText(const sfx_property_info& property) {
    if (property.choice_count > 0) {
        std::vector<std::string_view> ids;
        for (const sfx_choice& choice : ChoicesOf(property)) ids.emplace_back(choice.id);
        return fmt::format("{}", fmt::join(ids, ", "));
    }
    if (property.type == SFX_BOOLEAN) return "true or false";
    if (property.type == SFX_COLOR) return "#rrggbb";
    return fmt::format("{} to {}", property.minimum, property.maximum);
}

std::span<const sfx_property_info* const> PropertiesOf(const sfx_effect_info& effect) {
    return {effect.properties, effect.property_count};
}

std::string ExampleOf(const sfx_effect_info& effect) {
    if (effect.property_count == 0) return effect.id;
    const sfx_property_info& property = *effect.properties[0];
    return fmt::format("{}:{}={}", effect.id, property.id, ValueText(property, OtherValue(property)));
}

std::string TraitsText(const sfx_effect_info& effect) {
    std::vector<std::string> traits;
    if ((effect.flags & SFX_HAS_MEMORY) != 0) traits.emplace_back("keeps a memory of earlier frames");
    if ((effect.flags & SFX_MOVES) != 0) traits.emplace_back("moves by itself");
    if ((effect.flags & SFX_USES_CHANCE) != 0) traits.emplace_back("depends on the seed");
    if ((effect.flags & SFX_USES_TIME) != 0) traits.emplace_back("depends on the time of frames");
    if (effect.data_file != nullptr) traits.push_back(fmt::format("reads {}", effect.data_file));
    return fmt::format("{}", fmt::join(traits, ", "));
}

Json JsonOf(const sfx_effect_info& effect) {
    const auto has = [&effect](uint32_t flag) { return (effect.flags & flag) != 0; };
    Json::Array properties;
    for (const sfx_property_info* property : PropertiesOf(effect)) properties.push_back(JsonOf(*property));
    return Json::Object{{"id", effect.id},
                        {"guid", effect.guid},
                        {"name", effect.name},
                        {"title", effect.title},
                        {"variant", effect.variant < 0 ? Json(nullptr) : Json(effect.variant)},
                        {"kind", effect.kind},
                        {"description", effect.description},
                        {"hasMemory", has(SFX_HAS_MEMORY)},
                        {"moves", has(SFX_MOVES)},
                        {"usesChance", has(SFX_USES_CHANCE)},
                        {"usesTime", has(SFX_USES_TIME)},
                        {"dataFile", effect.data_file != nullptr ? Json(effect.data_file) : Json(nullptr)},
                        {"listed", has(SFX_LISTED)},
                        {"example", ExampleOf(effect)},
                        {"properties", properties}};
}

Json JsonOf(const sfx_preset_info& preset) {
    return Json::Object{{"id", std::string("preset:") + preset.id},
                        {"title", preset.title},
                        {"description", preset.description},
                        {"effect", preset.effect},
                        {"user", preset.is_user != 0}};
}

}  // namespace host
