#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <limits>
#include <sstream>

#include "Errors.h"
#include "Manual.h"

extern "C" {
#include <libavutil/parseutils.h>
}

namespace host {
namespace {

constexpr int64_t kMostFrames = 1'000'000'000;
constexpr int kWorstQuality = 63;

constexpr const char* kFooter = R"(
  specialeffects list                              every effect
  specialeffects info rain                         its properties
  specialeffects apply -e rain test: rain.mp4      a built-in scene through an effect
  specialeffects help apply                        all inputs and outputs
  specialeffects cameras                           the cameras there are
  specialeffects bench rain                        what it costs)";

constexpr const char* kApplyFooter = R"(
EFFECT is an id (sepia), a title ("Gray Scale"), a GUID or a preset (preset:NAME); "specialeffects list" shows
       them. Several with "+" between them, or several -e, work one after the other.
INPUT  a video or picture file, a URL, a sequence of pictures (shot%03d.png), a camera (/dev/video0), "-" for
       standard input, "test:" for a built-in moving scene, "still:FILE" for a picture as a hand-held camera
       sees it
OUTPUT .mp4, .mov, .mkv, .webm, .avi, .ts or .y4m for video, .gif, .apng or .webp for an animation, .png or .jpg
       for a picture, shot%03d.png for a sequence, "-" for a Y4M stream on standard output, /dev/videoN for a
       V4L2 loopback device

  specialeffects apply -e sepia holiday.mp4 old-holiday.mp4
  specialeffects apply -e liquefy-2:intensity=20,change-speed=3 -e gray-scale photo.jpg wobbly.png
  specialeffects apply -e "motion-detector:blur-color=#ff0000" /dev/video0 - | mpv -)";

// The options that are read as text before they are looked at.
struct Texts {
    std::string size;
    std::string rate;
    std::string start;
    std::string duration;
    std::string sound;
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

void AddCommon(CLI::App& command, bool& quiet) {
    command.add_flag("-q,--quiet", quiet, "No progress, no notes, no summary");
    command.set_version_flag("-V,--version", SE_VERSION, "Show the version");
}

void AddList(CLI::App& app, ListOptions& options) {
    CLI::App& command = *app.add_subcommand("list", "Show the effects, by kind, and the presets");
    command.add_flag("--all", options.all, "Also show entries that only hosts of the module see");
    command.add_flag("--presets", options.presets, "Show the presets alone");
    command.add_flag("--json", options.json, "Write JSON");
    AddCommon(command, options.quiet);
}

void AddInfo(CLI::App& app, InfoOptions& options) {
    CLI::App& command = *app.add_subcommand("info", "Show an effect with its properties");
    command.add_option("EFFECT", options.effect, "Id, title or GUID of an effect, or preset:NAME")
        ->required()
        ->type_name("");
    command.add_flag("--json", options.json, "Write JSON");
    AddCommon(command, options.quiet);
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
    command.add_flag("-y,--yes", options.to.overwrite, "Overwrite the output if it exists");
    command.add_option("--start", texts.start, "Begin at this time of the input: 90, 1:30, 0:01:30.5")
        ->type_name("TIME");
    command.add_option("--duration", texts.duration, "Stop after this time")->type_name("TIME");
    command.add_option("--frames", options.frames, "Stop after N frames")
        ->type_name("N")
        ->check(WholeNumber(1, kMostFrames));
    command.add_option("--frame", options.frame, "Write frame N as a picture; the first is 1")
        ->type_name("N")
        ->check(WholeNumber(1, kMostFrames));
    command.add_option("--size", texts.size, "Scale frames to this size")->type_name("WxH");
    command.add_option("--fps", texts.rate, "Frames a second: 30, 29.97, 30000/1001")->type_name("N");
    command
        .add_option("--codec", options.to.codec,
                    "Video codec: h264, hevc, vp8, vp9, av1, mpeg4, or an encoder of FFmpeg's")
        ->type_name("NAME");
    command.add_option("--crf", options.to.crf, "Quality of the video; smaller is better")
        ->type_name("N")
        ->check(WholeNumber(0, kWorstQuality));
    command.add_option("--preset", options.to.preset, "Speed of the encoder: ultrafast to veryslow")
        ->type_name("NAME");
    command.add_option("--audio", texts.sound, "Sound: copied if possible, else encoded, if not given")
        ->type_name("copy|aac|opus|none");
    command
        .add_option("--camera-format", options.from.cameraFormat,
                    "Pixel format to ask the camera for; \"specialeffects cameras\" lists them")
        ->type_name("NAME");
    command.add_option("--seed", options.seed, "Seed the random numbers, so that runs repeat")
        ->type_name("N")
        ->check(WholeNumber(0, std::numeric_limits<unsigned>::max()));
    command.add_option("--data", options.data, "Folder in which data files are looked for first")
        ->type_name("FOLDER");
    command.add_option("--settings", options.settings, "Settings file for the effects that take one")
        ->type_name("FILE");
    AddCommon(command, options.quiet);
    command.footer(kApplyFooter);
}

void AddCameras(CLI::App& app, CamerasOptions& options) {
    CLI::App& command = *app.add_subcommand("cameras", "Show the cameras, with their formats");
    command.add_flag("--json", options.json, "Write JSON");
    AddCommon(command, options.quiet);
}

void AddBench(CLI::App& app, BenchOptions& options, Texts& texts) {
    CLI::App& command = *app.add_subcommand("bench", "Measure effects");
    command.add_option("EFFECT", options.effects, "Effects, as in apply; without any, all of them")
        ->type_name("");
    command.add_option("--size", texts.size, "Frame size, 1280x720 if not given")->type_name("WxH");
    command.add_flag("--json", options.json, "Write JSON");
    AddCommon(command, options.quiet);
}

struct HelpRequest {
    std::string command;
    bool manual = false;
    bool completion = false;
};

void AddHelp(CLI::App& app, HelpRequest& request) {
    CLI::App& command = *app.add_subcommand("help", "Show how a command is used");
    command.add_option("COMMAND", request.command, "The command")->type_name("");
    command.add_flag("--man", request.manual, "Write the man page");
    command.add_flag("--bash-completion", request.completion, "Write the completion script of bash");
}

OptionHelp Describe(const CLI::Option& option) {
    OptionHelp help;
    for (const std::string& name : option.get_snames()) help.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) help.names.push_back("--" + name);
    const bool isFlag = option.get_expected_max() == 0;
    help.value = help.names.empty() ? option.get_name(true) : isFlag ? "" : option.get_type_name();
    help.description = option.get_description();
    return help;
}

std::vector<CommandHelp> Describe(const CLI::App& app) {
    std::vector<CommandHelp> commands;
    for (const CLI::App* command : app.get_subcommands({})) {
        CommandHelp help{command->get_name(), command->get_description(), {}, command->get_footer()};
        for (const CLI::Option* option : command->get_options()) help.options.push_back(Describe(*option));
        commands.push_back(std::move(help));
    }
    return commands;
}

std::string HelpText(CLI::App& app, const HelpRequest& request) {
    if (request.manual) return ManualPage(Describe(app), SE_VERSION);
    if (request.completion) return BashCompletion(Describe(app));
    if (request.command.empty()) {
        // What app.help() gives is the help of the command that was called: of this one.
        return app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
    }
    for (const CLI::App* command : app.get_subcommands({})) {
        if (command->get_name() == request.command) return command->help("specialeffects");
    }
    throw UsageError("there is no command \"{}\"; \"specialeffects help\" shows them", request.command);
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
            "{}; there are list, info, apply, bench, cameras and help, and \"specialeffects help\" says "
            "more",
            wrong);
    }
    const CLI::App& command = *app.get_subcommands().front();
    // Without -e the effect's name is easily given as INPUT, and then there is one word too many.
    if (command.get_name() == "apply" && command.count("-e") == 0 && command.remaining_size() > 0)
        throw NoEffect();
    throw UsageError("{}; \"specialeffects help {}\" says more", error.what(), command.get_name());
}

}  // namespace

Size ParseSize(std::string_view text) {
    Size size{};
    const char* end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    const bool hasHeight = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
    const auto height = hasHeight ? std::from_chars(width.ptr + 1, end, size.height) : width;
    if (!hasHeight || height.ec != std::errc() || height.ptr != end) {
        throw UsageError("\"{}\" is not a size; it is written as 640x480", text);
    }
    if (size.width < 2 || size.height < 2 || size.width > kLargestSide || size.height > kLargestSide) {
        throw UsageError("the size {} is out of range; sides go from 2 to {}", text, kLargestSide);
    }
    return size;
}

AVRational ParseRate(std::string_view text) {
    constexpr int kLargestPart = 1'000'000;
    constexpr double kHighest = 1000;
    AVRational rate{};
    const bool valid =
        av_parse_ratio(&rate, std::string(text).c_str(), kLargestPart, AV_LOG_QUIET, nullptr) >= 0;
    if (!valid || rate.num <= 0 || rate.den <= 0 || av_q2d(rate) > kHighest) {
        throw UsageError("\"{}\" is not a frame rate; it is written as 30, 29.97 or 30000/1001", text);
    }
    return rate;
}

double ParseSeconds(std::string_view text) {
    constexpr double kMost = 1e7;
    int64_t microseconds = 0;
    const bool valid = av_parse_time(&microseconds, std::string(text).c_str(), 1) >= 0;
    const double seconds = static_cast<double>(microseconds) / AV_TIME_BASE;
    if (!valid || seconds < 0 || seconds > kMost) {
        throw UsageError("\"{}\" is not a time; it is written as 90, 1:30 or 0:01:30.5", text);
    }
    return seconds;
}

Sound ParseSound(std::string_view text) {
    if (text == "copy") return Sound::Copy;
    if (text == "aac") return Sound::Aac;
    if (text == "opus") return Sound::Opus;
    if (text == "none") return Sound::None;
    throw UsageError("--audio takes copy, aac, opus or none, not \"{}\"", text);
}

Command ParseCommandLine(int argc, const char* const* argv) {
    ListOptions list;
    InfoOptions info;
    ApplyOptions apply;
    BenchOptions bench;
    CamerasOptions cameras;
    HelpRequest help;
    Texts texts;

    CLI::App app("Runs video, pictures and cameras through special effects.", "specialeffects");
    app.set_version_flag("-V,--version", SE_VERSION, "Show the version");
    bool quiet = false;
    app.add_flag("-q,--quiet", quiet, "No progress, no notes, no summary");
    app.require_subcommand(1);
    AddList(app, list);
    AddInfo(app, info);
    AddApply(app, apply, texts);
    AddBench(app, bench, texts);
    AddCameras(app, cameras);
    AddHelp(app, help);
    app.footer(kFooter);  // now, or the commands would inherit it
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answer) {
        std::ostringstream text, errors;
        app.exit(answer, text, errors);
        return HelpOptions{text.str()};
    } catch (const CLI::ParseError& error) {
        Explain(app, error);
    }
    if (app.got_subcommand("apply") && apply.effects.empty()) throw NoEffect();
    if (!texts.size.empty()) {
        bench.size = ParseSize(texts.size);
        apply.from.size = bench.size;
    }
    if (!texts.rate.empty()) apply.from.rate = apply.to.rate = ParseRate(texts.rate);
    if (!texts.start.empty()) apply.from.start = ParseSeconds(texts.start);
    if (!texts.sound.empty()) apply.to.sound = ParseSound(texts.sound);
    if (!texts.duration.empty()) {
        apply.duration = ParseSeconds(texts.duration);
        if (*apply.duration <= 0) throw UsageError("--duration has to be more than 0");
    }

    apply.quiet |= quiet;
    bench.quiet |= quiet;

    if (app.got_subcommand("help")) return HelpOptions{HelpText(app, help)};
    if (app.got_subcommand("list")) return list;
    if (app.got_subcommand("info")) return info;
    if (app.got_subcommand("apply")) return apply;
    if (app.got_subcommand("cameras")) return cameras;
    return bench;
}

}  // namespace host
