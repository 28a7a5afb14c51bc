#include "sfx/Presets.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <vector>

#include "framework/Mutex.h"
#include "sfx/EffectText.h"
#include "sfx/Files.h"
#include "sfx/Guard.h"
#include "sfx/Words.h"

namespace sfx {
namespace {

constexpr const char* kFile = "presets.ini";

struct Preset {
    std::string id, title, description, effect;
    bool users;
    sfx_preset_info info{};

    bool Equals(const Preset& other) const {
        return id == other.id && title == other.title && description == other.description &&
               effect == other.effect && users == other.users;
    }
};

/// Reads the sections of a file.
class Reader {
  public:
    Reader(std::string_view text, const std::string& source, bool users)
        : text_(text), source_(source), users_(users) {}
    /// Leaves out a preset that is wrong.
    Reader& Lenient() {
        lenient_ = true;
        return *this;
    }

    std::vector<Preset> Read() {
        constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // some editors begin files with it
        if (text_.starts_with(kByteOrderMark)) {
            text_.remove_prefix(kByteOrderMark.size());
        }
        for (const std::string_view raw : Split(text_, '\n')) {
            where_ = ++line_;
            const std::string_view line = Trimmed(raw);
            if (line.empty() || line.front() == '#' || line.front() == ';') {
                continue;
            }
            Tolerate([&] {
                if (!IsUtf8(line)) {
                    Refuse("this is not UTF-8 text");
                }
                if (line.front() == '[') {
                    Tolerate([&] { Finish(); });
                    Begin(line);
                } else if (!skips_) {
                    Assign(line);
                }
            });
        }
        Tolerate([&] { Finish(); });
        return std::move(presets_);
    }

  private:
    template <class Step>
    void Tolerate(Step step) {
        try {
            step();
        } catch (const Failure&) {
            if (!lenient_) {
                throw;
            }
            current_.reset();
            skips_ = true;
        }
    }

    [[noreturn]] void Refuse(const char* why) const {
        throw Failure{Tell(SFX_ERROR_VALUE, "%s, line %d: %s", source_.c_str(), where_, why)};
    }

    void Begin(std::string_view line) {
        const auto belongs = [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
        };
        const std::string_view id = Trimmed(line.substr(1, line.size() - 2));
        if (line.back() != ']' || id.empty() || !std::all_of(id.begin(), id.end(), belongs)) {
            Refuse("a preset's id in brackets has lower-case letters, digits and dashes");
        }
        current_ = Preset{std::string(id), {}, {}, {}, users_, {}};
        skips_ = false;
        effectAt_ = line_;
    }

    void Assign(std::string_view line) {
        const size_t equals = line.find('=');
        if (!current_ || equals == std::string_view::npos) {
            Refuse(current_ ? "neither a section nor \"name = value\""
                            : "this stands before the first section");
        }
        const std::string_view name = Trimmed(line.substr(0, equals));
        const std::string_view value = Trimmed(line.substr(equals + 1));
        std::string* const member = name == "title"         ? &current_->title
                                    : name == "description" ? &current_->description
                                    : name == "effect"      ? &current_->effect
                                                            : nullptr;
        if (member == nullptr) {
            Refuse("a preset has a title, a description and an effect, and nothing else");
        }
        *member = value;
        if (member == &current_->effect) {
            effectAt_ = line_;
        }
    }

    void Finish() {
        if (!current_) {
            return;
        }
        where_ = effectAt_;
        try {
            ParsePlainEffect(current_->effect);
        } catch (const Failure&) {
            Refuse(std::string(Message()).c_str());
        }
        if (current_->title.empty()) {
            current_->title = current_->id;
        }
        presets_.push_back(std::move(*current_));
        current_.reset();
        where_ = line_;
    }

    std::string_view text_;
    const std::string& source_;
    bool users_;
    bool lenient_ = false;
    bool skips_ = false;  ///< to the next section
    int line_ = 0;
    int where_ = 0;     ///< the line that a message names
    int effectAt_ = 0;  ///< the line of the present section's effect, or of its beginning
    std::optional<Preset> current_;
    std::vector<Preset> presets_;
};

class Store {
  public:
    Store() {
        if (!AddInstalled()) {
            Add(Reader(kShippedPresets, "the library's presets", false).Read());
        }
        if (const std::string folder = ConfigFolder(); !folder.empty()) {
            AddFile(JoinPath(folder, kFile), true);
        }
    }

    void Add(std::vector<Preset> presets) {
        const std::lock_guard lock(mutex_);
        for (Preset& preset : presets) {
            const auto same = [&](const Preset* other) { return other->id == preset.id; };
            const auto found = std::find_if(listed_.begin(), listed_.end(), same);
            if (found != listed_.end() && (*found)->Equals(preset)) {
                continue;
            }
            Preset& kept = kept_.emplace_back(std::move(preset));
            kept.info = {sizeof(sfx_preset_info),  kept.id.c_str(),     kept.title.c_str(),
                         kept.description.c_str(), kept.effect.c_str(), kept.users ? 1 : 0};
            if (found != listed_.end()) {
                *found = &kept;
            } else {
                listed_.push_back(&kept);
            }
        }
    }

    size_t Count() {
        const std::lock_guard lock(mutex_);
        return listed_.size();
    }
    const Preset* At(size_t index) {
        const std::lock_guard lock(mutex_);
        return index < listed_.size() ? listed_[index] : nullptr;
    }
    const Preset* Find(std::string_view id) {
        const std::lock_guard lock(mutex_);
        const auto same = [&](const Preset* preset) { return preset->id == id; };
        const auto found = std::find_if(listed_.begin(), listed_.end(), same);
        return found != listed_.end() ? *found : nullptr;
    }
    std::vector<std::string_view> Ids() {
        const std::lock_guard lock(mutex_);
        std::vector<std::string_view> ids;
        for (const Preset* preset : listed_) {
            ids.emplace_back(preset->id);
        }
        return ids;
    }

  private:
    bool AddFile(const std::string& path, bool users) {
        const std::optional<std::string> text = ReadTextFile(path);
        if (text) {
            Add(Reader(*text, path, users).Lenient().Read());
        }
        return text.has_value();
    }
    bool AddInstalled() {
        return std::any_of(
            InstalledFolders().begin(), InstalledFolders().end(),
            [this](const std::string& folder) { return AddFile(JoinPath(folder, kFile), false); });
    }

    Mutex mutex_;
    std::deque<Preset> kept_;  // replaced ones as well
    std::vector<const Preset*> listed_;
};

/// Never destroyed, so that what it has given out stays valid.
Store& Presets() {
    static Store& store = *std::make_unique<Store>().release();
    return store;
}

}  // namespace

size_t PresetCount() {
    return Presets().Count();
}

const sfx_preset_info* PresetAt(size_t index) {
    const Preset* const preset = Presets().At(index);
    return preset != nullptr ? &preset->info : nullptr;
}

std::string_view RequirePreset(std::string_view id) {
    const std::string wanted = DashedLower(id);
    if (const Preset* const preset = Presets().Find(wanted)) {
        return preset->effect;
    }
    const std::vector<std::string_view> ids = Presets().Ids();
    throw Failure{Tell(SFX_ERROR_UNKNOWN, "there is no preset \"%.80s\"%s", wanted.c_str(),
                       Suggestion(wanted, ids).c_str())};
}

void AddPresets(std::string_view text, const std::string& source, bool users) {
    Presets().Add(Reader(text, source, users).Read());
}

}  // namespace sfx
