#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "imaging/Cpu.h"
#include "sfx/sfx.h"
#include "tests/fuzz/ByteRun.h"
#include "tests/fuzz/Source.h"

namespace {

// Work that one run may ask for.
constexpr int64_t kPixelBudget = 150000;
constexpr int kStepBudget = 200;
constexpr size_t kShippedPresets = 12;  // at least; runs add others

constexpr const char* kValues[] = {"true",    "off",        "0",           "1",      "5",     "9",
                                   "40",      "-1",         "99999999999", "glows",  "inked", "patches",
                                   "#123456", "300,-5,7",   "12,34",       "",       " ",     "%s%n%d",
                                   "random",  "2147483647", "-2147483648", "#12345g"};

[[noreturn]] void Fail(const char* what, long long value) {
    std::fprintf(stderr, "sfx: %s (%lld): %s\n", what, value, sfx_message());
    std::abort();
}

void ExpectKnown(int status) {
    if (status < SFX_ERROR_FAILED || status > SFX_DATA_MISSING) {
        Fail("a status that is not the interface's", status);
    }
    if (std::strlen(sfx_message()) > 2000) {
        Fail("a message without end", status);
    }
}

/// A picture whose planes are blocks of exactly the bytes that belong to it.
class Picture {
  public:
    explicit Picture(Source& source) {
        record_.format = static_cast<int32_t>(source.Below(SFX_FORMAT_COUNT));
        record_.width = Side(source);
        record_.height = Side(source);
        record_.matrix = static_cast<int32_t>(source.Below(3));
        record_.range = static_cast<int32_t>(source.Below(2));
        const uint8_t fill = source.Byte();
        for (int plane = 0; plane < sfx_format_planes(record_.format); ++plane) {
            const size_t rowBytes = sfx_plane_row_bytes(record_.format, plane, record_.width);
            const auto rows = static_cast<size_t>(sfx_plane_rows(record_.format, plane, record_.height));
            const size_t step = rowBytes + (source.OneIn(3) ? source.Below(40) : 0);
            const size_t size = step * (rows - 1) + rowBytes;
            Block& block = blocks_[static_cast<size_t>(plane)];
            block = {std::unique_ptr<uint8_t, Free>(static_cast<uint8_t*>(std::malloc(size))), size};
            uint32_t state = fill;
            for (size_t i = 0; i < size; ++i) {
                state = state * 1664525U + 1013904223U;
                block.data.get()[i] = static_cast<uint8_t>(fill % 3 == 0 ? fill : state >> 24);
            }
            const bool bottomUp = source.OneIn(4);
            record_.planes[plane] = block.data.get() + (bottomUp ? step * (rows - 1) : 0);
            record_.strides[plane] = bottomUp ? -static_cast<ptrdiff_t>(step) : static_cast<ptrdiff_t>(step);
            if (step == rowBytes && !bottomUp && source.OneIn(2)) {
                record_.strides[plane] = 0;
            }
            record_.sizes[plane] = source.OneIn(2) ? size : 0;
        }
        if (source.OneIn(6)) {
            Spoil(source);
        }
    }

    const sfx_picture& record() const { return record_; }
    bool spoilt() const { return spoilt_; }
    int64_t Pixels() const { return int64_t{record_.width} * record_.height; }
    std::vector<uint8_t> Bytes() const {
        std::vector<uint8_t> bytes;
        for (const Block& block : blocks_) {
            bytes.insert(bytes.end(), block.data.get(), block.data.get() + block.size);
        }
        return bytes;
    }

  private:
    struct Free {
        void operator()(uint8_t* data) const { std::free(data); }
    };
    struct Block {
        std::unique_ptr<uint8_t, Free> data;
        size_t size = 0;
    };

    static int32_t Side(Source& source) {
        switch (source.Below(8)) {
            case 0:
                return 1 + static_cast<int32_t>(source.Below(3));
            case 1:
                return 1 + source.Byte() * 3;
            default:
                return 1 + source.Byte() % 64;
        }
    }

    /// Turns it into one that must be refused.
    void Spoil(Source& source) {
        spoilt_ = true;
        constexpr int32_t kBadSides[] = {0, -1, SFX_MAX_SIDE + 1, INT32_MAX, INT32_MIN};
        switch (source.Below(8)) {
            case 0:
                record_.planes[0] = nullptr;
                break;
            case 1:
                record_.sizes[0] = blocks_[0].size - 1;
                spoilt_ = record_.sizes[0] != 0;
                break;
            case 2:
                record_.strides[0] = PTRDIFF_MIN;
                spoilt_ = record_.height > 1;
                break;
            case 3:
                record_.strides[0] = 1;
                spoilt_ = record_.height > 1 && sfx_plane_row_bytes(record_.format, 0, record_.width) > 1;
                record_.strides[0] = spoilt_ ? 1 : 0;
                break;
            case 4:
                record_.format = source.OneIn(2) ? -1 : SFX_FORMAT_COUNT;
                break;
            case 5:
                record_.width = source.Pick(kBadSides);
                break;
            case 6:
                record_.matrix = 3;
                break;
            default:
                record_.range = -1;
                break;
        }
        if (!spoilt_ && record_.strides[0] == PTRDIFF_MIN) {
            record_.strides[0] = 0;
        }
        if (!spoilt_) {
            record_.planes[0] = blocks_[0].data.get();
            record_.strides[0] = 0;
            record_.sizes[0] = 0;
        }
    }

    sfx_picture record_ = SFX_PICTURE_INIT;
    std::array<Block, 3> blocks_;
    bool spoilt_ = false;
};

class Program {
  public:
    explicit Program(std::span<const uint8_t> bytes) : source_(bytes) {}
    ~Program() {
        for (sfx_effect* effect : effects_) {
            sfx_destroy(effect);
        }
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void Run() {
        const auto levels = cpu::Levels();
        cpu::Limit(levels[source_.Below(levels.size())]);
        for (int step = 0; step < kStepBudget && !source_.empty() && pixels_ < kPixelBudget; ++step) {
            Step();
        }
        cpu::Limit(levels.back());
    }

  private:
    std::string AnyText() { return source_.Text(source_.Byte() % 40); }

    const sfx_effect_info& AnyEffect() { return *sfx_effect_at(source_.Below(sfx_effect_count())); }

    std::string LinkText() {
        switch (source_.Below(6)) {
            case 0:
                return AnyText();
            case 1:
                return std::string("preset:") + sfx_preset_at(source_.Below(kShippedPresets))->id;
            default:
                break;
        }
        const sfx_effect_info& info = AnyEffect();
        std::string text = info.id;
        for (size_t i = 0; i < info.property_count && source_.OneIn(2); ++i) {
            text += i == 0 ? ":" : ",";
            text += info.properties[i]->id;
            text += '=';
            text += source_.Pick(kValues);
        }
        return text;
    }

    std::string EffectText() {
        std::string text = LinkText();
        while (source_.OneIn(4) && !source_.empty()) {
            text += '+';
            text += LinkText();
        }
        return text;
    }

    std::string PropertyName(const sfx_effect* effect) {
        if (source_.OneIn(8)) {
            return AnyText();
        }
        const size_t link = source_.Below(sfx_link_count(effect));
        const sfx_effect_info& info = *sfx_link_info(effect, link);
        if (info.property_count == 0) {
            return "drop-size";
        }
        const std::string id = info.properties[source_.Below(info.property_count)]->id;
        if (source_.OneIn(2)) {
            return id;
        }
        std::string name = std::to_string(link);
        name += '.';
        return name.append(id);
    }

    void CreateEffect(sfx_effect*& effect) {
        sfx_destroy(effect);
        ExpectKnown(sfx_create(EffectText().c_str(), &effect));
        // What has been created can be printed and created again.
        if (effect != nullptr) {
            const std::string text = Print(effect);
            sfx_effect* again = nullptr;
            if (sfx_create(text.c_str(), &again) != SFX_OK || Print(again) != text) {
                Fail("a printed effect that is another", 0);
            }
            sfx_destroy(again);
        }
    }

    static std::string Print(const sfx_effect* effect) {
        const int length = sfx_print(effect, nullptr, 0);
        if (length < 0) {
            Fail("cannot print", length);
        }
        std::vector<char> text(static_cast<size_t>(length) + 1);
        sfx_print(effect, text.data(), text.size());
        return text.data();
    }

    void Settings(sfx_effect* effect) {
        const std::string name = PropertyName(effect);
        char text[SFX_VALUE_SIZE];
        int32_t value = 0;
        switch (source_.Below(4)) {
            case 0:
                return ExpectKnown(sfx_set_int(effect, name.c_str(), static_cast<int32_t>(source_.Word())));
            case 1:
                return ExpectKnown(sfx_set(effect, name.c_str(), source_.Pick(kValues)));
            case 2:
                ExpectKnown(sfx_get(effect, name.c_str(), text, 1 + source_.Below(sizeof text)));
                break;
            default:
                // What can be read as a number can be read as a text that sets it.
                if (sfx_get_int(effect, name.c_str(), &value) == SFX_OK &&
                    (sfx_get(effect, name.c_str(), text, sizeof text) != SFX_OK ||
                     sfx_set(effect, name.c_str(), text) < 0)) {
                    Fail("a value that cannot be set again", value);
                }
                break;
        }
    }

    void Frames(sfx_effect* effect) {
        const int count = 1 + static_cast<int>(source_.Below(4));
        for (int i = 0; i < count && pixels_ < kPixelBudget; ++i) {
            const Picture picture(source_);
            pixels_ += std::clamp<int64_t>(picture.Pixels(), 0, 1000000) *
                           static_cast<int64_t>(sfx_link_count(effect)) +
                       2000;
            const std::vector<uint8_t> before = picture.Bytes();
            const int64_t time = source_.OneIn(4) ? SFX_NO_TIME
                                 : source_.OneIn(4)
                                     ? static_cast<int64_t>(uint64_t{source_.Word()} << 32 | source_.Word())
                                     : time_ += 40000000;
            const int status = sfx_process(effect, &picture.record(), time);
            ExpectKnown(status);
            if (picture.spoilt() && (status != SFX_ERROR_PICTURE || picture.Bytes() != before)) {
                Fail("a picture that was to be refused", status);
            }
            if (!picture.spoilt() && status < 0) {
                Fail("a good picture was refused", status);
            }
        }
    }

    void File(sfx_effect* effect) {
        const char* const path = "settings.txt";
        std::ofstream(path, std::ios::binary)
            << (source_.OneIn(2) ? "" : "[own]\neffect = ") << (source_.OneIn(2) ? AnyText() : EffectText());
        if (source_.OneIn(2)) {
            ExpectKnown(sfx_load_presets(path));
        } else {
            ExpectKnown(sfx_load_settings(effect, path));
        }
    }

    void Step() {
        sfx_effect*& effect = effects_[source_.Below(effects_.size())];
        if (effect == nullptr) {
            return CreateEffect(effect);
        }
        sfx_effect* copy = nullptr;
        switch (source_.Below(16)) {
            case 0:
                return CreateEffect(effect);
            case 1:
                ExpectKnown(sfx_clone(effect, &copy));
                std::swap(effect, copy);
                return sfx_destroy(copy);
            case 2:
                return ExpectKnown(sfx_reset(effect));
            case 3:
                return ExpectKnown(sfx_set_seed(effect, source_.Word()));
            case 4:
                return ExpectKnown(sfx_set_data_folder(effect, source_.OneIn(2) ? nullptr : "."));
            case 5: {
                const int32_t width = source_.Byte(), height = source_.Byte();
                pixels_ += width * height;
                return ExpectKnown(sfx_prepare(effect, width, height));
            }
            case 6:
                return ExpectKnown(sfx_set_defaults(effect));
            case 7:
                return File(effect);
            case 8:
                sfx_find(AnyText().c_str());
                return ExpectKnown(SFX_OK);
            case 9:
            case 10:
            case 11:
                return Settings(effect);
            default:
                return Frames(effect);
        }
    }

    Source source_;
    std::array<sfx_effect*, 3> effects_{};
    int64_t pixels_ = 0, time_ = 0;
};

}  // namespace

void RunBytes(std::span<const uint8_t> bytes) {
    // The user's folders are in the current directory. There is a short noise file.
    static const bool ready = [] {
        char folder[4096];
        if (getcwd(folder, sizeof folder) != nullptr) {
            setenv("HOME", folder, 1);
            setenv("XDG_CACHE_HOME", folder, 1);
            setenv("XDG_CONFIG_HOME", folder, 1);
        }
        return true;
    }();
    static_cast<void>(ready);
    std::ofstream("perlin.dat", std::ios::binary) << std::string(1000, '\x60');
    Program(bytes).Run();
}
