#include "Y4m.h"

#include <unistd.h>

#include <string_view>

#include "StandardOutput.h"

namespace host {
namespace {

constexpr std::string_view kFrameHeader = "FRAME\n";

// Hands one frame to `write` in pieces.
template <class Write>
void WriteFrame(const Frame& frame, Converter& converter, Write write) {
    write(kFrameHeader.data(), kFrameHeader.size());
    if (frame.Format() == kFormatPlanar) {
        write(frame.Plane(0), frame.Size());
        return;
    }
    const AVFramePtr view = ViewOf(frame);
    const AVFrame& planar = converter.Convert(*view, frame.Width(), frame.Height(), AV_PIX_FMT_YUV420P);
    for (int plane = 0; plane < 3; ++plane) {
        const int width = plane == 0 ? frame.Width() : frame.Width() / 2;
        const int height = plane == 0 ? frame.Height() : frame.Height() / 2;
        for (int y = 0; y < height; ++y) {
            write(planar.data[plane] + static_cast<ptrdiff_t>(y) * planar.linesize[plane],
                  static_cast<size_t>(width));
        }
    }
}

}  // namespace

std::string Y4mHeader(const StreamInfo& stream) {
    return fmt::format("YUV4MPEG2 W{} H{} F{}:{} Ip A{}:{} C420jpeg XCOLORRANGE=LIMITED\n", stream.size.width,
                       stream.size.height, stream.frameRate.num, stream.frameRate.den, stream.pixelAspect.num,
                       stream.pixelAspect.den);
}

bool IsY4mName(const std::string& path) {
    return ExtensionOf(path) == ".y4m";
}

Y4mPipe::Y4mPipe(const StreamInfo& stream) {
    if (isatty(STDOUT_FILENO) != 0) {
        throw UsageError("standard output is a terminal; pipe it into a player or an encoder");
    }
    const std::string header = Y4mHeader(stream);
    WriteStandardOutput(header.data(), header.size());
}

void Y4mPipe::Write(const Frame& frame) {
    WriteFrame(frame, converter_, WriteStandardOutput);
}

Y4mFile::Y4mFile(const std::string& path, const StreamInfo& stream) : file_(path) {
    const std::string header = Y4mHeader(stream);
    file_.Write(header.data(), header.size());
}

void Y4mFile::Write(const Frame& frame) {
    WriteFrame(frame, converter_, [this](const void* bytes, size_t size) { file_.Write(bytes, size); });
}

}  // namespace host
