#include "ConstantRate.h"

#include <algorithm>
#include <utility>

namespace host {

ConstantRate::ConstantRate(std::unique_ptr<VideoOutput> output, AVRational timeBase, AVRational rate,
                           bool isAsked, const Notes& notes)
    : output_(std::move(output)), timeBase_(timeBase), rate_(rate), isTold_(isAsked), notes_(notes) {}

// In the output, for a time after that of the held frame.
int64_t ConstantRate::PlaceOf(int64_t time) {
    constexpr int64_t kLongestGap = 3600;  // seconds
    const int64_t place = av_rescale_q_rnd(time, timeBase_, av_inv_q(rate_), AV_ROUND_NEAR_INF) - closed_;
    const int64_t longest = std::max<int64_t>(av_rescale_q(kLongestGap, {1, 1}, av_inv_q(rate_)), 1);
    if (!held_ || place - heldPlace_ <= longest) return place;
    const int64_t gap = place - heldPlace_ - 1;
    notes_.Add("a gap of {:.1f} hours between two frames is left out; the times may be damaged",
               static_cast<double>(gap) / av_q2d(rate_) / 3600);
    closed_ += gap;
    return heldPlace_ + 1;
}

void ConstantRate::Tell() {
    if (std::exchange(isTold_, true)) return;
    notes_.Add("frames come at varying times; some are repeated or left out for {:.4g} frames a second",
               av_q2d(rate_));
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
