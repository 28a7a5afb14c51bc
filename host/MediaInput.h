// Video that FFmpeg's libraries read: files, URLs, standard input, cameras.
#ifndef SPECIALEFFECTS_HOST_MEDIAINPUT_H
#define SPECIALEFFECTS_HOST_MEDIAINPUT_H

#include <deque>

#include "Intake.h"
#include "MediaSource.h"
#include "VideoInput.h"

namespace host {

class MediaInput : public VideoInput {
  public:
    /// `name` is a file, a URL, a sequence, a camera's device or "-".
    MediaInput(const std::string& name, const InputOptions& options, const Notes& notes);

    std::optional<InputItem> Next() override;
    void EndAt(int64_t end) override;
    const AVFormatContext* Container() const override { return &source_.Context(); }
    int VideoIndex() const override { return videoIndex_; }
    int64_t Origin() const override { return origin_; }
    std::string Shortfall() const override;

  private:
    void OpenDecoder();
    void Seek(double seconds);
    void Describe(const InputOptions& options, const Notes& notes);
    bool IsStillPicture() const;
    bool HasUnusedStreams() const;

    bool DecodeNext();
    bool ReadPacket();
    bool QueuePacket();
    bool IsDue(const AVPacket& packet) const;
    Frame TakePicture();
    int64_t TimeOf(const AVFrame& picture) const;

    AVStream& VideoStream() const { return *source_.Context().streams[videoIndex_]; }

    MediaSource source_;
    CodecContextPtr decoder_;
    PacketPtr packet_;
    AVFramePtr picture_;  // decoded and not yet taken
    std::optional<Intake> intake_;
    int videoIndex_ = -1;
    int quarterTurns_ = 0;
    int64_t origin_ = 0;
    bool hasSkipped_ = false;
    std::deque<PacketPtr> packets_;  // of other streams

    bool inputEnded_ = false;
    bool framesEnded_ = false;
    std::string readError_;
    int64_t packetCount_ = 0;   // of video
    int64_t frameCount_ = 0;    // that were taken
    int64_t damagedCount_ = 0;  // packets that are cut short or cannot be decoded
    int64_t lastTime_ = -1;
    int64_t end_ = 0;         // of the frames so far, or what EndAt says
    int64_t packetsEnd_ = 0;  // when the last packet of any stream ends, in units of AV_TIME_BASE
};

}  // namespace host

#endif
