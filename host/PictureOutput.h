// Still pictures as output: one, or one for each frame.
#ifndef SPECIALEFFECTS_HOST_PICTUREOUTPUT_H
#define SPECIALEFFECTS_HOST_PICTUREOUTPUT_H

#include <vector>

#include "Scaler.h"
#include "VideoOutput.h"

namespace host {

/// A PNG or JPEG file of the last frame that is written. Its pixels are square.
class PictureOutput : public VideoOutput {
  public:
    PictureOutput(const std::string& path, const StreamInfo& stream, bool overwrite);

    void Write(Frame frame) override;
    void Finish(int64_t end) override;
    int64_t FrameCount() const override { return encoded_ ? 1 : 0; }

  private:
    OutputFile file_;
    AVRational pixelAspect_;
    PacketPtr encoded_;
};

/// Numbered PNG or JPEG files from 1 on. They get their names when all are written.
class SequenceOutput : public VideoOutput {
  public:
    SequenceOutput(const std::string& pattern, const StreamInfo& stream, bool overwrite);

    void Write(Frame frame) override;
    void Finish(int64_t end) override;
    int64_t FrameCount() const override { return static_cast<int64_t>(files_.size()); }

  private:
    std::string pattern_;
    AVRational pixelAspect_;
    bool overwrite_;
    std::vector<std::unique_ptr<OutputFile>> files_;
};

/// Whether the extension is one of a picture that the program writes.
bool IsPictureName(const std::string& path);

/// The size in square pixels.
Size SquarePixels(const AVFrame& picture, AVRational pixelAspect);

}  // namespace host

#endif
