// What both filters have in common: an effect that runs, its settings and its properties.
//
// OBS is written in C: no exception may leave a callback.
#ifndef SPECIALEFFECTS_BRIDGES_OBS_FILTER_H
#define SPECIALEFFECTS_BRIDGES_OBS_FILTER_H

#include <obs.h>

#include <exception>
#include <utility>

#include "Runner.h"

namespace sfxobs {

/// Calls a function; returns `failed` where it throws, with a line in the log.
template <class Result, class Function>
Result Guarded(Result failed, Function&& function) noexcept {
    try {
        return std::forward<Function>(function)();
    } catch (const std::exception& problem) {
        blog(LOG_ERROR, "[specialeffects] %s", problem.what());
        return failed;
    }
}
template <class Function>
void Guarded(Function&& function) noexcept {
    Guarded(0, [&] {
        std::forward<Function>(function)();
        return 0;
    });
}

class Filter {
  public:
    /// Adds the procedure `void status(out string effect, out int frames, out int nanoseconds)` to the
    /// source: what runs, the number of frames since it took over, and what the effect took for the last one.
    Filter(obs_data_t* settings, obs_source_t* source);
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;
    virtual ~Filter() = default;

    obs_source_t* source() const { return source_; }
    Runner& runner() { return runner_; }

    /// Any thread: new settings. Updates properties that show another effect.
    void Update(obs_data_t* settings);
    /// Any thread: the effect that the properties show.
    void SetShownEffect(const std::string& effect);

  private:
    obs_source_t* const source_;
    Runner runner_;
    std::mutex mutex_;  // guards shownEffect_
    std::string shownEffect_;
};

/// The callbacks of a filter of the class `Kind`. The others are the caller's to fill in.
template <class Kind>
obs_source_info FilterInfo(const char* id, uint32_t flags);

/// "Special effect", for asynchronous sources; "Special effect (any source)", which draws.
void RegisterCameraFilter();
void RegisterAnySourceFilter();

// Callbacks that need no class of their own.
void UpdateFilter(void* data, obs_data_t* settings) noexcept;
void FilterDefaults(obs_data_t* settings) noexcept;
obs_properties_t* FilterProperties(void* data) noexcept;

template <class Kind>
obs_source_info FilterInfo(const char* id, uint32_t flags) {
    obs_source_info info{};
    info.id = id;
    info.type = OBS_SOURCE_TYPE_FILTER;
    info.output_flags = flags;
    info.create = [](obs_data_t* settings, obs_source_t* source) noexcept -> void* {
        return Guarded<Filter*>(nullptr, [&] { return std::make_unique<Kind>(settings, source).release(); });
    };
    info.destroy = [](void* data) noexcept {
        const std::unique_ptr<Filter> last(static_cast<Filter*>(data));
    };
    info.update = UpdateFilter;
    info.get_defaults = FilterDefaults;
    info.get_properties = FilterProperties;
    return info;
}

}  // namespace sfxobs

#endif
