#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "tests/fuzz/ByteRun.h"

ScratchDirectory::ScratchDirectory() : before_(std::filesystem::current_path()) {
    std::string name = (std::filesystem::temp_directory_path() / "fuzz.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        std::perror(name.c_str());
        std::exit(2);
    }
    path_ = name;
    std::filesystem::current_path(path_);
}

ScratchDirectory::~ScratchDirectory() {
    std::filesystem::current_path(before_);
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}
