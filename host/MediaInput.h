// Video and pictures that FFmpeg's libraries read: files, streams on standard input, cameras.
#ifndef SPECIALEFFECTS_HOST_MEDIAINPUT_H
#define SPECIALEFFECTS_HOST_MEDIAINPUT_H

#include <deque>

#include "VideoInput.h"

namespace host {

class MediaInput : public VideoInput {
  public:
    /// `name` is a file, a camera's device or "-".
    MediaInput(const std::string& name, const InputOptions& options, const Notes& notes);

    bool Read(Frame& frame) override;
    std::vector<const AVStream*> AudioStreams() const override;
    PacketPtr NextAudio(int64_t end, bool readOn) override;
    std::string Shortfall() const override;

  private:
    void OpenFile(const std::string& name);
    void OpenCamera(const std::string& name, const InputOptions& options);
    void OpenDecoder();
    void Describe(const InputOptions& options, const Notes& notes);
    bool IsStillPicture() const;
    bool HasUnusedStreams() const;

    bool DecodeNext();
    bool ReadPacket();
    bool TakeAudioPacket();
    void Deliver(Frame& frame);
    int64_t TimeOf(const AVFrame& picture);

    AVStream& VideoStream() const { return *input_->streams[videoIndex_]; }

    std::string name_;
    InputContextPtr input_;
    CodecContextPtr decoder_;
    PacketPtr packet_;
    AVFramePtr picture_;
    Converter converter_;
    int videoIndex_ = -1;
    int quarterTurns_ = 0;
    std::deque<PacketPtr> audio_;

    bool inputEnded_ = false;
    std::string readError_;
    int64_t packetCount_ = 0;   // of video
    int64_t damagedCount_ = 0;  // packets that are cut short or cannot be decoded
    int64_t frameCount_ = 0;
    int64_t lastTime_ = -1;
    int64_t packetsEnd_ = 0;  // when the last packet of any stream ends, in units of AV_TIME_BASE
};

}  // namespace host

#endif
