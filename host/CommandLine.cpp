#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <limits>

#include "Errors.h"

namespace host {
namespace {

constexpr int64_t kMostFrames = 1'000'000'000;

constexpr const char* kFooter = R"(
  specialeffects list --all                        every effect
  specialeffects info rain                         its properties
  specialeffects apply -e rain test: rain.mp4      a built-in scene through an effect
  specialeffects apply --help                      all inputs and outputs
  specialeffects bench rain                        what it costs)";

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

// Accepts whole numbers in a range.
CLI::Validator WholeNumber(int64_t least, int64_t most) {
    const auto check = [least, most](const std::string& text) -> std::string {
        int64_t value = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, value);
        if (stop == end && error == std::errc() && value >= least && value <= most) return {};
        return fmt::format("a whole number from {} to {} is wanted, not \"{}\"", least, most, text);
    };
    return CLI::Validator(check, "");
}

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
    command.add_option("EFFECT", options.effect, "Short name, display name or GUID")
        ->required()
        ->type_name("");
    command.add_flag("--json", options.json, "Write JSON");
    AddModule(command, options);
}

void AddApply(CLI::App& app, ApplyOptions& options, Texts& texts) {
    CLI::App& command = *app.add_subcommand("apply", "Run video or a picture through effects");
    command
        .add_option("-e,--effect", options.effects,
                    "Effect, with properties to set; several work one after the other")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false)  // what follows is INPUT and OUTPUT
        ->type_name("EFFECT[:NAME=VALUE,...]");
    command.add_option("INPUT", options.input, "Where frames come from")->required()->type_name("");
    command.add_option("OUTPUT", options.output, "Where they go")->required()->type_name("");
    command.add_option("--frames", options.frames, "Stop after N frames")
        ->type_name("N")
        ->check(WholeNumber(1, kMostFrames));
    command.add_option("--frame", options.frame, "Write frame N as a picture; the first is 1")
        ->type_name("N")
        ->check(WholeNumber(1, kMostFrames));
    command.add_option("--size", texts.size, "Scale frames to this size")->type_name("WxH");
    command.add_option("--seed", options.seed, "Seed the random numbers, so that runs repeat")
        ->type_name("N")
        ->check(WholeNumber(0, std::numeric_limits<unsigned>::max()));
    command.add_option("--settings", options.settings, "Settings file for the effects that take one")
        ->type_name("FILE");
    command.add_flag("--packed", options.packed, "Hand packed 24-bit frames to the effects");
    command.add_flag("--quiet", options.quiet, "No progress, no notes");
    AddModule(command, options);
    command.footer(kApplyFooter);
}

void AddBench(CLI::App& app, BenchOptions& options, Texts& texts) {
    CLI::App& command = *app.add_subcommand("bench", "Measure effects");
    command.add_option("EFFECT", options.effects, "Effects, as in apply; without any, all of them")
        ->type_name("");
    command.add_option("--size", texts.size, "Frame size, 1280x720 if not given")->type_name("WxH");
    command.add_flag("--json", options.json, "Write JSON");
    AddModule(command, options);
}

UsageError NoEffect() {
    return UsageError(
        "no effect is named; it goes behind -e, as in \"specialeffects apply -e sepia INPUT OUTPUT\", and "
        "\"specialeffects list\" shows them");
}

// Says in one line what is wrong with the command line.
[[noreturn]] void Explain(const CLI::App& app, const CLI::ParseError& error) {
    if (app.get_subcommands().empty()) {
        const auto words = app.remaining();
        const std::string wrong =
            words.empty() ? "a command is missing" : fmt::format("there is no command \"{}\"", words.front());
        throw UsageError(
            "{}; there are list, info, apply and bench, and \"specialeffects --help\" tells more", wrong);
    }
    const CLI::App& command = *app.get_subcommands().front();
    // Without -e the effect's name is easily given as INPUT, and then there is one word too many.
    if (command.get_name() == "apply" && command.count("-e") == 0 && command.remaining_size() > 0)
        throw NoEffect();
    throw UsageError("{}; \"specialeffects {} --help\" tells more", error.what(), command.get_name());
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
    app.footer(kFooter);  // now, or the commands would inherit it
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        app.exit(help);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        Explain(app, error);
    }
    if (app.got_subcommand("apply") && apply.effects.empty()) throw NoEffect();
    if (!texts.size.empty()) apply.size = bench.size = ParseSize(texts.size);

    if (app.got_subcommand("list")) return list;
    if (app.got_subcommand("info")) return info;
    if (app.got_subcommand("apply")) return apply;
    return bench;
}

}  // namespace host
