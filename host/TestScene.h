// The built-in input: a scene with something for every effect. Gradients, fine texture, hard edges, moving
// bodies, and the noise of a camera.
#ifndef SPECIALEFFECTS_HOST_TESTSCENE_H
#define SPECIALEFFECTS_HOST_TESTSCENE_H

#include "VideoInput.h"

namespace host {

class TestScene : public VideoInput {
  public:
    TestScene(const InputOptions& options, const Notes& notes);

    /// Frame n is the same in every run.
    std::optional<InputItem> Next() override;

  private:
    FramePool pool_;
    int64_t count_ = 0;
};

/// Draws frame `number` of the scene into a frame.
void DrawTestScene(int64_t number, Frame& frame);

}  // namespace host

#endif
