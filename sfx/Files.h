// Folders and the environment, as far as the library needs them; imaging/Files.h has files. What depends on
// the operating system is in FilesPosix.cpp and FilesWindows.cpp. Paths are UTF-8. Nothing here throws but
// std::bad_alloc.
#ifndef SPECIALEFFECTS_SFX_FILES_H
#define SPECIALEFFECTS_SFX_FILES_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sfx {

/// Of the library's own folders.
inline constexpr const char* kFolderName = "specialeffects";

#if defined(_WIN32)
inline constexpr std::string_view kSeparators = "/\\";
#else
inline constexpr std::string_view kSeparators = "/";
#endif

/// The whole of a regular file of at most 16 MB; nothing where it cannot be read.
std::optional<std::string> ReadTextFile(const std::string& path);

/// Makes a folder and those above it; false where that fails.
bool MakeFolder(const std::string& path);

/// A path that keeps its meaning when the current directory changes; an empty path stays empty.
std::string AbsolutePath(const std::string& path);

std::string JoinPath(const std::string& folder, const std::string& name);

/// The folder of this library; empty where it is unknown.
std::string LibraryFolder();

/// Where data files can have been installed, beginning with the places next to this library.
const std::vector<std::string>& InstalledFolders();
/// The user's; empty without a home. By the XDG base directories; on Windows in LOCALAPPDATA and APPDATA.
std::string CacheFolder();
std::string ConfigFolder();

}  // namespace sfx

#endif
