// Where frames go.
#ifndef SPECIALEFFECTS_HOST_VIDEOOUTPUT_H
#define SPECIALEFFECTS_HOST_VIDEOOUTPUT_H

#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "Errors.h"
#include "Frame.h"
#include "OutputFile.h"
#include "VideoInput.h"

namespace host {

enum class OutputKind {
    Video,     ///< a file with as many frames as come
    Picture,   ///< a file with one frame
    Sequence,  ///< a numbered file for each frame
    Pipe,      ///< standard output
    Device,    ///< a virtual camera
};

/// What to do with the sound.
enum class Sound { Auto, Copy, Aac, Opus, None };

struct OutputOptions {
    std::string codec = {};       ///< of the video; empty for the container's usual one
    std::optional<int> crf = {};  ///< quality
    std::string preset = {};      ///< speed of the encoder
    Sound sound = Sound::Auto;
    std::optional<AVRational> rate = {};  ///< frames a second; frames are repeated and left out for it
    /// When the run will end at the latest, in units of AV_TIME_BASE.
    int64_t end = std::numeric_limits<int64_t>::max();
    bool overwrite = false;
    bool onePicture = false;  ///< a name with %03d in it is that of one picture
};

/// By the name alone. Throws UsageError for a name of no known kind.
OutputKind KindOfOutput(const std::string& name, bool onePicture);

/// Whether the output can have odd sides.
bool TakesOddSides(OutputKind kind);

class VideoOutput {
  public:
    virtual ~VideoOutput() = default;

    /// Throws Failure or ReaderGone.
    virtual void Write(Frame frame) = 0;

    /// A packet of another stream as the input gives it; ignored where there is no place for it.
    virtual void WritePacket([[maybe_unused]] PacketPtr packet) {}

    /// After the last frame, which ends at `end`, a time of the input: only now does a file get its name.
    /// Throws Failure.
    virtual void Finish(int64_t end) = 0;

    /// Frames that were written, which can be more or fewer than those that came.
    virtual int64_t FrameCount() const = 0;
};

/// Opens what `name` says for the frames of `input`. Throws Failure, and UsageError when standard output is a
/// terminal or the options do not fit.
std::unique_ptr<VideoOutput> OpenOutput(const std::string& name, const VideoInput& input,
                                        const OutputOptions& options, const Notes& notes);

}  // namespace host

#endif
