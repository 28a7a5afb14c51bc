// The properties that OBS shows, and the presets.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>
#include <thread>

#include "Host.h"

namespace {

/// A filter with its properties, as a dialog holds them.
struct Dialog {
    explicit Dialog(const char* settingsText = "{}", const char* kind = kCameraFilter)
        : source(Create("test_camera", "Camera")),
          filter(AddFilter(source, kind, settingsText)),
          properties(obs_source_properties(filter.get()), obs_properties_destroy),
          settings(obs_source_get_settings(filter.get()), obs_data_release) {
        obs_properties_apply_settings(properties.get(), settings.get());
    }
    ~Dialog() { obs_source_filter_remove(source.get(), filter.get()); }

    obs_property_t* Property(const std::string& name) const {
        return obs_properties_get(properties.get(), name.c_str());
    }
    /// What the dialog does when the user changes a text or chooses from a list. Returns whether the dialog
    /// has to be rebuilt.
    bool Set(const char* name, const std::string& value) {
        obs_data_set_string(settings.get(), name, value.c_str());
        obs_source_update(filter.get(), nullptr);
        return obs_property_modified(Property(name), settings.get());
    }
    void Push(const char* button) {
        EXPECT_TRUE(obs_property_button_clicked(Property(button), filter.get())) << button;
    }
    std::string Effect() const { return obs_data_get_string(settings.get(), "effect"); }

    Source source, filter;
    Properties properties;
    Data settings;
};

struct Item {
    std::string name, value;
    bool isHeading;
};

std::vector<Item> ItemsOf(obs_property_t* list) {
    std::vector<Item> items;
    for (size_t i = 0; i < obs_property_list_item_count(list); ++i) {
        items.push_back({obs_property_list_item_name(list, i), obs_property_list_item_string(list, i),
                         obs_property_list_item_disabled(list, i)});
    }
    return items;
}

std::set<std::string> ValuesOf(obs_property_t* list) {
    std::set<std::string> values;
    for (const Item& item : ItemsOf(list)) {
        if (!item.isHeading) values.insert(item.value);
    }
    return values;
}

TEST(Panel, ListsEveryEffectUnderItsKindAndEveryPreset) {
    for (const char* const kind : {kCameraFilter, kAnyFilter}) {
        const Dialog dialog("{}", kind);
        std::map<std::string, std::string> sections;
        std::set<std::string> headings;
        std::string heading;
        for (const Item& item : ItemsOf(dialog.Property("effect"))) {
            if (item.isHeading) {
                heading = item.name;
                EXPECT_TRUE(headings.insert(heading).second);
            } else {
                EXPECT_TRUE(sections.emplace(item.value, heading).second) << item.value;
            }
        }
        EXPECT_EQ(sections.size(), sfx_effect_count() + sfx_preset_count());
        std::map<std::string, std::string> kinds;
        for (size_t i = 0; i < sfx_effect_count(); ++i) {
            const sfx_effect_info& effect = *sfx_effect_at(i);
            ASSERT_TRUE(sections.contains(effect.id)) << effect.id;
            EXPECT_EQ(kinds.emplace(effect.kind, sections[effect.id]).first->second, sections[effect.id]);
        }
        EXPECT_EQ(kinds.size(), 6U);
        EXPECT_EQ(headings.size(), 7U);
        for (size_t i = 0; i < sfx_preset_count(); ++i) {
            EXPECT_TRUE(sections.contains(std::string("preset:") + sfx_preset_at(i)->id));
        }
        EXPECT_GE(sfx_preset_count(), 12U);
    }
}

TEST(Panel, HasNoTextWithoutATranslation) {
    const Dialog dialog(R"({"effect": "rain"})");
    EXPECT_STREQ(obs_source_get_display_name(kCameraFilter), "Special effect");
    EXPECT_STREQ(obs_source_get_display_name(kAnyFilter), "Special effect (any source)");
    for (const char* const name : {"search", "effect", "settings", "seed", "reset", "own-presets",
                                   "preset-name", "save-preset", "delete-preset"}) {
        const std::string label = obs_property_description(dialog.Property(name));
        EXPECT_NE(label.find_first_of(" abcdefghijklmnopqrstuvwxyz"), std::string::npos);
        // Keys of the locale file have a capital in the middle, or a dot.
        EXPECT_EQ(label.find('.'), std::string::npos);
        EXPECT_TRUE(std::none_of(label.begin() + 1, label.end(), [](char c) { return c >= 'A' && c <= 'Z'; }))
            << label;
        if (std::string_view(name) == "settings" || std::string_view(name) == "own-presets") continue;
        const char* const tip = obs_property_long_description(dialog.Property(name));
        ASSERT_NE(tip, nullptr) << name;
        EXPECT_NE(std::string_view(tip).find(' '), std::string_view::npos) << tip;
    }
}

TEST(Panel, ShowsEveryPropertyAsWhatItIs) {
    Dialog dialog;
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& effect = *sfx_effect_at(i);
        SCOPED_TRACE(effect.id);
        EXPECT_TRUE(dialog.Set("effect", effect.id));
        obs_properties_t* const group = obs_property_group_content(dialog.Property("settings"));
        size_t count = 0;
        for (obs_property_t* p = obs_properties_first(group); p != nullptr; obs_property_next(&p)) ++count;
        EXPECT_EQ(count, effect.property_count + 1);  // and the sentence
        EXPECT_EQ(obs_property_visible(dialog.Property("seed")), (effect.flags & SFX_USES_CHANCE) != 0);
        EXPECT_EQ(obs_property_visible(dialog.Property("reset")), effect.property_count > 0);
        for (size_t k = 0; k < effect.property_count; ++k) {
            const sfx_property_info& info = *effect.properties[k];
            const std::string key = std::string(effect.id) + "." + info.id;
            SCOPED_TRACE(key);
            obs_property_t* const property = dialog.Property(key);
            ASSERT_NE(property, nullptr);
            EXPECT_STREQ(obs_property_description(property), info.name);
            const std::string tip = obs_property_long_description(property);
            EXPECT_EQ(tip.find(info.description), 0U);
            if (info.choice_count > 0) {
                ASSERT_EQ(obs_property_get_type(property), OBS_PROPERTY_LIST);
                const std::set<std::string> values = ValuesOf(property);
                for (size_t c = 0; c < info.choice_count; ++c) {
                    EXPECT_TRUE(values.contains(info.choices[c].id));
                    EXPECT_NE(tip.find(info.choices[c].description), std::string::npos);
                }
                EXPECT_TRUE(values.contains(obs_data_get_string(dialog.settings.get(), key.c_str())));
            } else if (info.type == SFX_BOOLEAN) {
                ASSERT_EQ(obs_property_get_type(property), OBS_PROPERTY_BOOL);
                EXPECT_EQ(obs_data_get_bool(dialog.settings.get(), key.c_str()), info.start != 0);
            } else if (info.type == SFX_COLOR) {
                ASSERT_EQ(obs_property_get_type(property), OBS_PROPERTY_COLOR);
                const long long color = obs_data_get_int(dialog.settings.get(), key.c_str());
                EXPECT_EQ((color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF), info.start);
                EXPECT_EQ(color >> 24, 0xFF);
            } else {
                ASSERT_EQ(obs_property_get_type(property), OBS_PROPERTY_INT);
                EXPECT_EQ(obs_property_int_type(property), OBS_NUMBER_SLIDER);
                EXPECT_EQ(obs_property_int_min(property), info.minimum);
                EXPECT_EQ(obs_property_int_max(property), info.maximum);
                EXPECT_EQ(obs_data_get_int(dialog.settings.get(), key.c_str()), info.start);
            }
        }
    }
}

TEST(Panel, FindsByTyping) {
    Dialog dialog(R"({"effect": "sepia"})");
    obs_property_t* const list = dialog.Property("effect");
    const size_t all = obs_property_list_item_count(list);
    EXPECT_TRUE(dialog.Set("search", "ra"));
    EXPECT_LT(obs_property_list_item_count(list), all);
    dialog.Set("search", "RAIN pane");
    EXPECT_EQ(dialog.Effect(), "rain-drops") << "a single match is chosen";
    EXPECT_EQ(ValuesOf(list), std::set<std::string>{"rain-drops"});
    dialog.Set("search", "rain");
    EXPECT_EQ(ValuesOf(list), (std::set<std::string>{"preset:rainy-night", "rain", "rain-drops"}));
    EXPECT_STREQ(obs_property_description(list), "Effect (3)");
    EXPECT_EQ(dialog.Effect(), "rain-drops");
    // What is chosen stays on the list.
    dialog.Set("search", "swirling nonsense");
    EXPECT_EQ(ValuesOf(list), std::set<std::string>{"rain-drops"});
    EXPECT_STREQ(obs_property_description(list), "Effect (0)");
    dialog.Set("search", "distortion");
    EXPECT_GT(ValuesOf(list).size(), 5U);
    dialog.Set("search", "");
    EXPECT_EQ(obs_property_list_item_count(list), all);
    EXPECT_STREQ(obs_property_description(list), "Effect");
    // A search ends with its dialog.
    dialog.Set("search", "rain");
    const Properties again(obs_source_properties(dialog.filter.get()), obs_properties_destroy);
    EXPECT_EQ(obs_property_list_item_count(obs_properties_get(again.get(), "effect")), all);
}

TEST(Panel, FindsTheDefaultEffectAfterAReset) {
    Dialog dialog(R"({"effect": "rain"})");
    for (const char* const search : {"rain", "fire"}) {
        dialog.Set("search", search);
        // OBS's button "Defaults": the list does not have the default effect, and OBS chooses the first item.
        obs_data_clear(dialog.settings.get());
        EXPECT_EQ(obs_property_list_item_disabled(dialog.Property("effect"), 0), true);
        dialog.Set("effect", obs_property_list_item_string(dialog.Property("effect"), 0));
        EXPECT_EQ(dialog.Effect(), "sepia");
        EXPECT_GT(ValuesOf(dialog.Property("effect")).size(), 63U);
        EXPECT_FALSE(obs_property_visible(dialog.Property("problem")));
    }
}

TEST(Panel, IsRebuiltOnceForKeysThatComeTogether) {
    Dialog dialog;
    const auto set = [&](const char* search) { return dialog.Set("search", search); };
    const auto setLater = [&](const char* search) {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        return set(search);
    };
    // The second key comes within 20 ms, unless the machine is busy.
    EXPECT_TRUE(WaitUntil([&] {
        setLater("");
        EXPECT_TRUE(setLater("r"));
        return !set("ra");
    }));
    EXPECT_TRUE(setLater("rain"));
    EXPECT_FALSE(setLater("rain ")) << "the same is found";
}

TEST(Panel, FillsInAPresetsValues) {
    Dialog dialog(R"({"effect": "clouds", "clouds.intensity": 7})");
    obs_data_t* const settings = dialog.settings.get();
    dialog.Set("effect", "preset:haze");
    EXPECT_EQ(obs_data_get_int(settings, "clouds.intensity"), 50);
    EXPECT_STREQ(obs_data_get_string(settings, "clouds.type"), "patches");
    EXPECT_EQ(obs_data_get_int(settings, "clouds.cloud-color"), 0xFFFFFFFF);
    // An effect by name keeps what was set; the defaults are the effect's again.
    dialog.Set("effect", "clouds");
    EXPECT_EQ(obs_data_get_int(settings, "clouds.intensity"), 90);
    // A row shows the properties of all its effects.
    dialog.Set("effect", "preset:drawn-film");
    EXPECT_NE(dialog.Property("antiquated-movie.sepia"), nullptr);
    EXPECT_EQ(dialog.Property("clouds.intensity"), nullptr);
}

TEST(Panel, ResetsToDefaults) {
    Camera camera(R"({"effect": "preset:haze", "clouds.intensity": 7, "seed": 9, "rain.drop-size": 5})");
    const Picture picture(VIDEO_FORMAT_I420, 64, 48);
    ASSERT_TRUE(camera.WaitForEffect("clouds:cloud-color=#ffffff,intensity=7,type=patches", picture));
    const Properties properties(obs_source_properties(camera.filter.get()), obs_properties_destroy);
    EXPECT_TRUE(
        obs_property_button_clicked(obs_properties_get(properties.get(), "reset"), camera.filter.get()));
    EXPECT_TRUE(camera.WaitForEffect("clouds:cloud-color=#ffffff,intensity=50,type=patches", picture));
    const Data settings(obs_source_get_settings(camera.filter.get()), obs_data_release);
    EXPECT_EQ(obs_data_get_int(settings.get(), "seed"), 1);
    EXPECT_EQ(obs_data_get_int(settings.get(), "rain.drop-size"), 5) << "another effect keeps its values";
}

TEST(Panel, KeepsTheUsersPresets) {
    const std::filesystem::path file =
        std::filesystem::path(OBS_CONFIG_FOLDER) / "specialeffects" / "presets.json";
    Dialog dialog(R"({"effect": "rain", "rain.drop-size": 9})");
    EXPECT_FALSE(obs_property_visible(dialog.Property("delete-preset")));
    obs_data_set_string(dialog.settings.get(), "preset-name", "Wet \"day\" \u00e4\u00f6");
    dialog.Push("save-preset");
    EXPECT_EQ(dialog.Effect(), "rain:drop-size=9");
    EXPECT_STREQ(obs_data_get_string(dialog.settings.get(), "preset-name"), "");
    EXPECT_TRUE(obs_property_visible(dialog.Property("delete-preset")));
    EXPECT_TRUE(std::filesystem::exists(file));
    {
        // Another filter has it, and starts with its values.
        Dialog other(R"({"effect": "sepia", "rain.drop-size": 3})");
        const std::vector<Item> items = ItemsOf(other.Property("effect"));
        const auto own = std::ranges::find(items, "rain:drop-size=9", &Item::value);
        ASSERT_NE(own, items.end());
        EXPECT_EQ(own->name, "Wet \"day\" \u00e4\u00f6");
        other.Set("effect", "rain:drop-size=9");
        EXPECT_EQ(obs_data_get_int(other.settings.get(), "rain.drop-size"), 9);
        // The same name replaces it.
        obs_data_set_int(other.settings.get(), "rain.drop-size", 12);
        obs_data_set_string(other.settings.get(), "preset-name", "Wet \"day\" \u00e4\u00f6");
        other.Push("save-preset");
        const std::set<std::string> values = ValuesOf(other.Property("effect"));
        EXPECT_TRUE(values.contains("rain:drop-size=12"));
        EXPECT_FALSE(values.contains("rain:drop-size=9"));
        // Without a name, the text is the name.
        other.Set("effect", "preset:noir");
        other.Push("save-preset");
        EXPECT_EQ(other.Effect(), "spot-light-2+gray-scale");
        other.Push("delete-preset");
        EXPECT_EQ(other.Effect(), "spot-light-2+gray-scale") << "the filter keeps the effect";
    }
    // As after a restart.
    const Data stored(obs_data_create_from_json_file(file.c_str()), obs_data_release);
    ASSERT_NE(stored, nullptr);
    obs_data_array_t* const array = obs_data_get_array(stored.get(), "presets");
    EXPECT_EQ(obs_data_array_count(array), 1U);
    obs_data_array_release(array);
    Dialog last(R"({"effect": "rain:drop-size=12"})");
    last.Push("delete-preset");
    EXPECT_FALSE(obs_property_visible(last.Property("delete-preset")));
}

TEST(Panel, ShowsWhatIsWrongWithAnEffect) {
    Dialog dialog(R"({"effect": "sepiaa"})");
    EXPECT_TRUE(obs_property_visible(dialog.Property("problem")));
    EXPECT_NE(std::string(obs_property_description(dialog.Property("problem"))).find("sepia"),
              std::string::npos);
    EXPECT_TRUE(ValuesOf(dialog.Property("effect")).contains("sepiaa"));
    dialog.Set("effect", "sepia");
    EXPECT_FALSE(obs_property_visible(dialog.Property("problem")));
}

TEST(Panel, FollowsChangesFromOutside) {
    Dialog dialog(R"({"effect": "rain"})");
    std::atomic<int> updates = 0;
    const auto count = [](void* data, calldata_t*) { ++*static_cast<std::atomic<int>*>(data); };
    signal_handler_t* const signals = obs_source_get_signal_handler(dialog.filter.get());
    signal_handler_connect(signals, "update_properties", count, &updates);
    dialog.Set("effect", "sepia");
    WaitForFrames(5);
    const int after = updates;
    // As a script does it, and the dialog's button "Defaults".
    Update(dialog.filter, R"({"effect": "neonize"})");
    EXPECT_TRUE(WaitUntil([&] { return updates > after; }));
    signal_handler_disconnect(signals, "update_properties", count, &updates);
}

TEST(Panel, DescribesAKindOfFilterToo) {
    for (const char* const kind : {kCameraFilter, kAnyFilter}) {
        const Properties properties(obs_get_source_properties(kind), obs_properties_destroy);
        ASSERT_NE(properties, nullptr);
        EXPECT_GT(obs_property_list_item_count(obs_properties_get(properties.get(), "effect")), 63U);
        EXPECT_FALSE(obs_property_button_clicked(obs_properties_get(properties.get(), "reset"), nullptr));
        const Data defaults(obs_get_source_defaults(kind), obs_data_release);
        EXPECT_STREQ(obs_data_get_string(defaults.get(), "effect"), "sepia");
        EXPECT_EQ(obs_data_get_int(defaults.get(), "rain.drop-size"), 3);
    }
}

}  // namespace
