// The user's own presets: effect texts with a name, which all filters share. They are kept in OBS's settings
// folder, in plugin_config/specialeffects/presets.json.
#ifndef SPECIALEFFECTS_BRIDGES_OBS_USERPRESETS_H
#define SPECIALEFFECTS_BRIDGES_OBS_USERPRESETS_H

#include <string>
#include <vector>

namespace sfxobs {

struct UserPreset {
    std::string title;
    std::string effect;  // what sfx_create takes
};

/// Thread of the user interface. The file is read once, by LoadUserPresets.
const std::vector<UserPreset>& UserPresets();
void LoadUserPresets();
void UnloadUserPresets();

/// Replaces a preset of the same title. False where the file cannot be written; the preset then lasts until
/// OBS ends.
bool SaveUserPreset(const std::string& title, const std::string& effect);
/// Removes the presets with this effect.
bool DeleteUserPreset(const std::string& effect);

}  // namespace sfxobs

#endif
