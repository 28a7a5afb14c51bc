#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include "imaging/Files.h"

#include <windows.h>

#include "imaging/WidePath.h"

namespace files {
namespace {

/// Attributes and size; false where there is nothing, and for a device.
bool Describe(const wchar_t* path, WIN32_FILE_ATTRIBUTE_DATA& description) {
    // A device's name, also one like "NUL" or "COM1", has a full name of its own kind.
    wchar_t full[WidePath::kCapacity];
    const DWORD length = GetFullPathNameW(path, WidePath::kCapacity, full, nullptr);
    if (length == 0 || length >= WidePath::kCapacity) return false;
    const bool device = full[0] == L'\\' && full[1] == L'\\' && full[2] == L'.';
    return !device && GetFileAttributesExW(path, GetFileExInfoStandard, &description) != 0;
}

}  // namespace

bool Exists(const char* path) {
    return GetFileAttributesW(WidePath(path).get()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<uint64_t> RegularFileSize(const char* path) {
    WIN32_FILE_ATTRIBUTE_DATA description;
    if (!Describe(WidePath(path).get(), description) ||
        (description.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) != 0) {
        return std::nullopt;
    }
    return uint64_t{description.nFileSizeHigh} << 32 | description.nFileSizeLow;
}

File OpenToRead(const char* path) {
    return File(RegularFileSize(path) ? _wfopen(WidePath(path).get(), L"rb") : nullptr);
}

File OpenToWrite(const char* path) {
    return File(_wfopen(WidePath(path).get(), L"wb"));
}

bool Rename(const char* from, const char* to) {
    return MoveFileExW(WidePath(from).get(), WidePath(to).get(), MOVEFILE_REPLACE_EXISTING) != 0;
}

void Remove(const char* path) {
    DeleteFileW(WidePath(path).get());
}

}  // namespace files
