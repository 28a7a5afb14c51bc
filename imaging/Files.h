// Files, as far as effects and the library around them need them: the C library's streams, on regular files.
//
// All that depends on the operating system is in FilesPosix.cpp and FilesWindows.cpp. Paths are UTF-8.
// Nothing here throws.
#ifndef SPECIALEFFECTS_IMAGING_FILES_H
#define SPECIALEFFECTS_IMAGING_FILES_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>

namespace files {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

/// Whether there is anything at the path: a file, a folder, a device.
bool Exists(const char* path);

/// The bytes of a regular file; nothing for anything else.
std::optional<uint64_t> RegularFileSize(const char* path);

/// Opens a regular file, in binary mode. Null for anything else: opening a pipe or a device could block for
/// ever.
File OpenToRead(const char* path);

/// Makes an empty file, or empties the one that is there. Null where that fails.
File OpenToWrite(const char* path);

/// Reads exactly `size` bytes. False where there are fewer, and for no file.
bool Read(const File& file, void* bytes, size_t size);

/// Writes all of `bytes`; `CloseWritten` reports errors.
void Write(const File& file, const void* bytes, size_t size);

/// Closes a file that was written; whether all of it has arrived.
bool CloseWritten(File file);

/// Replaces a file at `to`; false where that fails.
bool Rename(const char* from, const char* to);

/// Removes a file if it is there.
void Remove(const char* path);

}  // namespace files

#endif
