// What tests need of the operating system, on each of them.
#ifndef SPECIALEFFECTS_TESTS_SUPPORT_SYSTEM_H
#define SPECIALEFFECTS_TESTS_SUPPORT_SYSTEM_H

#include <cstdlib>
#include <filesystem>
#include <string>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

/// Sets a variable of the environment; a null value removes it.
inline void SetVariable(const char* name, const char* value) {
#if defined(_WIN32)
    _putenv_s(name, value != nullptr ? value : "");
#else
    if (value != nullptr) {
        setenv(name, value, 1);
    } else {
        unsetenv(name);
    }
#endif
}

/// Makes a pipe that nobody writes to: reading it waits forever. On Windows, where pipes are in no folder,
/// makes a folder.
inline bool MakePipe(const std::string& path) {
#if defined(_WIN32)
    return std::filesystem::create_directory(path);
#else
    return mkfifo(path.c_str(), 0600) == 0;
#endif
}

/// The path of the program that runs.
inline std::string ThisProgram() {
#if defined(_WIN32)
    return _pgmptr;
#else
    return std::filesystem::canonical("/proc/self/exe").string();
#endif
}

#if defined(_WIN32)
inline constexpr const char* kCacheVariable = "LOCALAPPDATA";
inline constexpr const char* kConfigVariable = "APPDATA";
/// A folder that cannot be made.
inline constexpr const char* kNoFolder = "C:/a|b/folder";
#else
inline constexpr const char* kCacheVariable = "XDG_CACHE_HOME";
inline constexpr const char* kConfigVariable = "XDG_CONFIG_HOME";
inline constexpr const char* kNoFolder = "/dev/null/folder";
#endif

#endif
