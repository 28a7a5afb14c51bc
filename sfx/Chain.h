// What a sfx_effect is: effects in a row, and all that happens to them under one lock.
#ifndef SPECIALEFFECTS_SFX_CHAIN_H
#define SPECIALEFFECTS_SFX_CHAIN_H

#include <string>
#include <string_view>
#include <vector>

#include "framework/Mutex.h"
#include "sfx/Link.h"
#include "sfx/WorkFrame.h"

/// Operations throw Failure or std::bad_alloc, after which the effect stays usable.
struct sfx_effect {
  public:
    explicit sfx_effect(std::vector<sfx::LinkText> texts);
    /// Settings, but no history.
    sfx_effect(const sfx_effect& other);
    sfx_effect& operator=(const sfx_effect&) = delete;

    size_t LinkCount() const { return links_.size(); }
    const sfx_effect_info* LinkInfo(size_t link) const;
    std::string Print() const;

    /// SFX_OK or SFX_CLAMPED.
    sfx_status Set(std::string_view property, std::string_view value);
    sfx_status Set(std::string_view property, int32_t value);
    std::string GetText(std::string_view property) const;
    int32_t Get(std::string_view property) const;
    void SetDefaults();
    void LoadSettings(const std::string& path);

    void SetSeed(uint32_t seed);
    uint32_t Seed() const;
    void SetDataFolder(std::string folder);

    sfx_status Prepare(int32_t width, int32_t height);
    sfx_status Process(const sfx::Picture& picture, int64_t time);
    void Reset();

  private:
    struct Place {
        size_t link, property;
    };
    Place Find(std::string_view name) const;
    sfx_status Start(int32_t width, int32_t height);
    void Stop();
    void Advance(int64_t time);

    mutable Mutex mutex_;
    std::vector<sfx::Link> links_;
    uint32_t seed_ = SFX_DEFAULT_SEED;
    std::string dataFolder_;

    // Of the frames since the start; width and height are 0 before it.
    int32_t width_ = 0, height_ = 0;
    bool hasTime_ = false;
    int64_t lastTime_ = 0;  ///< time stamp of the frame before
    int64_t elapsed_ = 0;   ///< nanoseconds since the first frame
    sfx::WorkFrame work_;
};

#endif
