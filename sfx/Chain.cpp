#include "sfx/Chain.h"

#include <algorithm>
#include <limits>

#include "sfx/Guard.h"
#include "sfx/Words.h"

using sfx::Failure;
using sfx::Link;
using sfx::LinkText;
using sfx::PropertyEntry;
using sfx::Tell;

using Lock = std::lock_guard<Mutex>;

sfx_effect::sfx_effect(std::vector<LinkText> texts) {
    links_.reserve(texts.size());
    for (LinkText& text : texts) {
        links_.emplace_back(std::move(text));
    }
}

sfx_effect::sfx_effect(const sfx_effect& other) {
    const Lock lock(other.mutex_);
    links_.reserve(other.links_.size());
    for (const Link& link : other.links_) {
        links_.push_back(link.Clone());
    }
    seed_ = other.seed_;
    dataFolder_ = other.dataFolder_;
}

const sfx_effect_info* sfx_effect::LinkInfo(size_t link) const {
    return link < links_.size() ? &links_[link].Effect().info : nullptr;
}

std::string sfx_effect::Print() const {
    const Lock lock(mutex_);
    std::string text;
    for (const Link& link : links_) {
        text += text.empty() ? "" : "+";
        text += PrintLink(link.Text());
    }
    return text;
}

// ---- settings ----------------------------------------------------------------------------------------

sfx_effect::Place sfx_effect::Find(std::string_view name) const {
    // "2.drop-size"
    if (const size_t dot = name.find('.'); dot != std::string_view::npos) {
        const auto number = sfx::ParseInteger(name.substr(0, dot));
        if (!number || *number < 0 || static_cast<size_t>(*number) >= links_.size()) {
            throw Failure{Tell(SFX_ERROR_UNKNOWN, "\"%.*s\" names none of the %zu effects in the row",
                               sfx::QuotedSize(name), name.data(), links_.size())};
        }
        const auto link = static_cast<size_t>(*number);
        return {link, links_[link].Effect().RequireProperty(name.substr(dot + 1))};
    }
    for (size_t link = 0; link < links_.size(); ++link) {
        const size_t property = links_[link].Effect().FindProperty(name);
        if (property < links_[link].Effect().properties.size()) {
            return {link, property};
        }
    }
    if (links_.size() == 1) {
        links_[0].Effect().RequireProperty(name);
    }
    throw Failure{Tell(SFX_ERROR_UNKNOWN, "none of the %zu effects in the row has a property \"%.*s\"",
                       links_.size(), sfx::QuotedSize(name), name.data())};
}

namespace {

sfx_status ToldOfClamping(const PropertyEntry& property, bool clamped, int32_t value) {
    if (!clamped) {
        return SFX_OK;
    }
    return Tell(SFX_CLAMPED, "%s is from %d to %d; it is now %s", property.info.id,
                static_cast<int>(property.info.minimum), static_cast<int>(property.info.maximum),
                property.Print(value).c_str());
}

}  // namespace

sfx_status sfx_effect::Set(std::string_view property, std::string_view value) {
    const Lock lock(mutex_);
    const Place place = Find(property);
    const PropertyEntry& entry = links_[place.link].Effect().properties[place.property];
    bool clamped = false;
    const int32_t number = entry.Parse(value, clamped);
    links_[place.link].Set(place.property, number);
    return ToldOfClamping(entry, clamped, number);
}

sfx_status sfx_effect::Set(std::string_view property, int32_t value) {
    const Lock lock(mutex_);
    const Place place = Find(property);
    const PropertyEntry& entry = links_[place.link].Effect().properties[place.property];
    if (entry.info.type == SFX_BOOLEAN) {
        value = value != 0 ? 1 : 0;
    }
    const int32_t number = entry.Clamp(value);
    links_[place.link].Set(place.property, number);
    return ToldOfClamping(entry, number != value, number);
}

std::string sfx_effect::GetText(std::string_view property) const {
    const Lock lock(mutex_);
    const Place place = Find(property);
    const Link& link = links_[place.link];
    return link.Effect().properties[place.property].Print(link.Get(place.property));
}

int32_t sfx_effect::Get(std::string_view property) const {
    const Lock lock(mutex_);
    const Place place = Find(property);
    return links_[place.link].Get(place.property);
}

void sfx_effect::SetDefaults() {
    const Lock lock(mutex_);
    Stop();
    for (Link& link : links_) {
        link.SetDefaults();
    }
}

void sfx_effect::LoadSettings(const std::string& path) {
    const Lock lock(mutex_);
    // All links take the file, or none does.
    std::vector<std::pair<Link*, Link>> clones;
    for (Link& link : links_) {
        if (link.TakesSettingsFile()) {
            clones.emplace_back(&link, link.CloneWithSettingsFile(path));
        }
    }
    if (clones.empty()) {
        throw Failure{Tell(SFX_ERROR_UNKNOWN, "no effect in the row takes a settings file")};
    }
    try {
        for (const auto& [link, clone] : clones) {
            link->LoadSettingsOf(clone);
        }
    } catch (...) {
        Stop();  // some have read it; all start anew with the settings from before
        throw;
    }
    for (auto& [link, clone] : clones) {
        link->AdoptSettings(std::move(clone));
    }
}

void sfx_effect::SetSeed(uint32_t seed) {
    const Lock lock(mutex_);
    seed_ = seed;
    Stop();
}

uint32_t sfx_effect::Seed() const {
    const Lock lock(mutex_);
    return seed_;
}

void sfx_effect::SetDataFolder(std::string folder) {
    const Lock lock(mutex_);
    dataFolder_ = std::move(folder);
}

// ---- frames ------------------------------------------------------------------------------------------

void sfx_effect::Stop() {
    for (Link& link : links_) {
        link.Stop();
    }
    width_ = height_ = 0;
    hasTime_ = false;
    elapsed_ = 0;
}

/// Width and height are even.
sfx_status sfx_effect::Start(int32_t width, int32_t height) {
    Stop();
    sfx_status news = SFX_OK;
    try {
        for (size_t i = 0; i < links_.size(); ++i) {
            const char* const missing =
                links_[i].Start(width, height, seed_ + static_cast<uint32_t>(i), dataFolder_);
            if (missing != nullptr) {
                news = Tell(SFX_DATA_MISSING,
                            "%s runs without its data file %s, which is in none of the data folders",
                            links_[i].Effect().info.id, missing);
            }
        }
    } catch (...) {
        Stop();
        throw;
    }
    width_ = width;
    height_ = height;
    return news;
}

sfx_status sfx_effect::Prepare(int32_t width, int32_t height) {
    const Lock lock(mutex_);
    const int32_t evenWidth = sfx::EvenSide(width), evenHeight = sfx::EvenSide(height);
    if (width_ == evenWidth && height_ == evenHeight) {
        return SFX_OK;
    }
    return Start(evenWidth, evenHeight);
}

void sfx_effect::Advance(int64_t time) {
    constexpr int64_t kFrame = 1000000000 / 30, kLast = std::numeric_limits<int64_t>::max();
    if (time == SFX_NO_TIME) {
        time = !hasTime_ ? 0 : lastTime_ <= kLast - kFrame ? lastTime_ + kFrame : kLast;
    }
    if (hasTime_ && time > lastTime_) {
        const uint64_t step = static_cast<uint64_t>(time) - static_cast<uint64_t>(lastTime_);
        elapsed_ += static_cast<int64_t>(std::min(step, static_cast<uint64_t>(kLast - elapsed_)));
    }
    lastTime_ = time;
    hasTime_ = true;
}

sfx_status sfx_effect::Process(const sfx::Picture& picture, int64_t time) {
    const Lock lock(mutex_);
    const int32_t width = sfx::EvenSide(picture.width), height = sfx::EvenSide(picture.height);
    sfx_status status = SFX_OK;
    if (width_ != width || height_ != height) {
        status = Start(width, height);
    }
    const sfx::WorkFrame::Planes planes = work_.Load(picture);
    Advance(time);
    try {
        for (Link& link : links_) {
            link.Process(planes, elapsed_);
        }
    } catch (...) {
        Stop();  // an effect that fails in the midst of a frame starts anew
        throw;
    }
    work_.Store(picture);
    return status;
}

void sfx_effect::Reset() {
    const Lock lock(mutex_);
    Stop();
}
