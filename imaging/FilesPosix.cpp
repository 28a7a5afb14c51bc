#include "imaging/Files.h"

#include <sys/stat.h>

namespace files {

bool Exists(const char* path) {
    // Some C libraries take an empty path for the current folder.
    struct stat status {};
    return *path != '\0' && stat(path, &status) == 0;
}

std::optional<uint64_t> RegularFileSize(const char* path) {
    struct stat status {};
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<uint64_t>(status.st_size);
}

File OpenToRead(const char* path) {
    return File(RegularFileSize(path) ? std::fopen(path, "rb") : nullptr);
}

File OpenToWrite(const char* path) {
    return File(std::fopen(path, "wb"));
}

bool Rename(const char* from, const char* to) {
    return std::rename(from, to) == 0;
}

void Remove(const char* path) {
    std::remove(path);
}

}  // namespace files
