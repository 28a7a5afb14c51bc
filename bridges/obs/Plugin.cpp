// The module that OBS loads: two filters.
#include <obs-module.h>

#include "Filter.h"
#include "UserPresets.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
OBS_DECLARE_MODULE()
OBS_MODULE_USE_DEFAULT_LOCALE("specialeffects", "en-US")
OBS_MODULE_AUTHOR("The specialeffects project")
#pragma GCC diagnostic pop

const char* obs_module_name() {
    return "Special effects";
}

const char* obs_module_description() {
    return obs_module_text("Description");
}

bool obs_module_load() {
    return sfxobs::Guarded(false, [] {
        sfxobs::LoadUserPresets();
        sfxobs::RegisterCameraFilter();
        sfxobs::RegisterAnySourceFilter();
        blog(LOG_INFO, "[specialeffects] libsfx %s: %zu effects, %zu presets, %zu of the user's own",
             sfx_version_text(), sfx_effect_count(), sfx_preset_count(), sfxobs::UserPresets().size());
        return true;
    });
}

void obs_module_unload() {
    sfxobs::UnloadUserPresets();
}
