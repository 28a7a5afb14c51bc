// Where frames come from.
#ifndef SPECIALEFFECTS_HOST_VIDEOINPUT_H
#define SPECIALEFFECTS_HOST_VIDEOINPUT_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Errors.h"
#include "Frame.h"
#include "Libav.h"

namespace host {

/// The longest side that an effect can be configured for.
inline constexpr int kLargestSide = 16384;

struct Size {
    int width;
    int height;

    bool operator==(const Size&) const = default;
};

enum class InputKind {
    Recording,  ///< a video: as many frames as it has
    Picture,    ///< one picture, repeated for ever
    Scene,      ///< drawn by this program, without end
    Live,       ///< a camera: frames come when they come
};

struct StreamInfo {
    InputKind kind = InputKind::Scene;
    Size size{};                  ///< of the frames, even
    AVRational timeBase{1, 30};   ///< seconds in a tick of Frame::time
    AVRational frameRate{30, 1};  ///< frames a second, on average
    int64_t frameCount = 0;       ///< as far as is known beforehand, else 0
    AVRational pixelAspect{1, 1};
    AVColorSpace colorSpace = AVCOL_SPC_UNSPECIFIED;

    /// Ticks from one frame to the next.
    int64_t TicksPerFrame() const;
};

class VideoInput {
  public:
    virtual ~VideoInput() = default;

    const StreamInfo& Stream() const { return stream_; }

    /// The next frame in the stream's size, in the layout that the frame has. False at the end.
    virtual bool Read(Frame& frame) = 0;

    /// Streams of sound that come with the video.
    virtual std::vector<const AVStream*> AudioStreams() const { return {}; }

    /// The next packet of sound that begins before `end`, a time of the video, in its own stream's ticks
    /// from the video's beginning; null when there is none. With `readOn` false only what has been come
    /// across while frames were read is given.
    virtual PacketPtr NextAudio([[maybe_unused]] int64_t end, [[maybe_unused]] bool readOn) {
        return nullptr;
    }

    /// After the end: why there are fewer frames than there should be; empty when there are not.
    virtual std::string Shortfall() const { return {}; }

  protected:
    StreamInfo stream_;
};

struct InputOptions {
    std::optional<Size> size;  ///< frames are scaled to it
    int32_t format = kFormatPlanar;
};

/// `name` is a file, a camera (/dev/video0), "-" for standard input, "test:" for the built-in scene or
/// "still:FILE" for a picture as seen by a hand-held camera. Throws Failure, and UsageError when standard
/// input is a terminal.
std::unique_ptr<VideoInput> OpenInput(const std::string& name, const InputOptions& options,
                                      const Notes& notes);

/// The even size nearest below, at least 2x2, with a note when that is another one.
Size EvenSize(Size wanted, const Notes& notes);

/// Whether `path` is a character device.
bool IsDevice(const std::string& path);

}  // namespace host

#endif
