// A virtual camera: a V4L2 loopback device that other programs read.
#ifndef SPECIALEFFECTS_HOST_CAMERAOUTPUT_H
#define SPECIALEFFECTS_HOST_CAMERAOUTPUT_H

#include <chrono>
#include <optional>

#include "Scaler.h"
#include "VideoOutput.h"

namespace host {

class CameraOutput : public VideoOutput {
  public:
    CameraOutput(const std::string& device, const StreamInfo& stream);

    /// Returns when the frame's time has come: a file plays at its own speed.
    void Write(Frame frame) override;
    void Finish(int64_t end) override;
    int64_t FrameCount() const override { return count_; }

  private:
    using Clock = std::chrono::steady_clock;

    void WaitFor(int64_t time);

    std::string device_;
    StreamInfo stream_;
    OutputContextPtr output_;
    Scaler scaler_;
    int64_t count_ = 0;
    std::optional<Clock::time_point> start_;
};

}  // namespace host

#endif
