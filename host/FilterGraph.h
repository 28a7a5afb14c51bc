// A chain of FFmpeg's filters with one input and one output.
#ifndef SPECIALEFFECTS_HOST_FILTERGRAPH_H
#define SPECIALEFFECTS_HOST_FILTERGRAPH_H

#include <string>

#include "Libav.h"

namespace host {

class FilterGraph {
  public:
    /// `filters` as ffmpeg's -vf and -af take them. Frames look like `first`; for pictures `timeBase` is that
    /// of their times, for sound it is one sample. Throws Failure.
    FilterGraph(const std::string& filters, const AVFrame& first, AVRational timeBase);

    /// Gives a frame in, or the end with null. The graph takes a reference of its own.
    void Send(const AVFrame* frame);

    /// The next frame that comes out; null when more has to go in first, or at the end.
    AVFramePtr Receive();

    AVRational TimeBase() const;

    /// For sound: samples in a frame that comes out, the last one excepted. 0 means any number.
    void SetFrameSize(int samples);

  private:
    FilterGraphPtr graph_;
    AVFilterContext* source_ = nullptr;
    AVFilterContext* sink_ = nullptr;
};

/// Whether FFmpeg's libraries here have a filter of this name.
bool HasFilter(const char* name);

}  // namespace host

#endif
