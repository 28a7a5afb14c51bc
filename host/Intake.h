// Decoded pictures become frames.
#ifndef SPECIALEFFECTS_HOST_INTAKE_H
#define SPECIALEFFECTS_HOST_INTAKE_H

#include <optional>

#include "Color.h"
#include "FilterGraph.h"
#include "Frame.h"
#include "Scaler.h"

namespace host {

/// Brings pictures of any format and size to frames of one size, upright and in the colour of
/// ColorAsFrame. A picture that has the layout already is taken over without a copy. PQ and HLG are
/// tone-mapped to standard dynamic range.
class Intake {
  public:
    /// Frames of `width` by `height` after `quarterTurns` quarters clockwise, in `color`.
    Intake(int width, int height, int quarterTurns, const Color& color);

    /// The picture may be taken over. Throws Failure.
    Frame Take(AVFramePtr picture);

  private:
    AVFramePtr MapTones(const AVFrame& picture);
    Frame Upright(AVFramePtr picture);

    int quarterTurns_;
    Color color_;
    FramePool pool_;
    FramePool sidewaysPool_;  // before an odd turn
    Scaler scaler_;
    std::optional<FilterGraph> toneMapper_;
    int mappedWidth_ = 0;
    int mappedHeight_ = 0;
    int mappedFormat_ = -1;
};

}  // namespace host

#endif
