// Where frames come from.
#ifndef SPECIALEFFECTS_HOST_VIDEOINPUT_H
#define SPECIALEFFECTS_HOST_VIDEOINPUT_H

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "Color.h"
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
    Picture,    ///< one picture, repeated forever
    Scene,      ///< drawn by this program, without end
    Live,       ///< a camera: frames come when they come
};

struct StreamInfo {
    InputKind kind = InputKind::Scene;
    bool isFile = false;          ///< it can be read again from the beginning
    Size size{};                  ///< of the frames
    AVRational timeBase{1, 30};   ///< seconds in a tick of Frame::Time
    AVRational frameRate{30, 1};  ///< frames a second, on average
    int64_t frameCount = 0;       ///< as far as is known beforehand, else 0
    AVRational pixelAspect{1, 1};
    Color color;

    /// Ticks from one frame to the next.
    int64_t TicksPerFrame() const;
};

/// What an input gives: a frame, or a packet of another stream of its container.
struct InputItem {
    Frame frame = {};
    PacketPtr packet = nullptr;
};

class VideoInput {
  public:
    virtual ~VideoInput() = default;

    const StreamInfo& Stream() const { return stream_; }

    /// The next frame in the stream's size, or a packet that belongs to the time of the frames so far: its
    /// times are in its own stream's ticks, from the video's beginning. Nothing at the end.
    virtual std::optional<InputItem> Next() = 0;

    /// From now on only packets from before `end`, a time of the video, and then the end.
    virtual void EndAt([[maybe_unused]] int64_t end) { ended_ = true; }

    /// Makes a wait for input on another thread come to an end.
    void Cancel() { cancelled_ = true; }

    /// The container, for its other streams, chapters and tags; null without one.
    virtual const AVFormatContext* Container() const { return nullptr; }
    /// The stream of the container that gives the frames.
    virtual int VideoIndex() const { return -1; }
    /// When the video begins in the container, in units of AV_TIME_BASE.
    virtual int64_t Origin() const { return 0; }

    /// After the end: why there are fewer frames than there should be; empty when there are not.
    virtual std::string Shortfall() const { return {}; }

  protected:
    StreamInfo stream_;
    bool ended_ = false;
    std::atomic<bool> cancelled_{false};
};

struct InputOptions {
    std::optional<Size> size = {};        ///< frames are scaled to it
    std::optional<AVRational> rate = {};  ///< of cameras, of pictures in a sequence, of what has no rate
    double start = 0;                     ///< seconds of a video to leave out
    std::string cameraFormat = {};        ///< what the camera is asked for
    bool evenSides = true;                ///< the output cannot have odd ones
};

/// `name` is a file, a URL, a numbered sequence of pictures (shot%03d.png), a camera (/dev/video0), "-" for
/// standard input, "test:" for the built-in scene or "still:FILE" for a picture as seen by a hand-held
/// camera. Throws Failure, and UsageError when standard input is a terminal.
std::unique_ptr<VideoInput> OpenInput(const std::string& name, const InputOptions& options,
                                      const Notes& notes);

/// The same without "test:" and "still:".
std::unique_ptr<VideoInput> OpenMedia(const std::string& name, const InputOptions& options,
                                      const Notes& notes);

/// The file that `name` reads, or nothing.
std::optional<std::string> FileOfInput(const std::string& name);

/// The even size nearest below, at least 2x2, with a note when that is another one.
Size EvenSize(Size wanted, const Notes& notes);

/// The size of the frames from an input whose pictures have the size `native`. Throws Failure when it is too
/// large.
Size FrameSize(const std::string& name, Size native, const InputOptions& options, const Notes& notes);

/// Whether `path` is a character device.
bool IsDevice(const std::string& path);

/// "shot%03d.png": a name with one number in it, as printf writes it.
bool IsSequenceName(const std::string& path);
/// The same where no file has just this name.
bool IsSequenceInput(const std::string& path);
/// The name of one picture of the sequence.
std::string SequenceMember(const std::string& path, int64_t number);

}  // namespace host

#endif
