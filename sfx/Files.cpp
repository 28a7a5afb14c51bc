#include "sfx/Files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "imaging/Files.h"

#if !defined(__wasm__)
#include <dlfcn.h>
#endif

namespace sfx {
namespace {

constexpr const char* kFolderName = "specialeffects";

struct Free {
    void operator()(char* text) const { std::free(text); }
};
using Text = std::unique_ptr<char, Free>;

bool IsAbsolute(const std::string& path) {
    return path.starts_with('/');
}

bool IsFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The folder of this library; empty where it cannot be told.
std::string LibraryFolder() {
#if !defined(__wasm__)
    Dl_info info{};
    static const char inThisLibrary = 0;
    if (dladdr(&inThisLibrary, &info) != 0 && info.dli_fname != nullptr) {
        const Text library(realpath(info.dli_fname, nullptr));
        const std::string path = library != nullptr ? library.get() : "";
        return path.substr(0, path.find_last_of('/') + 1);
    }
#endif
    return {};
}

/// A folder of the user's: that of an environment variable where it is an absolute path, else one in the
/// home.
std::string UserFolder(const char* variable, const char* inHome) {
    const char* const stated = std::getenv(variable);
    if (stated != nullptr && IsAbsolute(stated)) {
        return JoinPath(stated, kFolderName);
    }
    const char* const home = std::getenv("HOME");
    if (home != nullptr && IsAbsolute(home)) {
        return JoinPath(JoinPath(home, inHome), kFolderName);
    }
    return {};
}

}  // namespace

std::optional<std::string> ReadTextFile(const std::string& path) {
    constexpr uint64_t kLargest = 1 << 24;
    const std::optional<uint64_t> size = files::RegularFileSize(path.c_str());
    const files::File file = files::OpenToRead(path.c_str());
    if (!size || *size > kLargest || file == nullptr) {
        return std::nullopt;
    }
    std::string text(static_cast<size_t>(*size), '\0');
    return files::Read(file, text.data(), text.size()) ? std::optional(std::move(text)) : std::nullopt;
}

bool MakeFolder(const std::string& path) {
    for (size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        mkdir(path.substr(0, end).c_str(), 0777);
    }
    mkdir(path.c_str(), 0777);
    return IsFolder(path);
}

std::string AbsolutePath(const std::string& path) {
    if (path.empty() || IsAbsolute(path)) {
        return path;
    }
    const Text current(getcwd(nullptr, 0));
    return current != nullptr ? JoinPath(current.get(), path) : path;
}

std::string JoinPath(const std::string& folder, const std::string& name) {
    return folder.empty() || folder.ends_with('/') ? folder + name : folder + "/" + name;
}

const std::vector<std::string>& InstalledFolders() {
    static const std::vector<std::string> folders = [] {
        std::vector<std::string> found;
        const std::string library = LibraryFolder();
        if (!library.empty()) {
            // Of a build tree; of an installed copy, also where libraries lie in a folder of the
            // architecture.
            for (const char* const beside : {"share", "../share", "../../share"}) {
                found.push_back(JoinPath(JoinPath(library, beside), kFolderName));
            }
        }
        found.emplace_back(SFX_DATA_FOLDER);
        return found;
    }();
    return folders;
}

std::string CacheFolder() {
    return UserFolder("XDG_CACHE_HOME", ".cache");
}

std::string ConfigFolder() {
    return UserFolder("XDG_CONFIG_HOME", ".config");
}

}  // namespace sfx
