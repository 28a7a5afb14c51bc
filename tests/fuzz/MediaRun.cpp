// Videos and pictures with any content, as inputs of the program: its command `apply` in this process.
#include <sys/resource.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>

#include "Commands.h"
#include "Errors.h"
#include "Libav.h"
#include "tests/fuzz/ByteRun.h"

namespace {

// What a run may write, so that a picture of 16384 by 16384 does not take long.
constexpr rlim_t kMostBytes = rlim_t{16} << 20;

// How the input is used. Encoders get small frames: the run tests what is read.
struct Use {
    const char* input;
    const char* output;
    bool scaled;
    bool picture;
};
constexpr Use kUses[] = {
    {"input", "out.y4m", true, false},       {"input", "out.mkv", true, false},
    {"input", "out.png", false, true},       {"input", "out.gif", true, false},
    {"input", "out.y4m", false, false},      {"input", "out.mp4", true, false},
    {"still:input", "out.y4m", true, false},
};

}  // namespace

void RunBytes(std::span<const uint8_t> bytes) {
    static const bool ready = [] {
        host::SetUpLibav();
        std::signal(SIGXFSZ, SIG_IGN);  // as in the program
        const rlimit limit{kMostBytes, kMostBytes};
        return setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }();
    static_cast<void>(ready);
    std::ofstream("input", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    const Use& use = kUses[bytes.size() % std::size(kUses)];
    host::ApplyOptions options;
    options.effects = {"sepia"};
    options.input = use.input;
    options.output = use.output;
    if (use.picture) {
        options.frame = 2;
    } else {
        options.frames = 4;
    }
    options.seed = 1;
    if (use.scaled) options.from.size = {64, 48};
    options.quiet = true;
    try {
        host::Run(options);
    } catch (const host::UsageError&) {
    } catch (const host::Failure&) {
    } catch (const std::bad_alloc&) {
    }
    // Nothing is left but what was asked for.
    std::filesystem::remove("input");
    std::filesystem::remove(use.output);
    if (!std::filesystem::is_empty(".")) {
        std::fprintf(stderr, "media: a file is left\n");
        std::abort();
    }
}
