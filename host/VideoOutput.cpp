#include "VideoOutput.h"

#include "CameraOutput.h"
#include "ConstantRate.h"
#include "Containers.h"
#include "LeftOut.h"
#include "MediaOutput.h"
#include "PictureOutput.h"
#include "Y4m.h"

namespace host {
namespace {

// The stream after ConstantRate.
StreamInfo AtConstantRate(StreamInfo stream, AVRational rate) {
    stream.frameRate = rate;
    stream.timeBase = av_inv_q(rate);
    return stream;
}

// What an input without a rate of its own, whose frames have only times, gets.
AVRational SensibleRate(AVRational rate) {
    constexpr AVRational kUsual{30, 1};
    constexpr int kHighest = 240;
    return rate.num <= 0 || rate.den <= 0 || av_q2d(rate) > kHighest ? kUsual : rate;
}

std::unique_ptr<VideoOutput> OpenByKind(const std::string& name, OutputKind kind, const VideoInput& input,
                                        const StreamInfo& stream, const OutputOptions& options,
                                        const Notes& notes) {
    switch (kind) {
        case OutputKind::Pipe:
            return std::make_unique<Y4mPipe>(stream);
        case OutputKind::Device:
            return std::make_unique<CameraOutput>(name, stream);
        case OutputKind::Picture:
            return std::make_unique<PictureOutput>(name, stream, options.overwrite);
        case OutputKind::Sequence:
            return std::make_unique<SequenceOutput>(name, stream, options.overwrite);
        case OutputKind::Video:
            break;
    }
    if (IsY4mName(name)) return std::make_unique<Y4mFile>(name, stream, options.overwrite);
    return std::make_unique<MediaOutput>(name, stream, input, options, notes);
}

}  // namespace

OutputKind KindOfOutput(const std::string& name, bool onePicture) {
    if (name == "-") return OutputKind::Pipe;
    if (IsDevice(name)) return OutputKind::Device;
    if (IsPictureName(name)) {
        return IsSequenceName(name) && !onePicture ? OutputKind::Sequence : OutputKind::Picture;
    }
    if (FindContainer(name) != nullptr || IsY4mName(name)) return OutputKind::Video;
    throw UsageError(
        "{} is not an output: take a name ending in .mp4, .mov, .mkv, .webm, .avi, .ts, .gif, .apng, .webp, "
        ".y4m, .png or .jpg, or /dev/videoN, or -",
        name);
}

bool TakesOddSides(OutputKind kind) {
    return kind == OutputKind::Picture || kind == OutputKind::Sequence;
}

std::unique_ptr<VideoOutput> OpenOutput(const std::string& name, const VideoInput& input,
                                        const OutputOptions& options, const Notes& notes) {
    const OutputKind kind = KindOfOutput(name, options.onePicture);
    const Container* container = kind == OutputKind::Video ? FindContainer(name) : nullptr;
    if (container == nullptr && (!options.codec.empty() || options.crf || !options.preset.empty())) {
        throw UsageError("--codec, --crf and --preset do not go with {}", name);
    }
    if (container == nullptr && kind != OutputKind::Picture && kind != OutputKind::Device) {
        LeftOut::Everything(input).Tell(notes,
                                        kind == OutputKind::Sequence ? "a sequence of pictures" : "Y4M");
    }
    const bool y4m = kind == OutputKind::Pipe || IsY4mName(name);
    const bool highest = container != nullptr && container->highestRate > 0 &&
                         av_q2d(input.Stream().frameRate) > container->highestRate;
    const bool constant = y4m || options.rate || highest || (container != nullptr && container->constantRate);
    if (!constant || kind == OutputKind::Picture) {
        return OpenByKind(name, kind, input, input.Stream(), options, notes);
    }
    const AVRational rate = options.rate ? *options.rate
                            : highest    ? AVRational{container->highestRate, 1}
                                         : SensibleRate(input.Stream().frameRate);
    auto output = OpenByKind(name, kind, input, AtConstantRate(input.Stream(), rate), options, notes);
    return std::make_unique<ConstantRate>(std::move(output), input.Stream().timeBase, rate,
                                          options.rate.has_value(), notes);
}

}  // namespace host
