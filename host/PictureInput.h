// A still picture as input.
#ifndef SPECIALEFFECTS_HOST_PICTUREINPUT_H
#define SPECIALEFFECTS_HOST_PICTUREINPUT_H

#include "VideoInput.h"

namespace host {

/// The first picture of a source, repeated forever.
class PictureInput : public VideoInput {
  public:
    PictureInput(VideoInput& source, const InputOptions& options);

    std::optional<InputItem> Next() override;

  private:
    Frame picture_;
    FramePool pool_;
    int64_t count_ = 0;
};

/// The first frame of a source. Throws Failure when it has none.
Frame FirstFrame(VideoInput& source);

}  // namespace host

#endif
