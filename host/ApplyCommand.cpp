// `apply`: frames from an input through a chain of effects to an output.
#include <cstdlib>
#include <limits>
#include <random>

#include "Commands.h"
#include "EffectChain.h"
#include "Interrupt.h"
#include "Progress.h"
#include "VideoInput.h"
#include "VideoOutput.h"

namespace host {
namespace {

constexpr int64_t kNoLimit = std::numeric_limits<int64_t>::max();

// What a file gets from an input without end when nobody says how much.
constexpr int64_t kFramesOfEndlessInput = 300;

void CheckOptions(const ApplyOptions& options, OutputKind output) {
    const bool picture = output == OutputKind::Picture;
    if (options.frame && !picture) {
        throw UsageError("--frame writes a picture: {} has to end in .png or .jpg", options.output);
    }
    if (options.frames && picture) {
        throw UsageError("--frames does not go with a picture as output; --frame N says which frame it is");
    }
}

// How many frames to run through the effects.
int64_t FrameLimit(const ApplyOptions& options, OutputKind output, InputKind input) {
    if (output == OutputKind::Picture) {
        if (!options.frame && input == InputKind::Recording) {
            throw UsageError("{} is a video and {} a picture: --frame N says which frame it is",
                             options.input, options.output);
        }
        return options.frame.value_or(1);
    }
    if (options.frames) return *options.frames;
    const bool endless = input == InputKind::Picture || input == InputKind::Scene;
    return endless && output == OutputKind::Video ? kFramesOfEndlessInput : kNoLimit;
}

int64_t KnownTotal(int64_t limit, const StreamInfo& stream) {
    if (limit == kNoLimit) return stream.frameCount;
    return stream.frameCount > 0 ? std::min(limit, stream.frameCount) : limit;
}

// Hands on the sound that belongs to the video before `end`.
void CopyAudio(VideoInput& input, VideoOutput& output, int64_t end, bool readOn) {
    while (PacketPtr packet = input.NextAudio(end, readOn)) output.WriteAudio(std::move(packet));
}

struct Outcome {
    int64_t frames = 0;
    int64_t end = 0;  // of the last frame, in the input's ticks
    bool inputEnded = false;
};

Outcome RunFrames(VideoInput& input, EffectChain& chain, VideoOutput& output, OutputKind kind,
                  const ApplyOptions& options, int64_t limit) {
    const StreamInfo& stream = input.Stream();
    Frame frame(stream.size.width, stream.size.height, options.packed ? kFormatPacked : kFormatPlanar);
    Progress progress(KnownTotal(limit, stream), options.quiet);
    Outcome outcome;
    while (outcome.frames < limit && !Interrupted()) {
        if (!input.Read(frame)) {
            outcome.inputEnded = true;
            break;
        }
        chain.Process(frame);
        ++outcome.frames;
        outcome.end = frame.time + stream.TicksPerFrame();
        if (kind != OutputKind::Picture || outcome.frames == limit) output.Write(frame);
        CopyAudio(input, output, outcome.end, false);
        progress.Show(outcome.frames);
    }
    return outcome;
}

}  // namespace

void Run(const ApplyOptions& options) {
    const Notes notes(options.quiet);
    const OutputKind kind = KindOfOutput(options.output);
    CheckOptions(options, kind);
    SetUpLibav();
    const Module module(options.module);
    EffectChain chain(module, options.effects, notes);

    const int32_t format = options.packed ? kFormatPacked : kFormatPlanar;
    const auto input = OpenInput(options.input, {options.size, format}, notes);
    const StreamInfo& stream = input->Stream();
    const int64_t limit = FrameLimit(options, kind, stream.kind);
    const auto output = OpenOutput(options.output, *input, notes);

    // Seeded once more before the first frame: what effects draw while they are configured may depend on
    // data files and on the clock.
    const unsigned seed = options.seed.value_or(std::random_device()());
    std::srand(seed);
    chain.Configure(stream.size.width, stream.size.height, format, options.settings);
    std::srand(seed);

    const Outcome outcome = RunFrames(*input, chain, *output, kind, options, limit);
    if (outcome.frames == 0) {
        if (Interrupted()) throw Failure("interrupted before the first frame");
        throw Failure("{} has no frame that can be decoded; it may be cut short", options.input);
    }
    if (kind == OutputKind::Picture && outcome.frames < limit) {
        if (Interrupted()) throw Failure("interrupted before frame {}", limit);
        throw Failure("{} has no frame {}, only {} frames", options.input, limit, outcome.frames);
    }
    const bool stopped = !outcome.inputEnded;
    CopyAudio(*input, *output, stopped ? outcome.end : kNoLimit, stopped && !Interrupted());
    output->Finish();
    if (outcome.inputEnded) {
        if (const std::string reason = input->Shortfall(); !reason.empty()) {
            notes.Add("{}: {}", options.input, reason);
        }
    }
}

}  // namespace host
