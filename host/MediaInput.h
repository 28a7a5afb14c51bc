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

    bool DecodeNext();
    bool ReadPacket();
    bool TakeAudioPacket();
    void Deliver(Frame& frame);
    int64_t TimeOf(const AVFrame& picture);

    AVStream& VideoStream() const { return *m_input->streams[m_videoIndex]; }

    std::string m_name;
    InputContextPtr m_input;
    CodecContextPtr m_decoder;
    PacketPtr m_packet;
    AVFramePtr m_picture;
    Converter m_converter;
    int m_videoIndex = -1;
    int m_quarterTurns = 0;
    std::deque<PacketPtr> m_audio;

    bool m_inputEnded = false;
    std::string m_readError;
    int64_t m_packetCount = 0;   // of video
    int64_t m_damagedCount = 0;  // packets that are cut short or cannot be decoded
    int64_t m_frameCount = 0;
    int64_t m_lastTime = -1;
};

}  // namespace host

#endif
