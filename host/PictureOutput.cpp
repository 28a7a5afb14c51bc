#include "PictureOutput.h"

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

PacketPtr Encode(const Frame& frame, AVRational pixelAspect, const std::string& path) {
    const PictureFormat& format = *FormatOf(path);
    const Size size = SquarePixels(frame.Picture(), pixelAspect);
    const AVFramePtr picture = NewAVFrame(size.width, size.height, format.pixels);
    Scaler().Convert(frame.Picture(), *picture);
    picture->pts = 0;
    picture->quality = kQuality * FF_QP2LAMBDA;

    const AVCodec* codec = avcodec_find_encoder(format.codec);
    if (codec == nullptr)
        throw Failure("cannot write {}: FFmpeg's libraries here have no encoder for it", path);
    const CodecContextPtr encoder = NewCodecContext(codec);
    encoder->width = picture->width;
    encoder->height = picture->height;
    encoder->pix_fmt = format.pixels;
    encoder->time_base = {1, 1};
    encoder->flags |= AV_CODEC_FLAG_QSCALE | AV_CODEC_FLAG_BITEXACT;
    encoder->global_quality = kQuality * FF_QP2LAMBDA;
    encoder->thread_count = 1;
    PacketPtr packet = NewPacket();
    int result = avcodec_open2(encoder.get(), codec, nullptr);
    if (result >= 0) result = avcodec_send_frame(encoder.get(), picture.get());
    if (result >= 0) result = avcodec_send_frame(encoder.get(), nullptr);
    if (result >= 0) result = avcodec_receive_packet(encoder.get(), packet.get());
    if (result < 0) throw Failure("cannot encode {}: {}", path, LibavText(result));
    return packet;
}

}  // namespace

bool IsPictureName(const std::string& path) {
    return FormatOf(path) != nullptr;
}

Size SquarePixels(const AVFrame& picture, AVRational pixelAspect) {
    if (pixelAspect.num <= 0 || pixelAspect.den <= 0) return {picture.width, picture.height};
    const int64_t width = av_rescale(picture.width, pixelAspect.num, pixelAspect.den);
    return {static_cast<int>(std::clamp<int64_t>(width, 1, kLargestSide)), picture.height};
}

PictureOutput::PictureOutput(const std::string& path, const StreamInfo& stream, bool overwrite)
    : file_(path, overwrite), pixelAspect_(stream.pixelAspect) {}

void PictureOutput::Write(Frame frame) {
    encoded_ = Encode(frame, pixelAspect_, file_.Path());
}

void PictureOutput::Finish(int64_t) {
    if (!encoded_) throw Failure("there is no frame for {}", file_.Path());
    file_.Write(encoded_->data, static_cast<size_t>(encoded_->size));
    file_.Commit();
}

SequenceOutput::SequenceOutput(const std::string& pattern, const StreamInfo& stream, bool overwrite)
    : pattern_(pattern), pixelAspect_(stream.pixelAspect), overwrite_(overwrite) {
    CheckOverwriting(SequenceMember(pattern, 1), overwrite);
}

void SequenceOutput::Write(Frame frame) {
    const std::string path = SequenceMember(pattern_, FrameCount() + 1);
    auto file = std::make_unique<OutputFile>(path, overwrite_);
    const PacketPtr encoded = Encode(frame, pixelAspect_, path);
    file->Write(encoded->data, static_cast<size_t>(encoded->size));
    file->Close();
    files_.push_back(std::move(file));
}

void SequenceOutput::Finish(int64_t) {
    for (const auto& file : files_) file->Commit();
}

}  // namespace host
