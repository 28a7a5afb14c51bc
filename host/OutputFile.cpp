#include "OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "Errors.h"

namespace host {

OutputFile::OutputFile(const std::string& path) : path_(path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) throw Failure("cannot write {}: it is a directory", path);
        // A rename would put a file in the place of a device or a pipe, and go past a file's own permissions.
        if (!S_ISREG(status.st_mode)) throw Failure("cannot write {}: it is not a regular file", path);
        if (access(path.c_str(), W_OK) != 0) throw Failure("cannot write {}: {}", path, SystemText(errno));
    }
    // A name that is taken belongs to somebody: to another program, or to one that was killed.
    constexpr int kAttempts = 100;
    for (int i = 1; i <= kAttempts; ++i) {
        partPath_ = i == 1 ? path + ".part" : fmt::format("{}.part{}", path, i);
        descriptor_ = open(partPath_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor_ >= 0 || errno != EEXIST) break;
    }
    if (descriptor_ < 0) throw Failure("cannot write {}: {}", path, SystemText(errno));
}

OutputFile::~OutputFile() {
    if (descriptor_ < 0) return;
    close(descriptor_);
    unlink(partPath_.c_str());
}

void OutputFile::Write(const void* bytes, size_t size) {
    if (const int error = WriteAll(descriptor_, bytes, size); error != 0) {
        throw Failure("cannot write {}: {}", path_, SystemText(error));
    }
}

void OutputFile::Commit() {
    // Some file systems find out only now that there was no room.
    if (fsync(descriptor_) != 0) throw Failure("cannot write {}: {}", path_, SystemText(errno));
    if (std::rename(partPath_.c_str(), path_.c_str()) != 0) {
        throw Failure("cannot write {}: {}", path_, SystemText(errno));
    }
    close(descriptor_);
    descriptor_ = -1;
}

std::string ExtensionOf(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

int WriteAll(int descriptor, const void* bytes, size_t size) {
    const auto* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t written = write(descriptor, next, size);
        if (written < 0 && errno != EINTR) return errno;
        if (written <= 0) continue;
        next += written;
        size -= static_cast<size_t>(written);
    }
    return 0;
}

}  // namespace host
