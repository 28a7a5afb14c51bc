#include "Filter.h"

#include "Panel.h"

namespace sfxobs {

Filter::Filter(obs_data_t* settings, obs_source_t* source) : source_(source), runner_(source) {
    runner_.Want(ReadWish(settings));
    const auto status = [](void* data, calldata_t* call) noexcept {
        Guarded([&] {
            const Status present = static_cast<Filter*>(data)->runner().Present();
            calldata_set_string(call, "effect", present.effect.c_str());
            calldata_set_int(call, "frames", present.frames);
            calldata_set_int(call, "nanoseconds", present.effectTime);
        });
    };
    proc_handler_add(obs_source_get_proc_handler(source),
                     "void status(out string effect, out int frames, out int nanoseconds)", status, this);
}

void Filter::Update(obs_data_t* settings) {
    Wish wish = ReadWish(settings);
    bool isShown = true;
    {
        const std::lock_guard lock(mutex_);
        isShown = shownEffect_.empty() || shownEffect_ == wish.effect;
        if (!isShown) shownEffect_.clear();
    }
    runner_.Want(std::move(wish));
    // OBS's button "Defaults" and scripts change the settings without the dialog.
    if (!isShown) obs_source_update_properties(source_);
}

void Filter::SetShownEffect(const std::string& effect) {
    const std::lock_guard lock(mutex_);
    shownEffect_ = effect;
}

void UpdateFilter(void* data, obs_data_t* settings) noexcept {
    Guarded([&] { static_cast<Filter*>(data)->Update(settings); });
}

void FilterDefaults(obs_data_t* settings) noexcept {
    Guarded([&] { SetDefaults(settings); });
}

obs_properties_t* FilterProperties(void* data) noexcept {
    return Guarded<obs_properties_t*>(nullptr, [&] {
        auto* const filter = static_cast<Filter*>(data);
        return CreateProperties(filter);
    });
}

}  // namespace sfxobs
