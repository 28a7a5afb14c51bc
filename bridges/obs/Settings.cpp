#include "Settings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace sfxobs {
namespace {

constexpr const char* kFirstEffect = "sepia";

int32_t Clamp(const sfx_property_info& property, long long value) {
    return static_cast<int32_t>(std::clamp<long long>(value, property.minimum, property.maximum));
}

/// A setting as the value of a property; nothing where it is not one.
std::optional<int32_t> NumberOf(const sfx_property_info& property,
                                const std::variant<long long, std::string>& setting) {
    if (const auto* const text = std::get_if<std::string>(&setting)) {
        for (size_t i = 0; i < property.choice_count; ++i) {
            if (*text == property.choices[i].id) return property.choices[i].value;
        }
        long long number = 0;
        const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
        if (error != std::errc() || end != text->data() + text->size()) return std::nullopt;
        return Clamp(property, number);
    }
    const long long number = std::get<long long>(setting);
    if (property.type != SFX_COLOR) return Clamp(property, number);
    return static_cast<int32_t>((number & 0xFF) << 16 | (number & 0xFF00) | (number >> 16 & 0xFF));
}

/// Stores a number or a text; leaves out anything else.
void Store(Wish& wish, obs_data_item_t* item) {
    const std::string key = obs_data_item_get_name(item);
    switch (obs_data_item_gettype(item)) {
        case OBS_DATA_NUMBER:
            if (obs_data_item_numtype(item) == OBS_DATA_NUM_INT) {
                wish.values[key] = obs_data_item_get_int(item);
            } else if (const double value = obs_data_item_get_double(item); std::fabs(value) < 1e15) {
                wish.values[key] = std::llround(value);
            }
            break;
        case OBS_DATA_BOOLEAN:
            wish.values[key] = obs_data_item_get_bool(item) ? 1LL : 0LL;
            break;
        case OBS_DATA_STRING:
            wish.values[key] = std::string(obs_data_item_get_string(item));
            break;
        default:
            break;
    }
}

}  // namespace

Effect CreateEffect(const std::string& text) {
    sfx_effect* effect = nullptr;
    sfx_create(text.c_str(), &effect);
    return {effect, sfx_destroy};
}

std::string TextOf(const sfx_effect* effect) {
    const int length = sfx_print(effect, nullptr, 0);
    if (length <= 0) return {};
    std::string text(static_cast<size_t>(length), '\0');
    sfx_print(effect, text.data(), text.size() + 1);
    return text;
}

Wish ReadWish(obs_data_t* settings) {
    Wish wish;
    wish.effect = obs_data_get_string(settings, kEffectKey);
    wish.seed = static_cast<uint32_t>(
        std::clamp<long long>(obs_data_get_int(settings, kSeedKey), 0, std::numeric_limits<uint32_t>::max()));
    for (obs_data_item_t* item = obs_data_first(settings); item != nullptr; obs_data_item_next(&item)) {
        const bool isProperty = std::string_view(obs_data_item_get_name(item)).find('.') != std::string::npos;
        if (isProperty && obs_data_item_has_user_value(item)) Store(wish, item);
    }
    return wish;
}

std::vector<Value> ValuesFor(const Wish& wish, const sfx_effect* effect) {
    std::vector<Value> values;
    ForEachProperty(effect, [&](size_t link, const sfx_effect_info& info, const sfx_property_info& property) {
        const auto setting = wish.values.find(KeyOf(info, property));
        if (setting == wish.values.end()) return;
        if (const std::optional<int32_t> number = NumberOf(property, setting->second)) {
            values.push_back({std::to_string(link) + "." + property.id, *number});
        }
    });
    return values;
}

std::string KeyOf(const sfx_effect_info& effect, const sfx_property_info& property) {
    return std::string(effect.id) + "." + property.id;
}

bool HasChoices(const sfx_property_info& property) {
    return property.choice_count > 0;
}

std::string ChoiceText(const sfx_property_info& property, int32_t value) {
    for (size_t i = 0; i < property.choice_count; ++i) {
        if (property.choices[i].value == value) return property.choices[i].id;
    }
    return std::to_string(value);
}

long long ColorSetting(int32_t color) {
    return 0xFF000000LL | (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

void SetDefaultValue(obs_data_t* settings, const std::string& key, const sfx_property_info& property,
                     int32_t value) {
    if (HasChoices(property)) {
        obs_data_set_default_string(settings, key.c_str(), ChoiceText(property, value).c_str());
    } else if (property.type == SFX_BOOLEAN) {
        obs_data_set_default_bool(settings, key.c_str(), value != 0);
    } else if (property.type == SFX_COLOR) {
        obs_data_set_default_int(settings, key.c_str(), ColorSetting(value));
    } else {
        obs_data_set_default_int(settings, key.c_str(), value);
    }
}

void SetDefaults(obs_data_t* settings) {
    obs_data_set_default_string(settings, kEffectKey, kFirstEffect);
    obs_data_set_default_int(settings, kSeedKey, SFX_DEFAULT_SEED);
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& effect = *sfx_effect_at(i);
        for (size_t k = 0; k < effect.property_count; ++k) {
            const sfx_property_info& property = *effect.properties[k];
            SetDefaultValue(settings, KeyOf(effect, property), property, property.start);
        }
    }
}

}  // namespace sfxobs
