// Compressed video files, with the sound of the input.
#ifndef SPECIALEFFECTS_HOST_MEDIAOUTPUT_H
#define SPECIALEFFECTS_HOST_MEDIAOUTPUT_H

#include <map>
#include <vector>

#include "VideoOutput.h"

namespace host {

/// Whether the extension is one that MediaOutput writes.
bool IsMediaName(const std::string& path);

class MediaOutput : public VideoOutput {
  public:
    MediaOutput(const std::string& path, const StreamInfo& stream, const std::vector<const AVStream*>& audio,
                const Notes& notes);
    ~MediaOutput() override;

    void Write(const Frame& frame) override;
    void WriteAudio(PacketPtr packet) override;
    void Finish() override;

  private:
    struct AudioTrack {
        AVStream* stream;
        AVRational inputTimeBase;
        int64_t lastTime = AV_NOPTS_VALUE;
    };

    void OpenEncoder(const StreamInfo& stream);
    void AddAudio(const AVStream& input, const Notes& notes);
    void Encode(const AVFrame* picture);
    void Mux(AVPacket& packet);
    void Check(int result) const;

    OutputFile file_;
    OutputContextPtr output_;
    CodecContextPtr encoder_;
    AVStream* video_ = nullptr;
    std::map<int, AudioTrack> audio_;  // by the input's stream number
    AVRational inputTimeBase_;
    int64_t lastTime_ = -1;  // in the encoder's ticks
    int64_t ticksPerFrame_ = 1;
    Converter converter_;
};

}  // namespace host

#endif
