// Plays stored inputs and then pseudo-random ones, the same in every build and on every machine.
//
//     storm [--runs N] [--seconds S] [--from N] [FILE | DIRECTORY]...
//
// Stops after N runs or S seconds, whichever comes first. A run that ends the program, or takes longer than a
// minute, leaves its input in storm.input in the directory where the program was started; played by
// name it fails again, and it can be kept in tests/fuzz/inputs.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "tests/fuzz/ByteRun.h"

namespace {

using Bytes = std::vector<uint8_t>;
namespace fs = std::filesystem;

constexpr unsigned kSecondsPerRun = 60;

// The input is written first, so it exists even if the run ends the program.
void Play(const Bytes& bytes, const fs::path& keptInput) {
    std::ofstream(keptInput, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    alarm(kSecondsPerRun);
    RunBytes(bytes);
    alarm(0);
}

Bytes ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "storm: cannot read %s\n", path.c_str());
        std::exit(2);
    }
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

std::vector<fs::path> FilesOf(const fs::path& path) {
    if (!fs::is_directory(path)) return {path};
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// Short inputs and long ones; the generator is one whose sequence the language defines.
Bytes RandomInput(unsigned long run) {
    std::mt19937 generator(static_cast<uint32_t>(run));
    Bytes bytes(16 + generator() % (run % 8 == 0 ? 4000 : 600));
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(generator());
    return bytes;
}

unsigned long Number(const char* option, const char* text) {
    char* end = nullptr;
    const unsigned long number = text ? std::strtoul(text, &end, 10) : 0;
    if (text == nullptr || end == text || *end != 0) {
        std::fprintf(stderr, "storm: %s wants a number\n", option);
        std::exit(2);
    }
    return number;
}

}  // namespace

int main(int argc, char** argv) {
    unsigned long runs = 1000, seconds = 3600, from = 0;
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        unsigned long* const number = argument == "--runs"      ? &runs
                                      : argument == "--seconds" ? &seconds
                                      : argument == "--from"    ? &from
                                                                : nullptr;
        if (number != nullptr) {
            *number = Number(argv[i], argv[i + 1]);
            ++i;
        } else {
            for (const fs::path& file : FilesOf(argument)) inputs.push_back(fs::absolute(file));
        }
    }
    const fs::path keptInput = fs::absolute("storm.input");
    const ScratchDirectory scratch;
    for (const fs::path& input : inputs) Play(ReadFile(input), keptInput);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    unsigned long run = from;
    while (run < from + runs && std::chrono::steady_clock::now() < end) Play(RandomInput(run++), keptInput);
    fs::remove(keptInput);
    std::printf("%zu stored inputs and %lu random ones\n", inputs.size(), run - from);
    return 0;
}
