// Under libFuzzer: the whole contract, libsfx, or files with any content.
//
//     build/fuzz/tests/fuzz/fuzz_contract [options] [corpus directories]
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/fuzz/ByteRun.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// The process moves to a scratch directory, so the paths of the command line are made absolute first.
// libFuzzer does not allow that for the program's own, by which it starts others: the program restarts itself
// by its absolute path.
int LLVMFuzzerInitialize(int* argc, char*** argv) {
    if (!(*argv)[0] || (*argv)[0][0] != '/') {
        std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
        (*argv)[0] = program.data();
        execv(program.c_str(), *argv);
        std::perror(program.c_str());
        std::exit(2);
    }
    static std::vector<std::string> arguments;
    static std::vector<char*> pointers;
    bool prefixGiven = false;
    for (int i = 0; i < *argc; ++i) {
        std::string argument = (*argv)[i];
        prefixGiven = prefixGiven || argument.starts_with("-artifact_prefix=");
        if (!argument.starts_with("-")) argument = std::filesystem::absolute(argument).string();
        arguments.push_back(argument);
    }
    if (!prefixGiven) {
        arguments.push_back("-artifact_prefix=" + std::filesystem::current_path().string() + "/");
    }
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    *argc = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    *argv = pointers.data();
    static ScratchDirectory scratch;
    return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RunBytes({data, size});
    return 0;
}
