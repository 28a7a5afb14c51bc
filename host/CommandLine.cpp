#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <charconv>

#include "Errors.h"

namespace host {
namespace {

constexpr int kLargestSide = 16384;

constexpr const char* kApplyFooter = R"(
EFFECT is a short name (sepia), a display name ("Gray Scale") or a GUID; "specialeffects list --all" shows them.
INPUT  a video or picture file, a camera (/dev/video0), "-" for standard input, "test:" for a built-in
       moving scene, "still:FILE" for a picture as a hand-held camera sees it
OUTPUT .mp4, .mkv, .webm or .y4m for video, .png or .jpg for a picture, "-" for a Y4M stream on standard
       output, /dev/videoN for a V4L2 loopback device

  specialeffects apply -e sepia holiday.mp4 old-holiday.mp4
  specialeffects apply -e "liquefy-2:Intensity=20,ChangeSpeed=3" -e gray-scale photo.jpg wobbly.png
  specialeffects apply -e motion-detector:BlurColor=255,0,0 /dev/video0 - | mpv -)";

// The options that are read as text before they are looked at.
struct Texts {
    std::string size;
};

template <class T>
void AddModule(CLI::App& command, T& options) {
    command
        .add_option("--module", options.module, "The effect module, instead of the one beside this program")
        ->type_name("PATH");
}

void AddList(CLI::App& app, ListOptions& options) {
    CLI::App& command = *app.add_subcommand("list", "Show the effects that the module lists");
    command.add_flag("--all", options.all, "Show all effects that can be created");
    command.add_flag("--json", options.json, "Write JSON");
    AddModule(command, options);
}

void AddInfo(CLI::App& app, InfoOptions& options) {
    CLI::App& command = *app.add_subcommand("info", "Show an effect's properties");
    command.add_option("EFFECT", options.effect, "Short name, display name or GUID")->required();
    command.add_flag("--json", options.json, "Write JSON");
    AddModule(command, options);
}

void AddApply(CLI::App& app, ApplyOptions& options, Texts& texts) {
    CLI::App& command = *app.add_subcommand("apply", "Run video or a picture through effects");
    command
        .add_option("-e,--effect", options.effects,
                    "Effect, with properties to set; several work one after the other")
        ->required()
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false)  // what follows is INPUT and OUTPUT
        ->type_name("EFFECT[:NAME=VALUE,...]");
    command.add_option("INPUT", options.input, "Where frames come from")->required();
    command.add_option("OUTPUT", options.output, "Where they go")->required();
    command.add_option("--frames", options.frames, "Stop after N frames")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    command.add_option("--frame", options.frame, "Write frame N as a picture; the first is 1")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    command.add_option("--size", texts.size, "Scale frames to this size")->type_name("WxH");
    command.add_option("--seed", options.seed, "Seed the random numbers, so that runs repeat")
        ->type_name("N");
    command.add_option("--settings", options.settings, "Settings file for the effects that take one")
        ->type_name("FILE");
    command.add_flag("--packed", options.packed, "Hand packed 24-bit frames to the effects");
    command.add_flag("--quiet", options.quiet, "No progress, no notes");
    AddModule(command, options);
    command.footer(kApplyFooter);
}

void AddBench(CLI::App& app, BenchOptions& options, Texts& texts) {
    CLI::App& command = *app.add_subcommand("bench", "Measure effects");
    command.add_option("EFFECT", options.effects, "Effects, as in apply; without any, all of them");
    command.add_option("--size", texts.size, "Frame size, 1280x720 if not given")->type_name("WxH");
    AddModule(command, options);
}

}  // namespace

Size ParseSize(std::string_view text) {
    Size size{};
    const char* end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    const bool hasHeight = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
    const auto height = hasHeight ? std::from_chars(width.ptr + 1, end, size.height) : width;
    if (!hasHeight || height.ec != std::errc() || height.ptr != end) {
        throw UsageError("\"{}\" is no size; it is written as 640x480", text);
    }
    if (size.width < 2 || size.height < 2 || size.width > kLargestSide || size.height > kLargestSide) {
        throw UsageError("the size {} is out of range; sides go from 2 to {}", text, kLargestSide);
    }
    return size;
}

std::optional<Command> ParseCommandLine(int argc, const char* const* argv) {
    ListOptions list;
    InfoOptions info;
    ApplyOptions apply;
    BenchOptions bench;
    Texts texts;

    CLI::App app("Runs video through the special effects module.", "specialeffects");
    app.set_version_flag("--version", SE_VERSION);
    app.require_subcommand(1);
    AddList(app, list);
    AddInfo(app, info);
    AddApply(app, apply, texts);
    AddBench(app, bench, texts);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        app.exit(help);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        const auto commands = app.get_subcommands();
        const std::string command = commands.empty() ? "" : " " + commands.front()->get_name();
        throw UsageError("{}; \"specialeffects{} --help\" tells more", error.what(), command);
    }
    if (!texts.size.empty()) apply.size = bench.size = ParseSize(texts.size);

    if (app.got_subcommand("list")) return list;
    if (app.got_subcommand("info")) return info;
    if (app.got_subcommand("apply")) return apply;
    return bench;
}

}  // namespace host
