#include "EffectChain.h"

#include <filesystem>
#include <new>

#include <fmt/format.h>

namespace host {
namespace {

// The library's message, with advice where it has none.
std::string UnknownText() {
    std::string text = sfx_message();
    if (text.find("did you mean") != std::string::npos) return text;
    if (text.starts_with("there is no effect") || text.starts_with("there is no preset") ||
        text.starts_with("an effect's name is missing")) {
        text += "; \"specialeffects list\" shows them";
    }
    return text;
}

}  // namespace

const sfx_effect_info& RequireEffect(const std::string& name) {
    const sfx_effect_info* info = sfx_find(name.c_str());
    if (info == nullptr) throw UsageError("{}", UnknownText());
    return *info;
}

EffectChain::EffectChain(const std::vector<std::string>& texts, const Notes& notes) : notes_(notes) {
    for (const std::string& text : texts) {
        // One by one, so that an empty text or a lone "+" is noticed where it stands.
        sfx_effect* effect = nullptr;
        const sfx_status status = sfx_create(text.c_str(), &effect);
        const std::unique_ptr<sfx_effect, Destroy> owned(effect);
        if (status == SFX_ERROR_MEMORY) throw std::bad_alloc();
        if (status < 0) throw UsageError("{}", UnknownText());
        if (status == SFX_CLAMPED) notes_.Add("{}", sfx_message());
    }
    sfx_effect* effect = nullptr;
    const sfx_status status = sfx_create(fmt::format("{}", fmt::join(texts, "+")).c_str(), &effect);
    effect_.reset(effect);
    if (status < 0) Check(status, "");
}

void EffectChain::Check(int32_t status, const char* what) const {
    if (status == SFX_ERROR_MEMORY) throw std::bad_alloc();
    if (status < 0) throw Failure("{}{}", what, sfx_message());
    if (status > 0) notes_.Add("{}", sfx_message());
}

void EffectChain::SetSeed(uint32_t seed) {
    Check(sfx_set_seed(effect_.get(), seed), "");
}

void EffectChain::SetDataFolder(const std::string& folder) {
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) throw UsageError("{} is not a directory", folder);
    Check(sfx_set_data_folder(effect_.get(), folder.c_str()), "");
}

void EffectChain::LoadSettings(const std::string& file) {
    const sfx_status status = sfx_load_settings(effect_.get(), file.c_str());
    if (status == SFX_ERROR_UNKNOWN) {
        throw UsageError("no effect of the chain takes a settings file; Line Art and Picture Me do");
    }
    Check(status, "the settings file cannot be used: ");
}

void EffectChain::Prepare(int width, int height) {
    Check(sfx_prepare(effect_.get(), width, height), "");
}

void EffectChain::Process(Frame& frame, AVRational timeBase) {
    constexpr AVRational kNanoseconds{1, 1'000'000'000};
    sfx_picture picture = SFX_PICTURE_INIT;
    picture.width = frame.Width();
    picture.height = frame.Height();
    for (int plane = 0; plane < Frame::kPlanes; ++plane) {
        picture.planes[plane] = frame.Plane(plane);
        picture.strides[plane] = frame.RowBytes(plane);
    }
    const int64_t time = av_rescale_q(frame.Time(), timeBase, kNanoseconds);
    const sfx_status status = sfx_process(effect_.get(), &picture, time);
    if (status < 0) Check(status, "a frame cannot be processed: ");
}

std::vector<const sfx_effect_info*> EffectChain::Links() const {
    std::vector<const sfx_effect_info*> links(sfx_link_count(effect_.get()));
    for (size_t i = 0; i < links.size(); ++i) links[i] = sfx_link_info(effect_.get(), i);
    return links;
}

}  // namespace host
