#include "CameraOutput.h"

#include <sys/stat.h>

#include <cerrno>
#include <thread>

#include "Camera.h"
#include "Interrupt.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace host {

CameraOutput::CameraOutput(const std::string& device, const StreamInfo& stream)
    : device_(device), stream_(stream) {
    struct stat status {};
    if (stat(device.c_str(), &status) != 0) {
        const int error = errno;
        throw Failure("cannot open {}: {}{}", device, SystemText(error), CameraAdvice(device, error));
    }
    AVFormatContext* context = nullptr;
    const int found = avformat_alloc_output_context2(&context, nullptr, "v4l2", device.c_str());
    if (found < 0) throw Failure("cannot write to {}: FFmpeg's libraries here have no V4L2 output", device);
    output_.reset(context);
    AVStream* video = avformat_new_stream(context, nullptr);
    if (video == nullptr) throw std::bad_alloc();
    video->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
    video->codecpar->codec_id = AV_CODEC_ID_RAWVIDEO;
    video->codecpar->format = AV_PIX_FMT_YUV420P;
    video->codecpar->width = stream.size.width;
    video->codecpar->height = stream.size.height;
    video->time_base = stream.timeBase;
    const int result = avformat_write_header(context, nullptr);
    if (result < 0) {
        throw Failure("cannot open {} as a virtual camera: {}{}", device, LibavText(result),
                      CameraAdvice(device, AVUNERROR(result)));
    }
}

void CameraOutput::WaitFor(int64_t time) {
    const auto now = Clock::now();
    const std::chrono::duration<double> offset(static_cast<double>(time) * av_q2d(stream_.timeBase));
    const auto passed = std::chrono::duration_cast<Clock::duration>(offset);
    if (!start_) start_ = now - passed;
    const auto due = *start_ + passed;
    if (due > now && !Interrupted()) std::this_thread::sleep_until(due);
}

void CameraOutput::Write(Frame frame) {
    if (stream_.kind != InputKind::Live) WaitFor(frame.Time());
    // The device does not carry the range: readers assume the limited one.
    if (IsFullRange(frame.Picture())) {
        Frame limited(frame.Width(), frame.Height());
        limited.SetTime(frame.Time());
        scaler_.Convert(frame.Picture(), limited.Picture());
        frame = std::move(limited);
    }
    const int size = av_image_get_buffer_size(AV_PIX_FMT_YUV420P, frame.Width(), frame.Height(), 1);
    const PacketPtr packet = NewPacket();
    if (av_new_packet(packet.get(), size) < 0) throw std::bad_alloc();
    av_image_copy_to_buffer(packet->data, size, frame.Picture().data, frame.Picture().linesize,
                            AV_PIX_FMT_YUV420P, frame.Width(), frame.Height(), 1);
    packet->pts = packet->dts = frame.Time();
    const int result = av_write_frame(output_.get(), packet.get());
    if (result < 0) throw Failure("cannot write to {}: {}", device_, LibavText(result));
    ++count_;
}

void CameraOutput::Finish(int64_t) {
    av_write_trailer(output_.get());
}

}  // namespace host
