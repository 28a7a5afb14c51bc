#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include "sfx/Files.h"

#include <windows.h>

#include "imaging/WidePath.h"

namespace sfx {
namespace {

/// "" for a text that is no UTF-16 and for one too long for a path.
std::string Utf8(const wchar_t* text) {
    char utf8[3 * WidePath::kCapacity];
    const int size =
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text, -1, utf8, sizeof utf8, nullptr, nullptr);
    return size > 0 ? utf8 : "";
}

bool IsFolder(const wchar_t* path) {
    const DWORD attributes = GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// Of a variable of the environment that holds a full path; else empty.
std::string FolderIn(const wchar_t* variable) {
    wchar_t value[WidePath::kCapacity];
    const DWORD length = GetEnvironmentVariableW(variable, value, WidePath::kCapacity);
    const bool full = length > 2 && length < WidePath::kCapacity &&
                      ((value[1] == L':' && (value[2] == L'\\' || value[2] == L'/')) ||
                       (value[0] == L'\\' && value[1] == L'\\'));
    const std::string folder = full ? Utf8(value) : "";
    return folder.empty() ? folder : JoinPath(folder, kFolderName);
}

}  // namespace

std::string LibraryFolder() {
    static const char inThisLibrary = 0;
    HMODULE library = nullptr;
    wchar_t path[WidePath::kCapacity];
    if (GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<const wchar_t*>(&inThisLibrary), &library) == 0) {
        return {};
    }
    const DWORD length = GetModuleFileNameW(library, path, WidePath::kCapacity);
    if (length == 0 || length == WidePath::kCapacity) {
        return {};
    }
    const std::string text = Utf8(path);
    return text.substr(0, text.find_last_of(kSeparators) + 1);
}

bool MakeFolder(const std::string& path) {
    for (size_t end = path.find_first_of(kSeparators, 1); end != std::string::npos;
         end = path.find_first_of(kSeparators, end + 1)) {
        CreateDirectoryW(WidePath(path.substr(0, end).c_str()).get(), nullptr);
    }
    const WidePath wide(path.c_str());
    CreateDirectoryW(wide.get(), nullptr);
    return IsFolder(wide.get());
}

std::string AbsolutePath(const std::string& path) {
    if (path.empty()) {
        return path;
    }
    wchar_t full[WidePath::kCapacity];
    const DWORD length = GetFullPathNameW(WidePath(path.c_str()).get(), WidePath::kCapacity, full, nullptr);
    std::string absolute = length > 0 && length < WidePath::kCapacity ? Utf8(full) : "";
    return absolute.empty() ? path : absolute;
}

std::string CacheFolder() {
    return FolderIn(L"LOCALAPPDATA");
}

std::string ConfigFolder() {
    return FolderIn(L"APPDATA");
}

}  // namespace sfx
