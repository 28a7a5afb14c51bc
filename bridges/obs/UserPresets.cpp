#include "UserPresets.h"

#include <obs-module.h>
#include <util/platform.h>

#include <algorithm>
#include <memory>

#include "Settings.h"

namespace sfxobs {
namespace {

constexpr const char* kFile = "presets.json";

std::vector<UserPreset> presets;

using Text = std::unique_ptr<char, decltype(&bfree)>;
using Array = std::unique_ptr<obs_data_array_t, decltype(&obs_data_array_release)>;

/// Null for an OBS without a settings folder.
Text ConfigPath(const char* file) {
    return {obs_module_config_path(file), bfree};
}

bool Store() {
    const Array array(obs_data_array_create(), obs_data_array_release);
    for (const UserPreset& preset : presets) {
        const Data item(obs_data_create(), obs_data_release);
        obs_data_set_string(item.get(), "title", preset.title.c_str());
        obs_data_set_string(item.get(), "effect", preset.effect.c_str());
        obs_data_array_push_back(array.get(), item.get());
    }
    const Data data(obs_data_create(), obs_data_release);
    obs_data_set_array(data.get(), "presets", array.get());
    const Text folder = ConfigPath("");
    const Text path = ConfigPath(kFile);
    if (folder == nullptr || path == nullptr || os_mkdirs(folder.get()) == MKDIR_ERROR ||
        !obs_data_save_json_safe(data.get(), path.get(), "new", "bak")) {
        blog(LOG_WARNING, "[specialeffects] the presets cannot be written to %s",
             path != nullptr ? path.get() : "OBS's settings folder");
        return false;
    }
    return true;
}

}  // namespace

const std::vector<UserPreset>& UserPresets() {
    return presets;
}

void LoadUserPresets() {
    presets.clear();
    const Text path = ConfigPath(kFile);
    if (path == nullptr || !os_file_exists(path.get())) return;
    const Data data(obs_data_create_from_json_file_safe(path.get(), "bak"), obs_data_release);
    const Array array(obs_data_get_array(data.get(), "presets"), obs_data_array_release);
    for (size_t i = 0; i < obs_data_array_count(array.get()); ++i) {
        const Data item(obs_data_array_item(array.get(), i), obs_data_release);
        UserPreset preset{obs_data_get_string(item.get(), "title"),
                          obs_data_get_string(item.get(), "effect")};
        if (!preset.title.empty() && !preset.effect.empty()) presets.push_back(std::move(preset));
    }
}

void UnloadUserPresets() {
    presets = {};
}

bool SaveUserPreset(const std::string& title, const std::string& effect) {
    const auto same = std::ranges::find(presets, title, &UserPreset::title);
    if (same != presets.end()) {
        same->effect = effect;
    } else {
        presets.push_back({title, effect});
    }
    return Store();
}

bool DeleteUserPreset(const std::string& effect) {
    std::erase_if(presets, [&](const UserPreset& preset) { return preset.effect == effect; });
    return Store();
}

}  // namespace sfxobs
