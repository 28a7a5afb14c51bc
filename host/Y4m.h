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

    void Write(Frame frame) override;
    void Finish(int64_t) override {}
    int64_t FrameCount() const override { return count_; }

  private:
    int64_t count_ = 0;
};

/// To a file.
class Y4mFile : public VideoOutput {
  public:
    Y4mFile(const std::string& path, const StreamInfo& stream, bool overwrite);

    void Write(Frame frame) override;
    void Finish(int64_t) override { file_.Commit(); }
    int64_t FrameCount() const override { return count_; }

  private:
    OutputFile file_;
    int64_t count_ = 0;
};

}  // namespace host

#endif
