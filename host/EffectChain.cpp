#include "EffectChain.h"

#include <filesystem>
#include <fstream>

namespace host {
namespace {

constexpr const char* kCascade = "haar.txt";

// An effect that reads settings refuses a null record; all others accept anything.
bool TakesSettings(CSpecialEffectFilter& effect) {
    return effect.LoadSettings(static_cast<SettingsRecord*>(nullptr)) != kSuccess;
}

ResultCode LoadSettingsFile(CSpecialEffectFilter& effect, std::string path) {
    std::string name;
    SettingsRecord record{0, name.data(), path.data(), {0, 0}};
    return effect.LoadSettings(&record);
}

bool DetectsFaces(const EffectName& name) {
    return name.shortName == "picture-me";
}

void SetAll(CSpecialEffectFilter& effect, const EffectName& name,
            const std::vector<Assignment>& assignments) {
    for (const Assignment& assignment : assignments) {
        const ResultCode code = SetProperty(effect, assignment.name, assignment.value);
        if (code == kSuccess) continue;
        throw Failure("{} refuses {}={}: {}", name.displayName, assignment.name, assignment.value,
                      ResultText(code));
    }
}

}  // namespace

EffectHandle CreateEffect(const Module& module, const EffectName& name) {
    EffectHandle effect = module.Create(name.Guid());
    if (!effect) throw Failure("the module {} has no effect {}", module.Path().string(), name.shortName);
    return effect;
}

std::string CascadeFile(const Module& module) {
    std::error_code error;
    if (std::filesystem::exists(kCascade, error)) return std::filesystem::absolute(kCascade).string();
    return module.DataFile(kCascade).string();
}

void Configure(CSpecialEffectFilter& effect, const EffectName& name, const Module& module, int width,
               int height, int32_t format) {
    StreamDescription stream{0, width, height, format};
    const ResultCode code = effect.Configure(&stream);
    if (code != kSuccess) {
        throw Failure("{} refuses a stream of {}x{}: {}", name.displayName, width, height, ResultText(code));
    }
    if (!DetectsFaces(name)) return;
    std::error_code error;
    if (std::filesystem::exists(kCascade, error)) return;  // the effect has found it
    const std::string cascade = CascadeFile(module);
    if (!cascade.empty()) LoadSettingsFile(effect, cascade);
}

EffectChain::EffectChain(const Module& module, const std::vector<std::string>& texts, const Notes& notes)
    : module_(module), notes_(notes) {
    for (const std::string& text : texts) {
        const EffectText parts = SplitEffectText(text);
        const EffectName& name = RequireEffect(parts.effect);
        EffectHandle effect = CreateEffect(module, name);
        auto assignments = ParseAssignments(parts.assignments, PropertiesOf(*effect), name.displayName);
        links_.push_back({&name, std::move(effect), std::move(assignments)});
    }
}

void EffectChain::Configure(int width, int height, int32_t format,
                            const std::optional<std::string>& settingsFile) {
    for (const Link& link : links_) {
        SetAll(*link.effect, *link.name, link.assignments);
        host::Configure(*link.effect, *link.name, module_, width, height, format);
        if (DetectsFaces(*link.name) && !settingsFile && CascadeFile(module_).empty()) {
            notes_.Add("{} finds no faces: there is no {} in the current directory and none came with {}",
                       link.name->displayName, kCascade, module_.Path().string());
        }
    }
    if (settingsFile) LoadSettings(*settingsFile);
    for (const Link& link : links_) {
        SetAll(*link.effect, *link.name, link.assignments);
        TellOfClampedValues(link);
    }
}

void EffectChain::LoadSettings(const std::string& file) {
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) {
        throw Failure("the settings file {} is a directory", file);
    }
    if (!std::ifstream(file)) throw Failure("cannot read the settings file {}: {}", file, SystemText(errno));
    bool taken = false;
    for (const Link& link : links_) {
        if (!TakesSettings(*link.effect)) continue;
        taken = true;
        const ResultCode code = LoadSettingsFile(*link.effect, file);
        if (code != kSuccess) {
            throw Failure("{} does not take the settings file {}: {}", link.name->displayName, file,
                          ResultText(code));
        }
    }
    if (!taken) {
        throw UsageError("no effect of the chain takes a settings file; Line Art and Picture Me do");
    }
}

void EffectChain::TellOfClampedValues(const Link& link) const {
    for (const Assignment& assignment : link.assignments) {
        const std::string value = GetProperty(*link.effect, assignment.name);
        if (value != assignment.value) {
            notes_.Add("{}: {}={} is out of range, clamped to {}", link.name->displayName, assignment.name,
                       assignment.value, value);
        }
    }
}

void EffectChain::Process(Frame& frame) {
    ImageRecord image = frame.Record();
    FrameRecord record{{0, 0, 0}, &image};
    for (const Link& link : links_) {
        const ResultCode code = link.effect->ProcessFrame(&record);
        if (code == kSuccess) continue;
        if (code == kNotImplemented) {
            throw UsageError("{} does not process packed frames; leave out --packed", link.name->displayName);
        }
        throw Failure("{} fails on a frame: {}", link.name->displayName, ResultText(code));
    }
}

}  // namespace host
