#include "ConstantRate.h"

#include <algorithm>
#include <utility>

namespace host {

ConstantRate::ConstantRate(std::unique_ptr<VideoOutput> output, AVRational timeBase, AVRational rate,
                           const Notes* notes)
    : output_(std::move(output)), timeBase_(timeBase), rate_(rate), notes_(notes) {}

int64_t ConstantRate::PlaceOf(int64_t time) const {
    return av_rescale_q_rnd(time, timeBase_, av_inv_q(rate_), AV_ROUND_NEAR_INF);
}

void ConstantRate::Tell() {
    if (const Notes* notes = std::exchange(notes_, nullptr)) {
        notes->Add("frames come at varying times; some are repeated or left out for {:.4g} frames a second",
                   av_q2d(rate_));
    }
}

void ConstantRate::WriteHeld(int64_t untilPlace) {
    if (untilPlace > heldPlace_ + 1) Tell();
    for (; heldPlace_ + 1 < untilPlace; ++heldPlace_) {
        Frame repeated = held_.Share();
        repeated.SetTime(heldPlace_);
        output_->Write(std::move(repeated));
    }
    held_.SetTime(heldPlace_);
    output_->Write(std::move(held_));
}

void ConstantRate::Write(Frame frame) {
    const int64_t place = PlaceOf(frame.Time());
    if (held_) {
        if (place <= heldPlace_) {
            Tell();
            return;
        }
        WriteHeld(place);
    }
    held_ = std::move(frame);
    heldPlace_ = place;
}

void ConstantRate::Finish(int64_t end) {
    const int64_t endPlace = std::max<int64_t>(PlaceOf(end), 1);
    if (held_ && (heldPlace_ < endPlace || output_->FrameCount() == 0)) {
        WriteHeld(std::max(endPlace, heldPlace_ + 1));
    }
    output_->Finish(endPlace);
}

}  // namespace host
