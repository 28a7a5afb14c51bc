// Streams of uncompressed frames, 8-bit 4:2:0, in YUV4MPEG2 files (.y4m).
#ifndef SPECIALEFFECTS_HOST_SMALL_Y4MSTREAM_H
#define SPECIALEFFECTS_HOST_SMALL_Y4MSTREAM_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

/// Everything here throws std::runtime_error.
class Y4mReader {
  public:
    explicit Y4mReader(const std::string& path);

    /// The first line, without its end.
    const std::string& Header() const { return header_; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    int64_t Nanoseconds(int64_t frame) const;

    /// Fills `pixels`, which holds a frame. False at the end.
    bool Read(std::vector<uint8_t>& pixels);

  private:
    std::string path_, header_;
    OpenFile file_;
    int width_ = 0, height_ = 0;
    int64_t rate_ = 30, base_ = 1;  ///< frames in so many seconds
};

class Y4mWriter {
  public:
    Y4mWriter(const std::string& path, const std::string& header);
    void Write(const std::vector<uint8_t>& pixels);
    void Close();

  private:
    std::string path_;
    OpenFile file_;
};

#endif
