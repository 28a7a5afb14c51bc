#include "Module.h"

#include <dlfcn.h>
#include <link.h>

#include <array>

#include "Errors.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLibrary = "libspecialeffects.so";
constexpr const char* kInstalledLibrary = "libspecialeffects.so." SE_SOVERSION;

// Texts of the contract's fixed size.
constexpr size_t kTextSize = 256;
using Text = std::array<char, kTextSize>;

fs::path ProgramFolder() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

std::vector<fs::path> LibraryCandidates() {
    const fs::path folder = ProgramFolder();
    std::vector<fs::path> candidates;
    // The second is where a build tree has it.
    for (const char* place : {".", "..", "../lib", SE_BINDIR_TO_LIBDIR}) {
        candidates.push_back(folder / place / kLibrary);
        candidates.push_back(folder / place / kInstalledLibrary);
    }
    return candidates;
}

bool IsFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

void* Load(const std::string& wanted) {
    if (!wanted.empty()) {
        // Without a slash in it the loader would search its own folders.
        return dlopen(fs::absolute(wanted).c_str(), RTLD_NOW | RTLD_LOCAL);
    }
    for (const fs::path& candidate : LibraryCandidates()) {
        if (IsFile(candidate)) return dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
    }
    return dlopen(kInstalledLibrary, RTLD_NOW | RTLD_LOCAL);
}

fs::path PathOf(void* library) {
    link_map* map = nullptr;
    if (dlinfo(library, RTLD_DI_LINKMAP, &map) != 0) return {};
    std::error_code error;
    const fs::path path = fs::canonical(map->l_name, error);
    return error ? fs::path(map->l_name) : path;
}

}  // namespace

void Module::Unload::operator()(void* library) const {
    dlclose(library);
}

Module::Module(const std::string& path) {
    if (!path.empty() && !IsFile(path)) throw Failure("there is no module {}", path);
    library_.reset(Load(path));
    if (!library_) {
        const char* why = dlerror();
        throw Failure("cannot load the effect module: {}; --module PATH says where it is",
                      why != nullptr ? why : "unknown error");
    }
    path_ = PathOf(library_.get());
    using CreateFunction = ISpecialEffectFactory*();
    auto* create = reinterpret_cast<CreateFunction*>(dlsym(library_.get(), "CreateSpecialEffectFactory"));
    if (create == nullptr) {
        throw Failure("{} is no effect module: it has no CreateSpecialEffectFactory", path_.string());
    }
    factory_.reset(create());
    if (!factory_) throw std::bad_alloc();
    factory_->AddRef();
}

std::vector<EffectGuid> Module::Listing() const {
    uint32_t count = 0;
    if (factory_->EnumerateEffects(nullptr, &count) != kSuccess) return {};
    std::vector<EffectGuid> list(count);
    const ResultCode code = factory_->EnumerateEffects(list.data(), &count);
    if (code != kSuccess) throw Failure("the module does not list its effects: {}", ResultText(code));
    list.resize(count);
    return list;
}

EffectHandle Module::Create(const EffectGuid& guid) const {
    CSpecialEffectFilter* effect = nullptr;
    if (factory_->CreateEffect(guid, 0, &effect) != kSuccess) effect = nullptr;
    return EffectHandle(effect, EffectDeleter(factory_.get()));
}

fs::path Module::DataFile(const std::string& name) const {
    const fs::path module = path_.parent_path();
    const fs::path program = ProgramFolder();
    const std::array<fs::path, 6> folders = {
        module / "share",
        module / "../share/specialeffects",
        module / "../../share/specialeffects",  // lib/<architecture>
        program / "../share",
        program / "../share/specialeffects",
        SE_DATADIR,
    };
    for (const fs::path& folder : folders) {
        std::error_code error;
        fs::path file = fs::canonical(folder / name, error);
        if (!error && IsFile(file)) return file;
    }
    return {};
}

std::string NameOf(CSpecialEffectFilter& effect) {
    CInternalInfo* info = effect.GetInternalInfo();
    Text name{};
    if (info == nullptr || info->GetName(name.data(), kTextSize) == 0) return {};
    return name.data();
}

std::vector<PropertyInfo> PropertiesOf(CSpecialEffectFilter& effect) {
    CInternalInfo* info = effect.GetInternalInfo();
    std::vector<PropertyInfo> properties;
    const int32_t count = info != nullptr ? info->GetPropCount() : 0;
    for (int32_t i = 0; i < count; ++i) {
        Text name{}, defaultText{}, range{};
        const PropTypeSet type = info->GetPropTypeInfo(i, name.data(), kTextSize, defaultText.data(),
                                                       kTextSize, range.data(), kTextSize);
        properties.push_back({type, name.data(), defaultText.data(), range.data()});
    }
    return properties;
}

std::string GetProperty(CSpecialEffectFilter& effect, const std::string& name) {
    std::string nameBuffer = name;
    Text value{};
    PropertyRecord record{0, nameBuffer.data(), value.data()};
    return effect.GetProperty(&record) == kSuccess ? value.data() : std::string();
}

ResultCode SetProperty(CSpecialEffectFilter& effect, const std::string& name, const std::string& value) {
    std::string nameBuffer = name, valueBuffer = value;
    PropertyRecord record{0, nameBuffer.data(), valueBuffer.data()};
    return effect.SetProperty(&record);
}

std::string ResultText(ResultCode code) {
    switch (code) {
        case kSuccess:
            return "success";
        case kInvalidArgument:
            return "invalid argument";
        case kFailure:
            return "failure";
        case kNotImplemented:
            return "not implemented";
        case kOutOfMemory:
            return "out of memory";
        case kTextTruncated:
            return "text truncated";
        default:
            return fmt::format("result {:#010x}", code);
    }
}

}  // namespace host
