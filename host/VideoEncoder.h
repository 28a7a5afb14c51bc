// Frames become compressed video.
#ifndef SPECIALEFFECTS_HOST_VIDEOENCODER_H
#define SPECIALEFFECTS_HOST_VIDEOENCODER_H

#include <optional>
#include <string>

#include "FilterGraph.h"
#include "Muxer.h"
#include "Scaler.h"
#include "VideoOutput.h"

namespace host {

class VideoEncoder {
  public:
    /// Adds a stream to the muxer. Throws UsageError for a codec that the container does not take, and for
    /// options that the encoder does not have.
    VideoEncoder(Muxer& muxer, const StreamInfo& stream, const OutputOptions& options);

    void Write(Frame frame);
    void Finish();

  private:
    void Choose(const OutputOptions& options);
    void Configure(const StreamInfo& stream);
    void Open(const OutputOptions& options);
    bool TakesFramesAsTheyAre(const Frame& frame) const;
    void Encode(const AVFrame* picture);

    Muxer& muxer_;
    const AVCodec* codec_ = nullptr;
    CodecContextPtr encoder_;
    AVStream* stream_ = nullptr;
    AVRational inputTimeBase_;
    int64_t lastTime_ = -1;  // in the encoder's ticks
    int64_t ticksPerFrame_ = 1;
    Scaler scaler_;
    std::optional<FilterGraph> palette_;  // of a GIF
};

}  // namespace host

#endif
