// Video without compression, for pipes: the YUV4MPEG2 stream that players and encoders read.
#ifndef SPECIALEFFECTS_HOST_Y4M_H
#define SPECIALEFFECTS_HOST_Y4M_H

#include "VideoOutput.h"

namespace host {

/// The line that a stream begins with.
std::string Y4mHeader(const StreamInfo& stream);

bool IsY4mName(const std::string& path);

/// To standard output.
class Y4mPipe : public VideoOutput {
  public:
    /// Throws UsageError when standard output is a terminal.
    explicit Y4mPipe(const StreamInfo& stream);

    void Write(const Frame& frame) override;
    void Finish() override {}

  private:
    Converter converter_;
};

/// To a file.
class Y4mFile : public VideoOutput {
  public:
    Y4mFile(const std::string& path, const StreamInfo& stream);

    void Write(const Frame& frame) override;
    void Finish() override { file_.Commit(); }

  private:
    OutputFile file_;
    Converter converter_;
};

}  // namespace host

#endif
