// Where frames go.
#ifndef SPECIALEFFECTS_HOST_VIDEOOUTPUT_H
#define SPECIALEFFECTS_HOST_VIDEOOUTPUT_H

#include <memory>
#include <string>

#include "Errors.h"
#include "Frame.h"
#include "OutputFile.h"
#include "VideoInput.h"

namespace host {

enum class OutputKind {
    Video,    ///< a file with as many frames as come
    Picture,  ///< a file with one frame
    Pipe,     ///< standard output
    Device,   ///< a virtual camera
};

/// By the name alone. Throws UsageError for a name that says nothing of the kind.
OutputKind KindOfOutput(const std::string& name);

class VideoOutput {
  public:
    virtual ~VideoOutput() = default;

    /// Throws Failure or ReaderGone.
    virtual void Write(const Frame& frame) = 0;

    /// A packet of sound as the input gives it; ignored where there is no place for it.
    virtual void WriteAudio([[maybe_unused]] PacketPtr packet) {}

    /// After the last frame: only now does a file get its name. Throws Failure.
    virtual void Finish() = 0;
};

/// Opens what `name` says for the frames of `input`. Throws Failure, and UsageError when standard output is a
/// terminal.
std::unique_ptr<VideoOutput> OpenOutput(const std::string& name, const VideoInput& input, const Notes& notes);

}  // namespace host

#endif
