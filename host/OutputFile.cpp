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
namespace {

namespace fs = std::filesystem;

// Where a symbolic link leads, whether or not a file is there.
std::string Resolved(const std::string& path) {
    constexpr int kMostLinks = 40;
    fs::path target = path;
    std::error_code error;
    for (int i = 0; i < kMostLinks && fs::is_symlink(target, error); ++i) {
        const fs::path next = fs::read_symlink(target, error);
        if (error) break;
        target = target.parent_path() / next;  // an absolute `next` replaces it
    }
    return target.string();
}

// Renames, but never over a file. The result is 0 or an errno value.
int RenameToFreeName(const char* from, const char* to) {
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    return std::rename(from, to) == 0 ? 0 : errno;  // this file system does not know how
}

}  // namespace

OutputFile::OutputFile(const std::string& path, bool overwrite)
    : path_(path), target_(Resolved(path)), overwrite_(overwrite) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) throw Failure("cannot write {}: it is a directory", path);
        // A rename would put a file in the place of a device or a pipe, and go past a file's own permissions.
        if (!S_ISREG(status.st_mode)) throw Failure("cannot write {}: it is not a regular file", path);
        if (access(path.c_str(), W_OK) != 0) throw Failure("cannot write {}: {}", path, SystemText(errno));
    }
    CheckOverwriting(path, overwrite);
    // A name that is taken belongs to somebody: to another program, or to one that was killed.
    constexpr int kAttempts = 100;
    const DoomedFileCreation creation;
    for (int i = 1; i <= kAttempts; ++i) {
        partPath_ = i == 1 ? target_ + ".part" : fmt::format("{}.part{}", target_, i);
        descriptor_ = open(partPath_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor_ >= 0 || errno != EEXIST) break;
    }
    if (descriptor_ < 0) throw Failure("cannot write {}: {}", path, SystemText(errno));
    doomed_.emplace(partPath_);
}

OutputFile::~OutputFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (doomed_) unlink(partPath_.c_str());
}

void OutputFile::Write(const void* bytes, size_t size) {
    if (const int error = WriteAll(descriptor_, bytes, size); error != 0) {
        throw Failure("cannot write {}: {}", path_, SystemText(error));
    }
}

void OutputFile::Close() {
    if (descriptor_ < 0) return;
    // Some file systems find out only now that there was no room.
    if (fsync(descriptor_) != 0) throw Failure("cannot write {}: {}", path_, SystemText(errno));
    close(descriptor_);
    descriptor_ = -1;
}

void OutputFile::Commit() {
    Close();
    int error = 0;
    if (!overwrite_) {
        error = RenameToFreeName(partPath_.c_str(), target_.c_str());
    } else if (std::rename(partPath_.c_str(), target_.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) throw Failure("cannot write {}: {}", path_, SystemText(error));
    doomed_.reset();
}

void CheckOverwriting(const std::string& output, bool overwrite) {
    struct stat status {};
    if (!overwrite && stat(output.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        throw UsageError("{} exists; -y overwrites it", output);
    }
}

void CheckNotInput(const std::string& output, const std::string& input) {
    struct stat written {
    }, read{};
    if (stat(output.c_str(), &written) != 0 || stat(input.c_str(), &read) != 0) return;
    if (S_ISREG(written.st_mode) && written.st_dev == read.st_dev && written.st_ino == read.st_ino) {
        throw UsageError("{} is read and would be overwritten; write to another file", output);
    }
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
