#include "VideoOutput.h"

#include "CameraOutput.h"
#include "MediaOutput.h"
#include "PictureIo.h"
#include "Y4m.h"

namespace host {

OutputKind KindOfOutput(const std::string& name) {
    if (name == "-") return OutputKind::Pipe;
    if (IsDevice(name)) return OutputKind::Device;
    if (IsPictureName(name)) return OutputKind::Picture;
    if (IsMediaName(name) || IsY4mName(name)) return OutputKind::Video;
    throw UsageError(
        "{} is no output: take a name ending in .mp4, .mkv, .webm, .y4m, .png or .jpg, or /dev/videoN, or -",
        name);
}

std::unique_ptr<VideoOutput> OpenOutput(const std::string& name, const VideoInput& input,
                                        const Notes& notes) {
    const StreamInfo& stream = input.Stream();
    switch (KindOfOutput(name)) {
        case OutputKind::Pipe:
            return std::make_unique<Y4mPipe>(stream);
        case OutputKind::Device:
            return std::make_unique<CameraOutput>(name, stream);
        case OutputKind::Picture:
            return std::make_unique<PictureOutput>(name, stream);
        case OutputKind::Video:
            break;
    }
    if (IsY4mName(name)) return std::make_unique<Y4mFile>(name, stream);
    return std::make_unique<MediaOutput>(name, stream, input.AudioStreams(), notes);
}

}  // namespace host
