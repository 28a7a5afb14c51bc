// Still pictures as input and output.
#ifndef SPECIALEFFECTS_HOST_PICTUREIO_H
#define SPECIALEFFECTS_HOST_PICTUREIO_H

#include "VideoInput.h"
#include "VideoOutput.h"

namespace host {

/// The first picture of a source, for ever.
class PictureInput : public VideoInput {
  public:
    PictureInput(VideoInput& source, int32_t format);

    bool Read(Frame& frame) override;

  private:
    Frame picture_;
    int64_t count_ = 0;
};

/// A PNG or JPEG file of the last frame that is written.
class PictureOutput : public VideoOutput {
  public:
    PictureOutput(const std::string& path, const StreamInfo& stream);

    void Write(const Frame& frame) override;
    void Finish() override;

  private:
    OutputFile file_;
    AVColorSpace colorSpace_;
    PacketPtr encoded_;
};

/// Whether the extension is one that PictureOutput writes.
bool IsPictureName(const std::string& path);

}  // namespace host

#endif
