// The streams beside the video: sound, subtitles, cover pictures.
#ifndef SPECIALEFFECTS_HOST_TRACK_H
#define SPECIALEFFECTS_HOST_TRACK_H

#include <memory>
#include <span>

#include "Muxer.h"
#include "VideoOutput.h"

namespace host {

/// A stream of the input on its way to the output.
class Track {
  public:
    virtual ~Track() = default;

    /// A packet in the ticks of the input's stream. Throws Failure.
    virtual void Write(PacketPtr packet) = 0;

    /// After the last packet, before the muxer is finished.
    virtual void Finish() {}
};

/// Adds a stream to the muxer that carries on the input's. Null when the container has no place for it.
/// Throws UsageError when the container does not take the sound that the user asks for.
std::unique_ptr<Track> MakeTrack(const AVStream& input, Muxer& muxer, Sound sound);

/// Hands packets on as they are.
std::unique_ptr<Track> CopyTrack(const AVStream& input, Muxer& muxer);

/// Decodes sound and encodes it with the first available encoder; null without one, or
/// when the sound cannot be decoded.
std::unique_ptr<Track> EncodeSound(const AVStream& input, Muxer& muxer,
                                   std::span<const char* const> encoders);

/// The same for subtitles of text.
std::unique_ptr<Track> EncodeSubtitles(const AVStream& input, Muxer& muxer);

/// Language, title and the like, and what the stream is for.
void CopyStreamTags(const AVStream& from, AVStream& to);

}  // namespace host

#endif
