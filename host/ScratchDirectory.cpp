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

ScratchDirectory::ScratchDirectory() : m_before(fs::current_path()) {
    std::string name = (fs::temp_directory_path() / "specialeffects-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw Failure("cannot make a directory in {}: {}", fs::temp_directory_path().string(),
                      SystemText(errno));
    }
    m_path = name;
    fs::current_path(m_path);
    for (const char* file : kDataFiles) {
        std::error_code error;
        if (fs::exists(m_before / file, error)) fs::create_symlink(m_before / file, file, error);
    }
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code error;
    fs::current_path(m_before, error);
    fs::remove_all(m_path, error);
}

void ScratchDirectory::LeaveEmptyNoiseFile() const {
    std::error_code error;
    if (!fs::exists(kNoiseFile, error)) std::ofstream file(kNoiseFile);
}

}  // namespace host
