// Video files, with what belongs to the video.
#ifndef SPECIALEFFECTS_HOST_MEDIAOUTPUT_H
#define SPECIALEFFECTS_HOST_MEDIAOUTPUT_H

#include <map>

#include "Track.h"
#include "VideoEncoder.h"

namespace host {

class MediaOutput : public VideoOutput {
  public:
    /// Carries the other streams, chapters and tags of `input` along; a note lists what the container does
    /// not take. `stream` describes the frames that come, which need not be those of the input.
    MediaOutput(const std::string& path, const StreamInfo& stream, const VideoInput& input,
                const OutputOptions& options, const Notes& notes);

    void Write(Frame frame) override;
    void WritePacket(PacketPtr packet) override;
    void Finish(int64_t end) override;
    int64_t FrameCount() const override { return count_; }

  private:
    Muxer muxer_;
    VideoEncoder video_;
    std::map<int, std::unique_ptr<Track>> tracks_;  // by the input's stream number
    int64_t count_ = 0;
};

}  // namespace host

#endif
