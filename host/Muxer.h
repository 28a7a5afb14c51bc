// A container that is being written.
#ifndef SPECIALEFFECTS_HOST_MUXER_H
#define SPECIALEFFECTS_HOST_MUXER_H

#include <string>
#include <vector>

#include "Containers.h"
#include "OutputFile.h"

namespace host {

class Muxer {
  public:
    /// Throws Failure when the file cannot be written.
    Muxer(const std::string& path, const Container& container, bool overwrite);
    Muxer(const Muxer&) = delete;
    Muxer& operator=(const Muxer&) = delete;
    ~Muxer();

    const std::string& Path() const { return file_.Path(); }
    const Container& Kind() const { return container_; }
    AVFormatContext& Context() const { return *context_; }

    /// Streams are added before Start.
    AVStream& AddStream();
    void Start();

    /// `packet` has its times in `timeBase`. What would go back in time is left out: no container takes it.
    void Write(AVPacket& packet, const AVStream& stream, AVRational timeBase);

    /// Writes what comes out of an encoder that has been given all it gets for now.
    void WriteEncoded(AVCodecContext& encoder, const AVStream& stream, int64_t usualDuration = 0);

    /// Completes the file and gives it its name.
    void Finish();

    /// Two frames are this far apart. Check names a gap of hours where the libraries refuse the file after
    /// it.
    void NoteGap(double seconds);

    /// Throws Failure for a negative result of the libraries.
    void Check(int result) const;

  private:
    const Container& container_;
    OutputFile file_;
    OutputContextPtr context_;
    bool hasHeader_ = false;          // and no trailer yet
    std::vector<int64_t> lastTimes_;  // of each stream
    double longestGap_ = 0;           // between two frames, in seconds
};

}  // namespace host

#endif
