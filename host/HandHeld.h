// A picture as a hand-held camera sees it: a slow pan, a zoom, a trembling hand, the noise of the sensor.
#ifndef SPECIALEFFECTS_HOST_HANDHELD_H
#define SPECIALEFFECTS_HOST_HANDHELD_H

#include "VideoInput.h"

namespace host {

class HandHeld : public VideoInput {
  public:
    /// Frames have the picture's size unless the options set another.
    HandHeld(const std::string& file, const InputOptions& options, const Notes& notes);

    /// Frame n is the same in every run.
    std::optional<InputItem> Next() override;

  private:
    Frame picture_;
    FramePool pool_;
    int64_t count_ = 0;
};

}  // namespace host

#endif
