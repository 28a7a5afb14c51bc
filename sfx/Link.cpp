#include "sfx/Link.h"

#include <utility>

#include "imaging/Files.h"
#include "sfx/DataFiles.h"
#include "sfx/NoSurroundings.h"

namespace sfx {
namespace {

/// What an effect sees that does nothing but make its data file, at a path of its own.
class MakerSurroundings final : public NoSurroundings {
  public:
    explicit MakerSurroundings(std::string path) : path_(std::move(path)) {}

    std::string DataFile(const std::string&) override {
        return files::RegularFileSize(path_.c_str()) ? path_ : std::string();
    }
    std::string NewDataFile(const std::string&) override { return path_; }

  private:
    std::string path_;
};

void Configure(CSpecialEffectFilter& filter, const char* name, int32_t width, int32_t height) {
    StreamDescription stream{0, width, height, kFormatPlanar};
    Require(filter.Configure(&stream), SFX_ERROR_FAILED, name, kNotConfigured);
}

ResultCode LoadSettingsFile(CSpecialEffectFilter& filter, std::string path) {
    char name[] = "";
    SettingsRecord record{0, name, path.data(), {0, 0}};
    return filter.LoadSettings(&record);
}

}  // namespace

/// A clock that follows the time stamps, a generator and a place for data files of the effect's own.
class LinkSurroundings final : public Surroundings {
  public:
    LinkSurroundings(const EffectEntry& effect, uint32_t seed, std::string dataFolder)
        : effect_(effect), seed_(seed), dataFolder_(std::move(dataFolder)), random_(seed) {}

    int64_t Milliseconds() override { return milliseconds_; }
    void SetTime(int64_t nanoseconds) { milliseconds_ = kFirstMillisecond + nanoseconds / 1000000; }

    int32_t Rand() override { return random_.Next(); }
    /// An effect that seeds from the clock still depends on the seed: the default one changes nothing.
    void Srand(uint32_t seed) override { random_.Seed(seed + seed_ - SFX_DEFAULT_SEED); }

    std::string DataFile(const std::string& name) override {
        std::string path = FindDataFile(name, dataFolder_);
        if (effect_.info.data_file != nullptr && name == effect_.info.data_file) {
            isMissing_ = path.empty();
        }
        return path;
    }
    /// A separate object makes the file, so that it is the same for every seed.
    std::string NewDataFile(const std::string& name) override {
        FindOrMakeDataFile(name, dataFolder_, [this](const std::string& path) {
            constexpr int32_t kSmall = 16;
            MakerSurroundings surroundings(path);
            const SurroundingsScope scope(surroundings);
            Configure(*effect_.Create(), effect_.info.id, kSmall, kSmall);
        });
        return {};
    }
    bool IsDataMissing() const { return isMissing_; }

  private:
    /// What the module's own clock starts with.
    static constexpr int64_t kFirstMillisecond = 2000;

    const EffectEntry& effect_;
    uint32_t seed_;
    std::string dataFolder_;
    AdditiveRandom random_;
    int64_t milliseconds_ = kFirstMillisecond;
    bool isMissing_ = false;
};

Link::Link(LinkText text) : text_(std::move(text)) {}
Link::Link(Link&&) noexcept = default;
Link::~Link() = default;

Link Link::Clone() const {
    Link copy(text_);
    copy.settingsFile_ = settingsFile_;
    return copy;
}

const char* Link::Start(int32_t width, int32_t height, uint32_t seed, const std::string& dataFolder) {
    Stop();
    surroundings_ = std::make_unique<LinkSurroundings>(Effect(), seed, dataFolder);
    const SurroundingsScope scope(*surroundings_);
    filter_ = Effect().Create();
    // Before, since some effects build tables from them, and after, since some start over with their own.
    ApplySettings(*filter_);
    Configure(*filter_, Effect().info.id, width, height);
    if (!settingsFile_.empty()) {
        LoadSettingsFile(*filter_, settingsFile_);
    }
    ApplySettings(*filter_);
    isFresh_ = true;
    return surroundings_->IsDataMissing() ? Effect().info.data_file : nullptr;
}

void Link::Stop() {
    filter_.reset();
    surroundings_.reset();
}

void Link::Process(const WorkFrame::Planes& planes, int64_t time) {
    surroundings_->SetTime(time);
    const SurroundingsScope scope(*surroundings_);
    const auto chromaSize = static_cast<int32_t>(planes.ChromaSize());
    ImageRecord image{kFormatPlanar,
                      {planes.y, planes.u, planes.v},
                      0,
                      {static_cast<int32_t>(planes.LumaSize()), chromaSize, chromaSize}};
    FrameRecord frame{{0, 0, 0}, &image};
    isFresh_ = false;
    Require(filter_->ProcessFrame(&frame), SFX_ERROR_FAILED, Effect().info.id, "failed on a frame");
}

void Link::Set(size_t property, int32_t value) {
    text_.settings[property] = value;
    isFresh_ = true;
    if (filter_ != nullptr) {
        const SurroundingsScope scope(*surroundings_);
        Effect().properties[property].Set(*filter_, value);
    }
}

int32_t Link::Get(size_t property) const {
    const PropertyEntry& entry = Effect().properties[property];
    const std::optional<int32_t>& set = text_.settings[property];
    if (filter_ != nullptr && !(isFresh_ && set)) {
        const SurroundingsScope scope(*surroundings_);
        return entry.Get(*filter_);
    }
    return set.value_or(entry.info.start);
}

void Link::SetDefaults() {
    Stop();
    settingsFile_.clear();
    text_.settings.assign(text_.settings.size(), std::nullopt);
}

bool Link::TakesSettingsFile() const {
    // Those that do refuse a null record; all others accept anything.
    return Effect().Create()->LoadSettings(static_cast<SettingsRecord*>(nullptr)) != kSuccess;
}

Link Link::CloneWithSettingsFile(const std::string& path) const {
    Link clone = Clone();
    clone.settingsFile_ = path;
    NoSurroundings none;
    const SurroundingsScope scope(none);
    const Filter filter = Effect().Create();
    clone.ApplySettings(*filter);
    const auto values = [&] {
        std::vector<int32_t> all;
        for (const PropertyEntry& property : Effect().properties) {
            all.push_back(property.Get(*filter));
        }
        return all;
    };
    const std::vector<int32_t> before = values();
    clone.ReadSettingsFile(*filter);
    const std::vector<int32_t> after = values();
    for (size_t i = 0; i < after.size(); ++i) {
        if (after[i] != before[i]) {
            clone.text_.settings[i] = after[i];
        }
    }
    return clone;
}

void Link::LoadSettingsOf(const Link& clone) {
    if (filter_ != nullptr) {
        const SurroundingsScope scope(*surroundings_);
        clone.ReadSettingsFile(*filter_);
        clone.ApplySettings(*filter_);  // since some effects start over with their own
        isFresh_ = true;
    }
}

void Link::AdoptSettings(Link&& clone) noexcept {
    text_ = std::move(clone.text_);
    settingsFile_ = std::move(clone.settingsFile_);
}

void Link::ApplySettings(CSpecialEffectFilter& filter) const {
    for (size_t i = 0; i < text_.settings.size(); ++i) {
        if (text_.settings[i]) {
            Effect().properties[i].Set(filter, *text_.settings[i]);
        }
    }
}

void Link::ReadSettingsFile(CSpecialEffectFilter& filter) const {
    const std::string refusal = "does not take the settings file " + settingsFile_;
    Require(LoadSettingsFile(filter, settingsFile_), SFX_ERROR_FILE, Effect().info.id, refusal.c_str());
}

}  // namespace sfx
