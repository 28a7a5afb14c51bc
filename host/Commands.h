// What the program can do, and what each command is told.
#ifndef SPECIALEFFECTS_HOST_COMMANDS_H
#define SPECIALEFFECTS_HOST_COMMANDS_H

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "VideoInput.h"

namespace host {

struct ListOptions {
    std::string module;
    bool all = false;
    bool json = false;
};

struct InfoOptions {
    std::string module;
    std::string effect;
    bool json = false;
};

struct ApplyOptions {
    std::string module;
    std::vector<std::string> effects;
    std::string input;
    std::string output;
    std::optional<int64_t> frames;
    std::optional<int64_t> frame;
    std::optional<Size> size;
    std::optional<unsigned> seed;
    std::optional<std::string> settings;
    bool packed = false;
    bool quiet = false;
};

struct BenchOptions {
    std::string module;
    std::vector<std::string> effects;
    Size size{1280, 720};
    bool json = false;
};

using Command = std::variant<ListOptions, InfoOptions, ApplyOptions, BenchOptions>;

/// Throw UsageError and Failure.
void Run(const ListOptions& options);
void Run(const InfoOptions& options);
void Run(const ApplyOptions& options);
void Run(const BenchOptions& options);

}  // namespace host

#endif
