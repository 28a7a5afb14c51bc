// The files that the library reads, with any content: the bytes are a bitmap, a cascade and a settings file,
// or a file of presets. The first byte decides.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "imaging/Cpu.h"
#include "sfx/sfx.h"
#include "tests/fuzz/ByteRun.h"

namespace {

constexpr const char* kFile = "any.txt";
constexpr int32_t kWidth = 48, kHeight = 40;

struct DestroyEffect {
    void operator()(sfx_effect* effect) const { sfx_destroy(effect); }
};
using Effect = std::unique_ptr<sfx_effect, DestroyEffect>;

void Expect(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "files: %s: %s\n", what, sfx_message());
    std::abort();
}

Effect Create(const std::string& text) {
    sfx_effect* effect = nullptr;
    Expect(sfx_create(text.c_str(), &effect) >= SFX_OK, text.c_str());
    Effect owned(effect);
    Expect(sfx_set_data_folder(effect, ".") == SFX_OK, "a data folder");
    return owned;
}

/// Frames with flat parts, a ramp and a moving edge.
void Process(const Effect& effect, int frames) {
    std::vector<uint8_t> bytes(size_t{kWidth} * kHeight * 3 / 2);
    for (int frame = 0; frame < frames; ++frame) {
        for (size_t i = 0; i < bytes.size(); ++i) {
            const auto x = static_cast<int>(i % kWidth), y = static_cast<int>(i / kWidth);
            bytes[i] = static_cast<uint8_t>(x > 12 + frame && y > 10 && y < 30 ? 5 * x : 60 + (y / 8) * 24);
        }
        sfx_picture picture = SFX_PICTURE_INIT;
        sfx_picture_layout(&picture, SFX_I420, kWidth, kHeight, bytes.data());
        Expect(sfx_process(effect.get(), &picture, SFX_NO_TIME) >= SFX_OK, "a frame was refused");
    }
}

/// From the data folder, and then as settings while frames run.
void ReadCascade() {
    constexpr int kFrames = 4;  // a search of all sizes takes as many
    const Effect effect = Create("picture-me");
    Process(effect, kFrames);
    Expect(sfx_load_settings(effect.get(), kFile) == SFX_OK, "a cascade as settings");
    Process(effect, kFrames);
}

void ReadBitmap() {
    Process(Create("logo-animation:type=picture,objects-number=3"), 1);
}

void ReadSettings() {
    const Effect effect = Create("line-art-1");
    Expect(sfx_load_settings(effect.get(), kFile) == SFX_OK, "settings");
    Process(effect, 1);
}

void ReadPresets() {
    const int status = sfx_load_presets(kFile);
    Expect(status == SFX_OK || status == SFX_ERROR_VALUE, "presets");
    if (status != SFX_OK) return;
    const size_t count = sfx_preset_count();
    Expect(count > 0, "presets that are gone");
    for (size_t i = 0; i < count; ++i) {
        const sfx_preset_info* const preset = sfx_preset_at(i);
        Expect(preset != nullptr, "a preset that is gone");
        if (preset->is_user == 1) Create(std::string("preset:") + preset->id);
    }
}

}  // namespace

void RunBytes(std::span<const uint8_t> bytes) {
    std::ofstream(kFile, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    for (const char* name : {"haar.txt", "logo3.bmp"}) {
        if (!std::filesystem::exists(name)) std::filesystem::create_hard_link(kFile, name);
    }
    const auto levels = cpu::Levels();
    cpu::Limit(levels[bytes.size() % levels.size()]);
    const uint8_t first = bytes.empty() ? 0 : bytes[0];
    if (first == 'B') {
        ReadBitmap();
    } else if (first < 'A') {
        ReadCascade();
        ReadSettings();
    } else {
        ReadPresets();
    }
    cpu::Limit(levels.back());
}
