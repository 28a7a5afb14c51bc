#include "Libav.h"

#include <new>

#include "Errors.h"

extern "C" {
#include <libavdevice/avdevice.h>
}

namespace host {
namespace {

template <class T>
T* NotNull(T* object) {
    if (object == nullptr) throw std::bad_alloc();
    return object;
}

}  // namespace

PacketPtr NewPacket() {
    return PacketPtr(NotNull(av_packet_alloc()));
}

AVFramePtr NewAVFrame() {
    return AVFramePtr(NotNull(av_frame_alloc()));
}

AVFramePtr NewAVFrame(int width, int height, AVPixelFormat format) {
    AVFramePtr frame = NewAVFrame();
    frame->width = width;
    frame->height = height;
    frame->format = format;
    const int result = av_frame_get_buffer(frame.get(), 0);
    if (result == AVERROR(EINVAL)) {
        throw Failure("pictures of {}x{} are too large for FFmpeg's libraries", width, height);
    }
    if (result < 0) throw std::bad_alloc();
    return frame;
}

CodecContextPtr NewCodecContext(const AVCodec* codec) {
    return CodecContextPtr(NotNull(avcodec_alloc_context3(codec)));
}

std::string LibavText(int result) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(result, text, sizeof text);
    return text;
}

void SetUpLibav() {
    av_log_set_level(AV_LOG_QUIET);
    avdevice_register_all();
}

std::string FileUrl(const std::string& path) {
    return "file:" + path;
}

}  // namespace host
