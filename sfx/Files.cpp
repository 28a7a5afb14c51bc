#include "sfx/Files.h"

#include <string_view>

#include "imaging/Files.h"

namespace sfx {

std::optional<std::string> ReadTextFile(const std::string& path) {
    constexpr uint64_t kLargest = 1 << 24;
    const std::optional<uint64_t> size = files::RegularFileSize(path.c_str());
    const files::File file = files::OpenToRead(path.c_str());
    if (!size || *size > kLargest || file == nullptr) {
        return std::nullopt;
    }
    std::string text(static_cast<size_t>(*size), '\0');
    return files::Read(file, text.data(), text.size()) ? std::optional(std::move(text)) : std::nullopt;
}

std::string JoinPath(const std::string& folder, const std::string& name) {
    const bool joined = folder.empty() || kSeparators.find(folder.back()) != std::string_view::npos;
    return joined ? folder + name : folder + "/" + name;
}

const std::vector<std::string>& InstalledFolders() {
    static const std::vector<std::string> folders = [] {
        std::vector<std::string> found;
        const std::string library = LibraryFolder();
        if (!library.empty()) {
            // Of a build tree; of an installed copy, also where libraries lie in a folder of the
            // architecture.
            for (const char* const beside : {"share", "../share", "../../share"}) {
                found.push_back(JoinPath(JoinPath(library, beside), kFolderName));
            }
        }
        found.emplace_back(SFX_DATA_FOLDER);
        return found;
    }();
    return folders;
}

}  // namespace sfx
