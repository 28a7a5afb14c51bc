// Frames at varying times become frames at a constant rate.
#ifndef SPECIALEFFECTS_HOST_CONSTANTRATE_H
#define SPECIALEFFECTS_HOST_CONSTANTRATE_H

#include "VideoOutput.h"

namespace host {

/// Repeats frames and leaves some out on their way to another output. Each frame is shown at the time of the
/// rate that is nearest to its own. A gap of more than an hour is closed, with a note: a damaged time would
/// otherwise fill the disk with repeated frames.
class ConstantRate : public VideoOutput {
  public:
    /// `output` gets times in units of 1/`rate`. `notes` gets a note on the first frame that is repeated or
    /// left out, unless `isAsked` says that the user asked for the rate.
    ConstantRate(std::unique_ptr<VideoOutput> output, AVRational timeBase, AVRational rate, bool isAsked,
                 const Notes& notes);

    void Write(Frame frame) override;
    void WritePacket(PacketPtr packet) override { output_->WritePacket(std::move(packet)); }
    void Finish(int64_t end) override;
    int64_t FrameCount() const override { return output_->FrameCount(); }

  private:
    int64_t PlaceOf(int64_t time);
    void WriteHeld(int64_t untilPlace);
    void Tell();

    std::unique_ptr<VideoOutput> output_;
    AVRational timeBase_;
    AVRational rate_;
    bool isTold_;
    const Notes& notes_;
    Frame held_;
    int64_t heldPlace_ = 0;
    int64_t closed_ = 0;  // places in the gaps so far
};

}  // namespace host

#endif
