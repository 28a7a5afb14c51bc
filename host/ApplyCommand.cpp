// `apply`: frames from an input through a chain of effects to an output.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "Commands.h"
#include "EffectChain.h"
#include "Interrupt.h"
#include "Pipeline.h"
#include "Progress.h"
#include "Terminal.h"
#include "VideoInput.h"
#include "VideoOutput.h"

namespace host {
namespace {

constexpr int64_t kNoLimit = std::numeric_limits<int64_t>::max();

// How much of an endless input goes into a file when no option limits it.
constexpr double kSecondsOfEndlessInput = 10;

void CheckOptions(const ApplyOptions& options, OutputKind output) {
    const bool picture = output == OutputKind::Picture;
    if (options.frame && !picture) {
        throw UsageError("--frame writes a picture: {} has to end in .png or .jpg", options.output);
    }
    if ((options.frames || options.duration) && picture) {
        throw UsageError("{} does not go with a picture as output; --frame N says which frame it is",
                         options.frames ? "--frames" : "--duration");
    }
}

// A picture of the sequence that is written must not be one that is read.
void CheckMembers(const std::string& output, const std::string& input) {
    constexpr int64_t kMostMembers = 10'000;
    const bool both = IsSequenceInput(input);
    for (int64_t i = 1; i <= kMostMembers; ++i) {
        CheckNotInput(SequenceMember(output, i), both ? SequenceMember(input, i) : input);
    }
}

// Before anything is opened: what is to be written must not be there, and must not be read.
void CheckFiles(const ApplyOptions& options, OutputKind output) {
    if (output == OutputKind::Pipe || output == OutputKind::Device) return;
    const std::optional<std::string> input = FileOfInput(options.input);
    if (output == OutputKind::Sequence) {
        if (input) CheckMembers(options.output, *input);
        return;
    }
    if (input) CheckNotInput(options.output, *input);
    if (options.settings) CheckNotInput(options.output, *options.settings);
    CheckOverwriting(options.output, options.to.overwrite);
}

PipelineLimits LimitsOf(const ApplyOptions& options, OutputKind output, const StreamInfo& stream) {
    PipelineLimits limits;
    if (output == OutputKind::Picture) {
        if (!options.frame && stream.kind == InputKind::Recording) {
            throw UsageError("{} is a video and {} a picture: --frame N says which frame it is",
                             options.input, options.output);
        }
        limits.frames = options.frame.value_or(1);
        limits.lastFrameOnly = true;
        return limits;
    }
    std::optional<double> seconds = options.duration;
    const bool endless = stream.kind == InputKind::Picture || stream.kind == InputKind::Scene;
    const bool file = output == OutputKind::Video || output == OutputKind::Sequence;
    if (endless && file && !options.frames && !seconds) seconds = kSecondsOfEndlessInput;
    if (options.frames) limits.frames = *options.frames;
    if (seconds) limits.end = std::llround(*seconds / av_q2d(stream.timeBase));
    return limits;
}

// 0 when unknown.
int64_t ExpectedFrames(const PipelineLimits& limits, const StreamInfo& stream) {
    int64_t expected = stream.frameCount > 0 ? stream.frameCount : kNoLimit;
    expected = std::min(expected, limits.frames);
    if (limits.end != kNoLimit) {
        expected = std::min(
            expected, av_rescale_q_rnd(limits.end, stream.timeBase, av_inv_q(stream.frameRate), AV_ROUND_UP));
    }
    return expected == kNoLimit ? 0 : expected;
}

// When the run will end at the latest, in units of AV_TIME_BASE.
int64_t LatestEnd(const PipelineLimits& limits, const StreamInfo& stream) {
    int64_t end = kNoLimit;
    if (limits.end != kNoLimit) end = av_rescale_q(limits.end, stream.timeBase, av_get_time_base_q());
    if (limits.frames != kNoLimit) {
        const int64_t frames = av_rescale_q(limits.frames, av_inv_q(stream.frameRate), av_get_time_base_q());
        end = std::min(end, frames);
    }
    return end;
}

// A recording from a file that is broken off is not the output that was asked for.
void CheckComplete(const ApplyOptions& options, const StreamInfo& stream, OutputKind output,
                   const PipelineLimits& limits, const PipelineOutcome& outcome) {
    const bool recorded = outcome.frames > 0 && output != OutputKind::Picture && !stream.isFile;
    const bool endless = stream.kind == InputKind::Picture || stream.kind == InputKind::Scene;
    if (Interrupted() && !(outcome.frames > 0 && (recorded || (endless && output != OutputKind::Picture)))) {
        throw Interruption("interrupted; {} is not written", options.output);
    }
    if (outcome.frames == 0) {
        throw Failure("{} has no frame that can be decoded; it may be cut short", options.input);
    }
    if (output == OutputKind::Picture && outcome.frames < limits.frames) {
        throw Failure("{} has no frame {}, only {} frames", options.input, limits.frames, outcome.frames);
    }
}

// A still picture shows little of an effect that depends on earlier frames.
void TellOfMemory(const ApplyOptions& options, const EffectChain& chain, OutputKind output,
                  const StreamInfo& stream, const Notes& notes) {
    if (output != OutputKind::Picture || stream.kind != InputKind::Picture || options.frame) return;
    for (const sfx_effect_info* link : chain.Links()) {
        if ((link->flags & SFX_HAS_MEMORY) == 0) continue;
        notes.Add("{} builds on earlier frames, and this is the first; --frame 30 shows it after a second",
                  link->title);
        return;
    }
}

// "wrote 300 frames, 10.0 seconds, to out.mp4"
void TellResult(const ApplyOptions& options, const VideoOutput& output, OutputKind kind, double seconds) {
    if (options.quiet || !OnTerminal(STDERR_FILENO)) return;
    const int64_t count = output.FrameCount();
    const std::string frames = fmt::format("{} frame{}", count, count == 1 ? "" : "s");
    const std::string where = kind == OutputKind::Pipe ? "standard output" : options.output;
    if (kind == OutputKind::Picture) {
        fmt::print(stderr, "{}wrote {}\n", LineStart(), where);
    } else {
        fmt::print(stderr, "{}wrote {}, {:.1f} seconds, to {}\n", LineStart(), frames, seconds, where);
    }
}

}  // namespace

void Run(const ApplyOptions& options) {
    const Notes notes(options.quiet);
    const OutputKind kind = KindOfOutput(options.output, options.frame.has_value());
    CheckOptions(options, kind);
    CheckFiles(options, kind);
    EffectChain chain(options.effects, notes);
    if (options.data) chain.SetDataFolder(*options.data);
    if (options.settings) chain.LoadSettings(*options.settings);
    chain.SetSeed(options.seed.value_or(std::random_device()()));

    InputOptions from = options.from;
    from.evenSides = !TakesOddSides(kind);
    const auto input = OpenInput(options.input, from, notes);
    const StreamInfo& stream = input->Stream();
    const PipelineLimits limits = LimitsOf(options, kind, stream);
    OutputOptions to = options.to;
    to.end = LatestEnd(limits, stream);
    to.onePicture = options.frame.has_value();
    // A camera, a sequence or a scene gives its frames at the rate; only a recording has one of its own.
    if (stream.kind != InputKind::Recording || IsSequenceInput(options.input)) to.rate.reset();
    const auto output = OpenOutput(options.output, *input, to, notes);

    TellOfMemory(options, chain, kind, stream, notes);
    chain.Prepare(stream.size.width, stream.size.height);

    PipelineOutcome outcome;
    {
        Progress progress(ExpectedFrames(limits, stream), options.quiet);
        outcome = RunPipeline(*input, chain, *output, limits,
                              [&progress](int64_t frames) { progress.Show(frames); });
    }
    CheckComplete(options, stream, kind, limits, outcome);
    output->Finish(outcome.end);
    if (outcome.inputEnded) {
        if (const std::string reason = input->Shortfall(); !reason.empty()) {
            notes.Add("{}: {}", options.input, reason);
        }
    }
    TellResult(options, *output, kind, static_cast<double>(outcome.end) * av_q2d(stream.timeBase));
}

}  // namespace host
