#include "sfx/Files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#if !defined(__wasm__)
#include <dlfcn.h>
#endif

namespace sfx {
namespace {

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

std::string LibraryFolder() {
#if defined(__wasm__)
    return {};
#else
    Dl_info info{};
    static const char inThisLibrary = 0;
    const bool isKnown = dladdr(&inThisLibrary, &info) != 0 && info.dli_fname != nullptr;
    const Text library(isKnown ? realpath(info.dli_fname, nullptr) : nullptr);
    const std::string path = library != nullptr ? library.get() : "";
    return path.substr(0, path.find_last_of('/') + 1);
#endif
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

std::string CacheFolder() {
    return UserFolder("XDG_CACHE_HOME", ".cache");
}

std::string ConfigFolder() {
    return UserFolder("XDG_CONFIG_HOME", ".config");
}

}  // namespace sfx
