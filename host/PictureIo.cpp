#include "PictureIo.h"

#include <algorithm>

namespace host {
namespace {

struct PictureFormat {
    const char* extension;
    AVCodecID codec;
    AVPixelFormat pixels;
};

constexpr int kQuality = 2;  // of a JPEG: nearly the best

constexpr PictureFormat kFormats[] = {
    {".png", AV_CODEC_ID_PNG, AV_PIX_FMT_RGB24},
    {".jpg", AV_CODEC_ID_MJPEG, AV_PIX_FMT_YUVJ420P},
    {".jpeg", AV_CODEC_ID_MJPEG, AV_PIX_FMT_YUVJ420P},
};

const PictureFormat* FormatOf(const std::string& path) {
    const std::string extension = ExtensionOf(path);
    const auto* found =
        std::find_if(std::begin(kFormats), std::end(kFormats),
                     [&extension](const PictureFormat& f) { return extension == f.extension; });
    return found == std::end(kFormats) ? nullptr : found;
}

PacketPtr Encode(const AVFrame& picture, const PictureFormat& format, const std::string& path) {
    const AVCodec* codec = avcodec_find_encoder(format.codec);
    if (codec == nullptr)
        throw Failure("cannot write {}: FFmpeg's libraries here have no encoder for it", path);
    const CodecContextPtr encoder(avcodec_alloc_context3(codec));
    if (!encoder) throw std::bad_alloc();
    encoder->width = picture.width;
    encoder->height = picture.height;
    encoder->pix_fmt = format.pixels;
    encoder->time_base = {1, 1};
    encoder->flags |= AV_CODEC_FLAG_QSCALE | AV_CODEC_FLAG_BITEXACT;
    encoder->global_quality = kQuality * FF_QP2LAMBDA;
    encoder->thread_count = 1;
    PacketPtr packet = NewPacket();
    int result = avcodec_open2(encoder.get(), codec, nullptr);
    if (result >= 0) result = avcodec_send_frame(encoder.get(), &picture);
    if (result >= 0) result = avcodec_send_frame(encoder.get(), nullptr);
    if (result >= 0) result = avcodec_receive_packet(encoder.get(), packet.get());
    if (result < 0) throw Failure("cannot encode {}: {}", path, LibavText(result));
    return packet;
}

}  // namespace

bool IsPictureName(const std::string& path) {
    return FormatOf(path) != nullptr;
}

PictureInput::PictureInput(VideoInput& source, int32_t format)
    : picture_(source.Stream().size.width, source.Stream().size.height, format) {
    stream_ = source.Stream();
    if (!source.Read(picture_)) throw Failure("the picture cannot be decoded");
}

bool PictureInput::Read(Frame& frame) {
    frame = picture_;
    frame.time = count_++ * stream_.TicksPerFrame();
    return true;
}

PictureOutput::PictureOutput(const std::string& path, const StreamInfo& stream)
    : file_(path), colorSpace_(stream.colorSpace) {}

void PictureOutput::Write(const Frame& frame) {
    const PictureFormat& format = *FormatOf(file_.Path());
    const AVFramePtr view = ViewOf(frame);
    view->colorspace = colorSpace_;
    Converter converter;
    const AVFrame& converted = converter.Convert(*view, frame.Width(), frame.Height(), format.pixels);
    // The encoder wants planes of its own kind of memory.
    const AVFramePtr picture = NewAVFrame(frame.Width(), frame.Height(), format.pixels);
    if (av_frame_copy(picture.get(), &converted) < 0) throw Failure("cannot encode {}", file_.Path());
    picture->pts = 0;
    picture->quality = kQuality * FF_QP2LAMBDA;
    encoded_ = Encode(*picture, format, file_.Path());
}

void PictureOutput::Finish() {
    if (!encoded_) throw Failure("there is no frame for {}", file_.Path());
    file_.Write(encoded_->data, static_cast<size_t>(encoded_->size));
    file_.Commit();
}

}  // namespace host
