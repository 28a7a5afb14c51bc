#include "ScratchDirectory.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>

#include "Errors.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNoiseFile = "perlin.dat";
constexpr const char* kDataFiles[] = {"haar.txt", "logo3.bmp", kNoiseFile};

}  // namespace

ScratchDirectory::ScratchDirectory() : before_(fs::current_path()) {
    std::string name = (fs::temp_directory_path() / "specialeffects-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw Failure("cannot make a directory in {}: {}", fs::temp_directory_path().string(),
                      SystemText(errno));
    }
    path_ = name;
    fs::current_path(path_);
    for (const char* file : kDataFiles) {
        std::error_code error;
        if (fs::exists(before_ / file, error)) fs::create_symlink(before_ / file, file, error);
    }
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code error;
    fs::current_path(before_, error);
    fs::remove_all(path_, error);
}

void ScratchDirectory::LeaveEmptyNoiseFile() const {
    std::error_code error;
    if (!fs::exists(kNoiseFile, error)) std::ofstream file(kNoiseFile);
}

}  // namespace host
