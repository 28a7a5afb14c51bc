#include "sfx/Files.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#if !defined(_WIN32) && !defined(__wasm__)
#include <dlfcn.h>
#endif

namespace sfx {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFolderName = "specialeffects";

// Paths are UTF-8 here.
fs::path PathOf(const std::string& text) {
    return fs::path(reinterpret_cast<const char8_t*>(text.c_str()));
}
std::string TextOf(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

/// The folder of this library; empty where it cannot be told.
fs::path LibraryFolder() {
#if !defined(_WIN32) && !defined(__wasm__)
    Dl_info info{};
    static const char inThisLibrary = 0;
    if (dladdr(&inThisLibrary, &info) != 0 && info.dli_fname != nullptr) {
        std::error_code error;
        const fs::path library = fs::canonical(info.dli_fname, error);
        return error ? fs::path() : library.parent_path();
    }
#endif
    return {};
}

/// A folder of the user's: that of an environment variable where it is an absolute path, else one in the
/// home.
std::string UserFolder(const char* variable, const char* inHome) {
    const char* const stated = std::getenv(variable);
    if (stated != nullptr && fs::path(stated).is_absolute()) {
        return TextOf(fs::path(stated) / kFolderName);
    }
    const char* const home = std::getenv("HOME");
    if (home != nullptr && fs::path(home).is_absolute()) {
        return TextOf(fs::path(home) / inHome / kFolderName);
    }
    return {};
}

}  // namespace

bool IsRegularFile(const std::string& path) {
    std::error_code error;
    return !path.empty() && fs::is_regular_file(PathOf(path), error);
}

std::optional<std::string> ReadTextFile(const std::string& path) {
    constexpr uintmax_t kLargest = 1 << 24;
    std::error_code error;
    if (!IsRegularFile(path) || fs::file_size(PathOf(path), error) > kLargest || error) {
        return std::nullopt;
    }
    std::ifstream file(PathOf(path), std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::string text(std::istreambuf_iterator<char>(file), {});
    return file.bad() ? std::nullopt : std::optional(std::move(text));
}

bool MakeFolder(const std::string& path) {
    std::error_code error;
    fs::create_directories(PathOf(path), error);
    return fs::is_directory(PathOf(path), error);
}

bool RenameFile(const std::string& from, const std::string& to) {
    std::error_code error;
    fs::rename(PathOf(from), PathOf(to), error);
    return !error;
}

void RemoveFile(const std::string& path) {
    std::error_code error;
    fs::remove(PathOf(path), error);
}

std::string AbsolutePath(const std::string& path) {
    std::error_code error;
    const fs::path absolute = path.empty() ? fs::path() : fs::absolute(PathOf(path), error);
    return error ? path : TextOf(absolute);
}

std::string JoinPath(const std::string& folder, const std::string& name) {
    return TextOf(PathOf(folder) / PathOf(name));
}

const std::vector<std::string>& InstalledFolders() {
    static const std::vector<std::string> folders = [] {
        std::vector<std::string> found;
        const fs::path library = LibraryFolder();
        if (!library.empty()) {
            // Of a build tree; of an installed copy, also where libraries lie in a folder of the
            // architecture.
            found.push_back(TextOf(library / "share" / kFolderName));
            found.push_back(TextOf(library / ".." / "share" / kFolderName));
            found.push_back(TextOf(library / ".." / ".." / "share" / kFolderName));
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
