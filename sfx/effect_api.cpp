// The C functions about effects: the list, presets, life, settings, frames.
#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "sfx/Chain.h"
#include "sfx/Files.h"
#include "sfx/Guard.h"
#include "sfx/Presets.h"

using sfx::Guarded;
using sfx::Tell;

namespace {

sfx_status NullArgument() {
    return Tell(SFX_ERROR_ARGUMENT, "an argument is null that must not be");
}

template <class... Pointers>
bool AnyNull(const Pointers*... pointers) {
    return ((pointers == nullptr) || ...);
}

/// Copies as much of a text as fits, terminated.
void CopyText(const std::string& text, char* buffer, size_t size) {
    const size_t length = std::min(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

/// A value of a function that gives no status; `failed` where the body throws.
template <class Value, class Body>
Value GuardedValue(Value failed, Body body) noexcept {
    Value value = failed;
    Guarded([&] {
        value = body();
        return SFX_OK;
    });
    return value;
}

}  // namespace

// ---- the list ----------------------------------------------------------------------------------------

size_t sfx_effect_count() noexcept {
    return GuardedValue(size_t{0}, [] { return sfx::EffectCount(); });
}

const sfx_effect_info* sfx_effect_at(size_t index) noexcept {
    return GuardedValue<const sfx_effect_info*>(nullptr, [&]() -> const sfx_effect_info* {
        return index < sfx::EffectCount() ? &sfx::EffectAt(index).info : nullptr;
    });
}

const sfx_effect_info* sfx_find(const char* text) noexcept {
    if (text == nullptr) {
        NullArgument();
        return nullptr;
    }
    return GuardedValue<const sfx_effect_info*>(nullptr, [&]() -> const sfx_effect_info* {
        const sfx::EffectEntry* const effect = sfx::FindEffect(text);
        return effect != nullptr ? &effect->info : nullptr;
    });
}

// ---- presets -----------------------------------------------------------------------------------------

size_t sfx_preset_count() noexcept {
    return GuardedValue(size_t{0}, [] { return sfx::PresetCount(); });
}

const sfx_preset_info* sfx_preset_at(size_t index) noexcept {
    return GuardedValue<const sfx_preset_info*>(nullptr, [&] { return sfx::PresetAt(index); });
}

sfx_status sfx_load_presets(const char* path) noexcept {
    if (path == nullptr) {
        return NullArgument();
    }
    return Guarded([&] {
        const std::optional<std::string> text = sfx::ReadTextFile(path);
        if (!text) {
            return Tell(SFX_ERROR_FILE, "cannot read the presets of %s", path);
        }
        sfx::AddPresets(*text, path, true);
        return SFX_OK;
    });
}

// ---- life --------------------------------------------------------------------------------------------

sfx_status sfx_create(const char* text, sfx_effect** effect) noexcept {
    if (effect != nullptr) {
        *effect = nullptr;
    }
    if (AnyNull(text, effect)) {
        return NullArgument();
    }
    return Guarded([&] {
        bool clamped = false;
        *effect = std::make_unique<sfx_effect>(sfx::ParseEffect(text, clamped)).release();
        return clamped ? Tell(SFX_CLAMPED, "a value in \"%.200s\" is out of range; the nearest was set", text)
                       : SFX_OK;
    });
}

sfx_status sfx_clone(const sfx_effect* effect, sfx_effect** copy) noexcept {
    if (copy != nullptr) {
        *copy = nullptr;
    }
    if (AnyNull(effect, copy)) {
        return NullArgument();
    }
    return Guarded([&] {
        *copy = std::make_unique<sfx_effect>(*effect).release();
        return SFX_OK;
    });
}

void sfx_destroy(sfx_effect* effect) noexcept {
    const std::unique_ptr<sfx_effect> last(effect);
}

size_t sfx_link_count(const sfx_effect* effect) noexcept {
    return effect != nullptr ? effect->LinkCount() : 0;
}

const sfx_effect_info* sfx_link_info(const sfx_effect* effect, size_t link) noexcept {
    return effect != nullptr ? effect->LinkInfo(link) : nullptr;
}

int sfx_print(const sfx_effect* effect, char* buffer, size_t size) noexcept {
    if (effect == nullptr || (buffer == nullptr && size > 0)) {
        return NullArgument();
    }
    int length = 0;
    const sfx_status status = Guarded([&] {
        const std::string text = effect->Print();
        if (size > 0) {
            CopyText(text, buffer, size);
        }
        length = static_cast<int>(std::min<size_t>(text.size(), std::numeric_limits<int>::max()));
        return SFX_OK;
    });
    return status == SFX_OK ? length : status;
}

// ---- settings ----------------------------------------------------------------------------------------

sfx_status sfx_set(sfx_effect* effect, const char* property, const char* value) noexcept {
    if (AnyNull(effect, property, value)) {
        return NullArgument();
    }
    return Guarded([&] { return effect->Set(property, std::string_view(value)); });
}

sfx_status sfx_set_int(sfx_effect* effect, const char* property, int32_t value) noexcept {
    if (AnyNull(effect, property)) {
        return NullArgument();
    }
    return Guarded([&] { return effect->Set(property, value); });
}

sfx_status sfx_get(const sfx_effect* effect, const char* property, char* buffer, size_t size) noexcept {
    if (AnyNull(effect, property, buffer)) {
        return NullArgument();
    }
    if (size == 0) {
        return Tell(SFX_ERROR_ARGUMENT, "the size of the buffer is 0; the terminator needs 1");
    }
    return Guarded([&] {
        CopyText(effect->GetText(property), buffer, size);
        return SFX_OK;
    });
}

sfx_status sfx_get_int(const sfx_effect* effect, const char* property, int32_t* value) noexcept {
    if (AnyNull(effect, property, value)) {
        return NullArgument();
    }
    return Guarded([&] {
        *value = effect->Get(property);
        return SFX_OK;
    });
}

sfx_status sfx_set_defaults(sfx_effect* effect) noexcept {
    if (effect == nullptr) {
        return NullArgument();
    }
    return Guarded([&] {
        effect->SetDefaults();
        return SFX_OK;
    });
}

sfx_status sfx_load_settings(sfx_effect* effect, const char* path) noexcept {
    if (AnyNull(effect, path)) {
        return NullArgument();
    }
    return Guarded([&] {
        if (!sfx::ReadTextFile(path)) {
            return Tell(SFX_ERROR_FILE, "cannot read the settings file %s", path);
        }
        effect->LoadSettings(sfx::AbsolutePath(path));
        return SFX_OK;
    });
}

sfx_status sfx_set_seed(sfx_effect* effect, uint32_t seed) noexcept {
    if (effect == nullptr) {
        return NullArgument();
    }
    return Guarded([&] {
        effect->SetSeed(seed);
        return SFX_OK;
    });
}

sfx_status sfx_get_seed(const sfx_effect* effect, uint32_t* seed) noexcept {
    if (AnyNull(effect, seed)) {
        return NullArgument();
    }
    return Guarded([&] {
        *seed = effect->Seed();
        return SFX_OK;
    });
}

sfx_status sfx_set_data_folder(sfx_effect* effect, const char* folder) noexcept {
    if (effect == nullptr) {
        return NullArgument();
    }
    return Guarded([&] {
        effect->SetDataFolder(sfx::AbsolutePath(folder != nullptr ? folder : ""));
        return SFX_OK;
    });
}

// ---- frames ------------------------------------------------------------------------------------------

sfx_status sfx_process(sfx_effect* effect, const sfx_picture* picture, int64_t time) noexcept {
    if (effect == nullptr) {
        return NullArgument();
    }
    return Guarded([&] {
        sfx::Picture checked{};
        const sfx_status status = sfx::CheckPicture(picture, checked);
        return status == SFX_OK ? effect->Process(checked, time) : status;
    });
}

sfx_status sfx_prepare(sfx_effect* effect, int32_t width, int32_t height) noexcept {
    if (effect == nullptr) {
        return NullArgument();
    }
    if (!sfx::IsServedSize(width, height)) {
        return Tell(SFX_ERROR_PICTURE, "pictures of %d by %d are refused; sides are 1 to %d",
                    static_cast<int>(width), static_cast<int>(height), SFX_MAX_SIDE);
    }
    return Guarded([&] { return effect->Prepare(width, height); });
}

sfx_status sfx_reset(sfx_effect* effect) noexcept {
    if (effect == nullptr) {
        return NullArgument();
    }
    return Guarded([&] {
        effect->Reset();
        return SFX_OK;
    });
}
