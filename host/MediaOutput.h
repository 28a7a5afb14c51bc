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

    OutputFile m_file;
    OutputContextPtr m_output;
    CodecContextPtr m_encoder;
    AVStream* m_video = nullptr;
    std::map<int, AudioTrack> m_audio;  // by the input's stream number
    AVRational m_inputTimeBase;
    int64_t m_lastTime = -1;  // in the encoder's ticks
    int64_t m_ticksPerFrame = 1;
    Converter m_converter;
};

}  // namespace host

#endif
