#include "Panel.h"

#include <obs-module.h>
#include <util/platform.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Filter.h"
#include "Settings.h"
#include "UserPresets.h"

namespace sfxobs {
namespace {

// Names of properties that are not settings.
constexpr const char* kSettingsGroup = "settings";
constexpr const char* kResetButton = "reset";
constexpr const char* kPresetsGroup = "own-presets";
constexpr const char* kSaveButton = "save-preset";
constexpr const char* kDeleteButton = "delete-preset";
constexpr const char* kProblem = "problem";

/// Lives as long as the properties do.
struct Panel {
    obs_weak_source_t* source = nullptr;  // the filter; null for a kind of filter
    std::string shown;                    // the effect whose properties are shown
    std::vector<std::string> found;       // by the latest search
    uint64_t rebuildTime = 0;             // when OBS was last asked to rebuild the dialog, in nanoseconds

    Panel() = default;
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;
    ~Panel() { obs_weak_source_release(source); }
};

using Source = std::unique_ptr<obs_source_t, decltype(&obs_source_release)>;

// ---- texts --------------------------------------------------------------------------------------------

/// A text of the locale file; the library's own where the file has none.
const char* Translated(const std::string& key, const char* fallback) {
    const char* text = nullptr;
    return obs_module_get_string(key.c_str(), &text) ? text : fallback;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

const char* TitleOf(const sfx_effect_info& effect) {
    return Translated(std::string("effect.") + effect.id, effect.title);
}

const char* AboutOf(const sfx_effect_info& effect) {
    return Translated(std::string("about.") + effect.id, effect.description);
}

/// What a property does, and what its choices mean.
std::string AboutOf(const std::string& key, const sfx_property_info& property) {
    std::string about = Translated("about." + key, property.description);
    for (size_t i = 0; i < property.choice_count; ++i) {
        const sfx_choice& choice = property.choices[i];
        about += std::string(i == 0 ? "\n\n" : "\n") + choice.id + ": " + choice.description;
    }
    return about;
}

// ---- the list of effects and presets ------------------------------------------------------------------

struct Entry {
    std::string title, about;
    std::string effect;  // what sfx_create takes
};
struct Section {
    std::string title;
    std::vector<Entry> entries;
};

/// The order of the alphabet; effects whose titles differ in a number at the end, in that of the number.
std::string SortKey(const Entry& entry) {
    const std::string title = Lower(entry.title);
    const size_t end = title.find_last_not_of("0123456789") + 1;
    return title.substr(0, end) + std::string(8 - std::min<size_t>(8, title.size() - end), '0') +
           title.substr(end);
}

std::vector<Section> AllSections() {
    std::vector<Section> sections;
    if (!UserPresets().empty()) {
        Section& own = sections.emplace_back(Section{obs_module_text("OwnPresets"), {}});
        for (const UserPreset& preset : UserPresets())
            own.entries.push_back({preset.title, "", preset.effect});
    }
    Section& shipped = sections.emplace_back(Section{obs_module_text("Presets"), {}});
    for (size_t i = 0; i < sfx_preset_count(); ++i) {
        const sfx_preset_info& preset = *sfx_preset_at(i);
        const std::string id = preset.id;
        shipped.entries.push_back({Translated("preset." + id, preset.title),
                                   Translated("about.preset." + id, preset.description), "preset:" + id});
    }
    for (const char* const kind : {"tone", "distortion", "drawing", "time", "animated", "faces"}) {
        sections.push_back({Translated(std::string("kind.") + kind, kind), {}});
        for (size_t i = 0; i < sfx_effect_count(); ++i) {
            const sfx_effect_info& effect = *sfx_effect_at(i);
            if (std::string_view(effect.kind) != kind) continue;
            sections.back().entries.push_back({TitleOf(effect), AboutOf(effect), effect.id});
        }
    }
    for (Section& section : sections) std::ranges::sort(section.entries, {}, SortKey);
    return sections;
}

/// Lower case, with a blank before each word and nothing but blanks between words.
std::string Words(std::string_view text) {
    std::string words = " ";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        words += std::isalnum(byte) != 0 || byte >= 0x80 ? static_cast<char>(std::tolower(byte)) : ' ';
    }
    return words;
}

/// Whether each word of the search begins a word of the title, the section's title or the description.
bool Matches(const Section& section, const Entry& entry, const std::string& search) {
    const std::string text = Words(entry.title + " " + section.title + " " + entry.about);
    const std::string wanted = Words(search);
    size_t at = 0;
    while ((at = wanted.find_first_not_of(' ', at)) != std::string::npos) {
        const size_t end = std::min(wanted.find(' ', at), wanted.size());
        if (text.find(wanted.substr(at - 1, end - at + 1)) == std::string::npos) return false;
        at = end;
    }
    return true;
}

const Entry* FindEntry(const std::vector<Section>& sections, const std::string& effect) {
    for (const Section& section : sections) {
        const auto found = std::ranges::find(section.entries, effect, &Entry::effect);
        if (found != section.entries.end()) return &*found;
    }
    return nullptr;
}

void AddHeading(obs_property_t* list, const std::string& title) {
    const std::string heading = "\u2014 " + title + " \u2014";
    obs_property_list_item_disable(list, obs_property_list_add_string(list, heading.c_str(), ""), true);
}

/// Fills the list with what matches the search, and with the present effect where that does not. Returns what
/// matches. The first item is a heading, whose value is empty: OBS chooses the first item of a list that does
/// not have the present value.
std::vector<std::string> FillList(obs_property_t* list, const std::string& search,
                                  const std::string& present) {
    std::vector<Section> sections = AllSections();
    const Entry* const entry = FindEntry(sections, present);
    const std::string presentTitle = entry != nullptr ? entry->title : present;
    for (Section& section : sections) {
        std::erase_if(section.entries, [&](const Entry& e) { return !Matches(section, e, search); });
    }
    obs_property_list_clear(list);
    if (FindEntry(sections, present) == nullptr) {
        AddHeading(list, obs_module_text("Chosen"));
        if (!present.empty()) obs_property_list_add_string(list, presentTitle.c_str(), present.c_str());
    }
    std::vector<std::string> found;
    for (const Section& section : sections) {
        if (section.entries.empty()) continue;
        AddHeading(list, section.title);
        for (const Entry& shown : section.entries) {
            obs_property_list_add_string(list, shown.title.c_str(), shown.effect.c_str());
            found.push_back(shown.effect);
        }
    }
    return found;
}

// ---- the effect's properties --------------------------------------------------------------------------

void AddProperty(obs_properties_t* group, const std::string& key, const sfx_property_info& property,
                 int32_t value) {
    const char* const name = Translated("property." + key, property.name);
    obs_property_t* added = nullptr;
    if (HasChoices(property)) {
        added =
            obs_properties_add_list(group, key.c_str(), name, OBS_COMBO_TYPE_LIST, OBS_COMBO_FORMAT_STRING);
        // Where an effect starts with a number that has no name, the list has that, too.
        const std::string text = ChoiceText(property, value);
        if (std::ranges::none_of(property.choices, property.choices + property.choice_count,
                                 [&](const sfx_choice& choice) { return text == choice.id; })) {
            obs_property_list_add_string(added, obs_module_text("OwnValue"), text.c_str());
        }
        for (size_t i = 0; i < property.choice_count; ++i) {
            const char* const id = property.choices[i].id;
            obs_property_list_add_string(added, Translated("choice." + key + "." + id, id), id);
        }
    } else if (property.type == SFX_BOOLEAN) {
        added = obs_properties_add_bool(group, key.c_str(), name);
    } else if (property.type == SFX_COLOR) {
        added = obs_properties_add_color(group, key.c_str(), name);
    } else {
        added =
            obs_properties_add_int_slider(group, key.c_str(), name, property.minimum, property.maximum, 1);
    }
    obs_property_set_long_description(added, AboutOf(key, property).c_str());
}

void RemoveAll(obs_properties_t* properties) {
    while (obs_property_t* const first = obs_properties_first(properties)) {
        obs_properties_remove_by_name(properties, std::string(obs_property_name(first)).c_str());
    }
}

/// The sentences and the properties of all links; their own values become the defaults.
bool FillSettings(obs_properties_t* group, obs_data_t* settings, const sfx_effect* effect) {
    RemoveAll(group);
    bool usesChance = false;
    for (size_t link = 0; link < sfx_link_count(effect); ++link) {
        const sfx_effect_info& info = *sfx_link_info(effect, link);
        usesChance = usesChance || (info.flags & SFX_USES_CHANCE) != 0;
        const std::string number = std::to_string(link);
        const std::string about =
            sfx_link_count(effect) > 1 ? std::string(TitleOf(info)) + ": " + AboutOf(info) : AboutOf(info);
        obs_property_t* const text =
            obs_properties_add_text(group, ("about-" + number).c_str(), about.c_str(), OBS_TEXT_INFO);
        obs_property_text_set_info_word_wrap(text, true);
        for (size_t i = 0; i < info.property_count; ++i) {
            const sfx_property_info& property = *info.properties[i];
            const std::string key = KeyOf(info, property);
            // An effect that is in the row twice has one set of values.
            if (obs_properties_get(group, key.c_str()) != nullptr) continue;
            int32_t value = property.start;
            sfx_get_int(effect, (number + "." + property.id).c_str(), &value);
            SetDefaultValue(settings, key, property, value);
            AddProperty(group, key, property, value);
        }
    }
    return usesChance;
}

/// Lets the effect's own values hold again.
void UnsetValues(obs_data_t* settings, const sfx_effect* effect) {
    ForEachProperty(effect, [&](size_t, const sfx_effect_info& info, const sfx_property_info& property) {
        obs_data_unset_user_value(settings, KeyOf(info, property).c_str());
    });
}

void ShowProblem(obs_properties_t* properties, const char* text) {
    obs_property_t* const problem = obs_properties_get(properties, kProblem);
    obs_property_set_description(problem, text);
    obs_property_set_visible(problem, *text != '\0');
}

void ShowEffect(obs_properties_t* properties, obs_data_t* settings) {
    const std::string text = obs_data_get_string(settings, kEffectKey);
    const Effect effect = CreateEffect(text);
    ShowProblem(properties, effect != nullptr ? "" : sfx_message());
    obs_property_t* const group = obs_properties_get(properties, kSettingsGroup);
    const bool usesChance = FillSettings(obs_property_group_content(group), settings, effect.get());
    obs_property_set_visible(group, effect != nullptr);
    obs_property_set_visible(obs_properties_get(properties, kSeedKey), usesChance);
    bool hasProperties = false;
    ForEachProperty(effect.get(), [&](auto&&...) { hasProperties = true; });
    obs_property_set_visible(obs_properties_get(properties, kResetButton), hasProperties);
    const bool isOwn = std::ranges::find(UserPresets(), text, &UserPreset::effect) != UserPresets().end();
    obs_properties_t* const own = obs_property_group_content(obs_properties_get(properties, kPresetsGroup));
    obs_property_set_visible(obs_properties_get(own, kDeleteButton), isOwn);
}

// ---- callbacks ----------------------------------------------------------------------------------------

/// Calls `function(filter)` where there still is one.
template <class Function>
void WithFilter(const Panel& panel, Function&& function) {
    const Source source(obs_weak_source_get_source(panel.source), obs_source_release);
    void* const data = source != nullptr ? obs_obj_get_data(source.get()) : nullptr;
    if (data != nullptr) std::forward<Function>(function)(*static_cast<Filter*>(data));
}

void SetShown(Panel& panel, const std::string& effect) {
    panel.shown = effect;
    WithFilter(panel, [&](Filter& filter) { filter.SetShownEffect(effect); });
}

/// Shows the effect of the settings. One that the user has chosen just now starts with its own values where
/// it is more than the name of an effect.
void FollowEffect(Panel& panel, obs_properties_t* properties, obs_data_t* settings) {
    const std::string chosen = obs_data_get_string(settings, kEffectKey);
    if (chosen != panel.shown) {
        SetShown(panel, chosen);
        const Effect effect = CreateEffect(chosen);
        if (effect != nullptr && chosen != sfx_link_info(effect.get(), 0)->id) {
            UnsetValues(settings, effect.get());
        }
        // OBS may have read the settings before this.
        WithFilter(panel, [](Filter& filter) { obs_source_update(filter.source(), nullptr); });
    }
    ShowEffect(properties, settings);
}

/// Whether to ask OBS to rebuild the dialog after a key. It does that a little later; where it is asked twice
/// before it does, the text loses the keyboard. The rebuild that has been asked for shows the latest state
/// anyway.
bool AskToRebuild(Panel& panel) {
    constexpr uint64_t kAtOnce = 20000000;  // less than between two keys, more than between events in a queue
    const uint64_t now = os_gettime_ns();
    if (now - panel.rebuildTime < kAtOnce) return false;
    panel.rebuildTime = now;
    return true;
}

/// Lists what the search of the settings finds. False where the list is the same as before.
bool Search(Panel& panel, obs_properties_t* properties, obs_data_t* settings) {
    const std::string search = obs_data_get_string(settings, kSearchKey);
    obs_property_t* const list = obs_properties_get(properties, kEffectKey);
    const std::vector<std::string> found = FillList(list, search, obs_data_get_string(settings, kEffectKey));
    std::string label = obs_module_text("Effect");
    if (!search.empty()) label += " (" + std::to_string(found.size()) + ")";
    obs_property_set_description(list, label.c_str());
    return std::exchange(panel.found, found) != found;
}

bool OnEffect(void* data, obs_properties_t* properties, obs_property_t*, obs_data_t* settings) noexcept {
    return Guarded(false, [&] {
        Panel& panel = *static_cast<Panel*>(data);
        if (*obs_data_get_string(settings, kEffectKey) == '\0') {
            // OBS's button "Defaults" has cleared the settings, and the list does not have the default
            // effect.
            obs_data_unset_user_value(settings, kEffectKey);
            Search(panel, properties, settings);
        }
        FollowEffect(panel, properties, settings);
        return true;
    });
}

/// A search with one result chooses it.
bool OnSearch(void* data, obs_properties_t* properties, obs_property_t*, obs_data_t* settings) noexcept {
    return Guarded(false, [&] {
        Panel& panel = *static_cast<Panel*>(data);
        const bool isChanged = Search(panel, properties, settings);
        const bool isSearch = *obs_data_get_string(settings, kSearchKey) != '\0';
        if (isSearch && panel.found.size() == 1 && panel.found.front() != panel.shown) {
            obs_data_set_string(settings, kEffectKey, panel.found.front().c_str());
            Search(panel, properties, settings);
            FollowEffect(panel, properties, settings);
        }
        return isChanged && AskToRebuild(panel);
    });
}

/// Calls `change(settings)` for a button of a filter, and lets OBS and the dialog follow.
template <class Function>
bool OnButton(obs_properties_t* properties, Function&& change) noexcept {
    return Guarded(false, [&] {
        while (obs_properties_t* const parent = obs_properties_get_parent(properties)) properties = parent;
        auto& panel = *static_cast<Panel*>(obs_properties_get_param(properties));
        bool isChanged = false;
        WithFilter(panel, [&](Filter& filter) {
            const Data settings(obs_source_get_settings(filter.source()), obs_data_release);
            change(settings.get());
            SetShown(panel, obs_data_get_string(settings.get(), kEffectKey));
            Search(panel, properties, settings.get());
            ShowEffect(properties, settings.get());
            obs_source_update(filter.source(), nullptr);
            isChanged = true;
        });
        return isChanged;
    });
}

bool OnReset(obs_properties_t* properties, obs_property_t*, void*) noexcept {
    return OnButton(properties, [](obs_data_t* settings) {
        UnsetValues(settings, CreateEffect(obs_data_get_string(settings, kEffectKey)).get());
        obs_data_unset_user_value(settings, kSeedKey);
    });
}

/// The effect with its values as one text.
std::string PresentText(obs_data_t* settings) {
    const Wish wish = ReadWish(settings);
    const Effect effect = CreateEffect(wish.effect);
    if (effect == nullptr) return {};
    for (const Value& value : ValuesFor(wish, effect.get())) {
        sfx_set_int(effect.get(), value.property.c_str(), value.number);
    }
    return TextOf(effect.get());
}

bool OnSave(obs_properties_t* properties, obs_property_t*, void*) noexcept {
    return OnButton(properties, [](obs_data_t* settings) {
        const std::string text = PresentText(settings);
        if (text.empty()) return;
        std::string title = obs_data_get_string(settings, kPresetNameKey);
        if (title.empty()) title = text;
        SaveUserPreset(title, text);
        obs_data_unset_user_value(settings, kPresetNameKey);
        // The preset has the values in its text.
        UnsetValues(settings, CreateEffect(text).get());
        obs_data_set_string(settings, kEffectKey, text.c_str());
    });
}

/// The filter keeps the effect.
bool OnDelete(obs_properties_t* properties, obs_property_t*, void*) noexcept {
    return OnButton(properties, [](obs_data_t* settings) {
        DeleteUserPreset(obs_data_get_string(settings, kEffectKey));
    });
}

obs_property_t* WithTip(obs_property_t* property, const char* key) {
    obs_property_set_long_description(property, obs_module_text(key));
    return property;
}

}  // namespace

obs_properties_t* CreateProperties(Filter* filter) {
    auto panel = std::make_unique<Panel>();
    if (filter != nullptr) panel->source = obs_source_get_weak_source(filter->source());
    Panel* const data = panel.get();
    obs_properties_t* const all = obs_properties_create_param(
        panel.release(), [](void* last) { const std::unique_ptr<Panel> owner(static_cast<Panel*>(last)); });

    obs_property_t* const search = WithTip(
        obs_properties_add_text(all, kSearchKey, obs_module_text("Search"), OBS_TEXT_DEFAULT), "Search.Tip");
    obs_property_t* const list =
        WithTip(obs_properties_add_list(all, kEffectKey, obs_module_text("Effect"), OBS_COMBO_TYPE_LIST,
                                        OBS_COMBO_FORMAT_STRING),
                "Effect.Tip");
    obs_property_t* const problem = obs_properties_add_text(all, kProblem, "", OBS_TEXT_INFO);
    obs_property_text_set_info_type(problem, OBS_TEXT_INFO_WARNING);

    obs_properties_add_group(all, kSettingsGroup, obs_module_text("Settings"), OBS_GROUP_NORMAL,
                             obs_properties_create());
    WithTip(
        obs_properties_add_int(all, kSeedKey, obs_module_text("Seed"), 0, std::numeric_limits<int>::max(), 1),
        "Seed.Tip");
    WithTip(obs_properties_add_button(all, kResetButton, obs_module_text("Reset"), OnReset), "Reset.Tip");

    obs_properties_t* const own = obs_properties_create();
    WithTip(obs_properties_add_text(own, kPresetNameKey, obs_module_text("PresetName"), OBS_TEXT_DEFAULT),
            "PresetName.Tip");
    WithTip(obs_properties_add_button(own, kSaveButton, obs_module_text("SavePreset"), OnSave),
            "SavePreset.Tip");
    WithTip(obs_properties_add_button(own, kDeleteButton, obs_module_text("DeletePreset"), OnDelete),
            "DeletePreset.Tip");
    obs_properties_add_group(all, kPresetsGroup, obs_module_text("OwnPresets"), OBS_GROUP_NORMAL, own);

    const Data settings(filter != nullptr ? obs_source_get_settings(filter->source()) : obs_data_create(),
                        obs_data_release);
    if (filter == nullptr) SetDefaults(settings.get());
    // A search belongs to the dialog that it was typed in.
    obs_data_unset_user_value(settings.get(), kSearchKey);
    SetShown(*data, obs_data_get_string(settings.get(), kEffectKey));
    data->found = FillList(list, "", data->shown);
    ShowEffect(all, settings.get());
    obs_property_set_modified_callback2(search, OnSearch, data);
    obs_property_set_modified_callback2(list, OnEffect, data);
    return all;
}

}  // namespace sfxobs
