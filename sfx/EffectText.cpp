#include "sfx/EffectText.h"

#include "sfx/Guard.h"
#include "sfx/Presets.h"
#include "sfx/Words.h"

namespace sfx {
namespace {

constexpr std::string_view kPreset = "preset";

void ParseSettings(std::string_view text, LinkText& link, bool& clamped) {
    // A comma begins a new setting when a name and "=" follow; any other belongs to the value, as in a
    // colour.
    struct Item {
        size_t property;
        std::string value;
    };
    std::vector<Item> items;
    for (const std::string_view piece : Split(text, ',')) {
        const size_t equals = piece.find('=');
        if (equals != std::string_view::npos) {
            const std::string_view name = Trimmed(piece.substr(0, equals));
            items.push_back({link.effect->RequireProperty(name), std::string(piece.substr(equals + 1))});
        } else if (!items.empty()) {
            items.back().value.append(",").append(piece);
        } else {
            throw Failure{Tell(SFX_ERROR_VALUE,
                               "\"%.*s\" sets nothing; properties of %s are set as name=value",
                               QuotedSize(piece), piece.data(), link.effect->info.id)};
        }
    }
    for (const Item& item : items) {
        link.settings[item.property] = link.effect->properties[item.property].Parse(item.value, clamped);
    }
}

LinkText ParseLink(std::string_view text, bool& clamped) {
    const size_t colon = text.find(':');
    const std::string_view name = Trimmed(text.substr(0, colon));
    if (name.empty()) {
        throw Failure{Tell(SFX_ERROR_VALUE, "an effect's name is missing")};
    }
    LinkText link{FindEffect(name), {}};
    if (link.effect == nullptr) {
        throw Failure{SFX_ERROR_UNKNOWN};
    }
    link.settings.resize(link.effect->properties.size());
    if (colon != std::string_view::npos) {
        ParseSettings(text.substr(colon + 1), link, clamped);
    }
    return link;
}

std::optional<std::string_view> PresetOf(std::string_view text) {
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos || !SameText(Trimmed(text.substr(0, colon)), kPreset)) {
        return std::nullopt;
    }
    return Trimmed(text.substr(colon + 1));
}

std::vector<LinkText> Parse(std::string_view text, bool presets, bool& clamped) {
    std::vector<LinkText> links;
    for (const std::string_view piece : Split(text, '+')) {
        const std::optional<std::string_view> preset = PresetOf(piece);
        if (preset && !presets) {
            throw Failure{Tell(SFX_ERROR_VALUE, "a preset cannot refer to a preset")};
        }
        if (preset) {
            for (LinkText& link : ParsePlainEffect(RequirePreset(*preset))) {
                links.push_back(std::move(link));
            }
        } else {
            links.push_back(ParseLink(piece, clamped));
        }
        if (links.size() > kMostLinks) {
            throw Failure{Tell(SFX_ERROR_VALUE, "more than %zu effects in a row", kMostLinks)};
        }
    }
    return links;
}

}  // namespace

std::vector<LinkText> ParseEffect(std::string_view text, bool& clamped) {
    return Parse(text, true, clamped);
}

std::vector<LinkText> ParsePlainEffect(std::string_view text) {
    bool clamped = false;
    return Parse(text, false, clamped);
}

std::string PrintLink(const LinkText& link) {
    std::string text = link.effect->info.id;
    char separator = ':';
    for (size_t i = 0; i < link.settings.size(); ++i) {
        const PropertyEntry& property = link.effect->properties[i];
        if (link.settings[i]) {
            text += separator;
            text += property.info.id;
            text += '=';
            text += property.Print(*link.settings[i]);
            separator = ',';
        }
    }
    return text;
}

}  // namespace sfx
