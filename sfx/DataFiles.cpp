#include "sfx/DataFiles.h"

#include <random>
#include <utility>

#include "framework/Mutex.h"
#include "imaging/Files.h"
#include "sfx/Files.h"

namespace sfx {
namespace {

/// A name that no other process gives to a file at the same time.
std::string TemporaryName(const std::string& name) {
    std::random_device random;
    return name + "." + std::to_string(random()) + std::to_string(random()) + ".new";
}

/// Removes a file at the end of a scope, where there is one.
struct TemporaryFile {
    explicit TemporaryFile(std::string name) : path(std::move(name)) {}
    ~TemporaryFile() { files::Remove(path.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::string path;
};

bool MakeIn(const std::string& folder, const std::string& name,
            const std::function<void(const std::string& path)>& make) {
    if (folder.empty() || !MakeFolder(folder)) {
        return false;
    }
    const TemporaryFile temporary{JoinPath(folder, TemporaryName(name))};
    make(temporary.path);
    return files::RegularFileSize(temporary.path.c_str()).has_value() &&
           files::Rename(temporary.path.c_str(), JoinPath(folder, name).c_str());
}

}  // namespace

std::vector<std::string> DataFolders(const std::string& callersFolder) {
    std::vector<std::string> folders;
    if (!callersFolder.empty()) {
        folders.push_back(callersFolder);
    }
    folders.insert(folders.end(), InstalledFolders().begin(), InstalledFolders().end());
    if (std::string cache = CacheFolder(); !cache.empty()) {
        folders.push_back(std::move(cache));
    }
    return folders;
}

std::string FindDataFile(const std::string& name, const std::string& callersFolder) {
    for (const std::string& folder : DataFolders(callersFolder)) {
        std::string path = JoinPath(folder, name);
        if (files::RegularFileSize(path.c_str())) {
            return path;
        }
    }
    return {};
}

std::string FindOrMakeDataFile(const std::string& name, const std::string& callersFolder,
                               const std::function<void(const std::string& path)>& make) {
    // One thread makes it, the others find it.
    static Mutex making;
    const std::lock_guard lock(making);
    std::string path = FindDataFile(name, callersFolder);
    if (path.empty() && (MakeIn(callersFolder, name, make) || MakeIn(CacheFolder(), name, make))) {
        path = FindDataFile(name, callersFolder);
    }
    return path;
}

}  // namespace sfx
