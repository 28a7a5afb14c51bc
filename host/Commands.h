// The program's commands, and the options of each.
#ifndef SPECIALEFFECTS_HOST_COMMANDS_H
#define SPECIALEFFECTS_HOST_COMMANDS_H

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "VideoInput.h"
#include "VideoOutput.h"

namespace host {

struct ListOptions {
    bool all = false;
    bool presets = false;
    bool json = false;
    bool quiet = false;
};

struct InfoOptions {
    std::string effect;
    bool json = false;
    bool quiet = false;
};

struct ApplyOptions {
    std::vector<std::string> effects;
    std::string input;
    std::string output;
    std::optional<int64_t> frames;
    std::optional<int64_t> frame;
    std::optional<double> duration;  ///< seconds
    std::optional<unsigned> seed;
    std::optional<std::string> settings;
    std::optional<std::string> data;
    InputOptions from;
    OutputOptions to;
    bool quiet = false;
};

struct CamerasOptions {
    bool json = false;
    bool quiet = false;
};

struct BenchOptions {
    std::vector<std::string> effects;
    Size size{1280, 720};
    bool json = false;
    bool quiet = false;
};

struct HelpOptions {
    std::string text;  ///< to be printed
};

using Command =
    std::variant<HelpOptions, ListOptions, InfoOptions, ApplyOptions, BenchOptions, CamerasOptions>;

/// Throw UsageError and Failure.
void Run(const HelpOptions& options);
void Run(const ListOptions& options);
void Run(const InfoOptions& options);
void Run(const ApplyOptions& options);
void Run(const BenchOptions& options);
void Run(const CamerasOptions& options);

}  // namespace host

#endif
