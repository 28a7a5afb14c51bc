#include "Y4m.h"

#include <unistd.h>

#include <string_view>

#include "StandardOutput.h"

namespace host {
namespace {

constexpr std::string_view kFrameHeader = "FRAME\n";

// Hands one frame to `write` plane by plane.
template <class Write>
void WriteFrame(const Frame& frame, Write write) {
    write(kFrameHeader.data(), kFrameHeader.size());
    for (int plane = 0; plane < Frame::kPlanes; ++plane) {
        write(frame.Plane(plane),
              static_cast<size_t>(frame.RowBytes(plane)) * static_cast<size_t>(frame.Rows(plane)));
    }
}

const char* ChromaName(AVChromaLocation location) {
    switch (location) {
        case AVCHROMA_LOC_LEFT:
            return "420mpeg2";
        case AVCHROMA_LOC_TOPLEFT:
            return "420paldv";
        default:
            return "420jpeg";
    }
}

}  // namespace

std::string Y4mHeader(const StreamInfo& stream) {
    return fmt::format("YUV4MPEG2 W{} H{} F{}:{} Ip A{}:{} C{} XCOLORRANGE={}\n", stream.size.width,
                       stream.size.height, stream.frameRate.num, stream.frameRate.den, stream.pixelAspect.num,
                       stream.pixelAspect.den, ChromaName(stream.color.chroma),
                       stream.color.range == AVCOL_RANGE_JPEG ? "FULL" : "LIMITED");
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

void Y4mPipe::Write(Frame frame) {
    WriteFrame(frame, WriteStandardOutput);
    ++count_;
}

Y4mFile::Y4mFile(const std::string& path, const StreamInfo& stream, bool overwrite) : file_(path, overwrite) {
    const std::string header = Y4mHeader(stream);
    file_.Write(header.data(), header.size());
}

void Y4mFile::Write(Frame frame) {
    WriteFrame(frame, [this](const void* bytes, size_t size) { file_.Write(bytes, size); });
    ++count_;
}

}  // namespace host
