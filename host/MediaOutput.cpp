#include "MediaOutput.h"

#include <algorithm>
#include <span>
#include <string_view>

extern "C" {
#include <libavutil/opt.h>
}

namespace host {
namespace {

struct EncoderSetting {
    const char* key;
    const char* value;
};

constexpr EncoderSetting kX264Settings[] = {{"preset", "veryfast"}, {"crf", "20"}};
constexpr EncoderSetting kVp9Settings[] = {
    {"deadline", "realtime"}, {"cpu-used", "6"}, {"row-mt", "1"}, {"crf", "28"}, {"b", "0"}};
constexpr EncoderSetting kVp8Settings[] = {
    {"deadline", "realtime"}, {"cpu-used", "4"}, {"crf", "10"}, {"b", "4000000"}};

struct VideoEncoder {
    const char* name;
    std::span<const EncoderSetting> settings;
};

// In order of preference.
constexpr VideoEncoder kCommonEncoders[] = {{"libx264", kX264Settings}, {"mpeg4", {}}};
constexpr VideoEncoder kWebmEncoders[] = {{"libvpx-vp9", kVp9Settings}, {"libvpx", kVp8Settings}};

struct Container {
    std::string_view extension;
    const char* muxer;
    std::span<const VideoEncoder> encoders;
};

constexpr Container kContainers[] = {
    {".mp4", "mp4", kCommonEncoders},
    {".mkv", "matroska", kCommonEncoders},
    {".webm", "webm", kWebmEncoders},
};

const Container* ContainerOf(const std::string& path) {
    const std::string extension = ExtensionOf(path);
    const auto* found = std::find_if(std::begin(kContainers), std::end(kContainers),
                                     [&extension](const Container& c) { return extension == c.extension; });
    return found == std::end(kContainers) ? nullptr : found;
}

}  // namespace

bool IsMediaName(const std::string& path) {
    return ContainerOf(path) != nullptr;
}

MediaOutput::MediaOutput(const std::string& path, const StreamInfo& stream,
                         const std::vector<const AVStream*>& audio, const Notes& notes)
    : file_(path), inputTimeBase_(stream.timeBase) {
    AVFormatContext* context = nullptr;
    // The muxer is named: the name of the file that is written ends in .part.
    const std::string url = FileUrl(file_.PartPath());
    Check(avformat_alloc_output_context2(&context, nullptr, ContainerOf(path)->muxer, url.c_str()));
    output_.reset(context);
    OpenEncoder(stream);
    for (const AVStream* input : audio) AddAudio(*input, notes);
    Check(avio_open(&output_->pb, url.c_str(), AVIO_FLAG_WRITE));
    Dictionary settings;
    settings.Set("movflags", "+faststart");
    Check(avformat_write_header(output_.get(), settings.Address()));
}

MediaOutput::~MediaOutput() {
    avio_closep(&output_->pb);
}

void MediaOutput::OpenEncoder(const StreamInfo& stream) {
    const AVCodec* codec = nullptr;
    const VideoEncoder* choice = nullptr;
    for (const VideoEncoder& encoder : ContainerOf(file_.Path())->encoders) {
        if (codec != nullptr) break;
        codec = avcodec_find_encoder_by_name(encoder.name);
        choice = &encoder;
    }
    if (codec == nullptr) {
        throw Failure("cannot write {}: FFmpeg's libraries here have no video encoder for it", file_.Path());
    }
    encoder_.reset(avcodec_alloc_context3(codec));
    video_ = avformat_new_stream(output_.get(), nullptr);
    if (!encoder_ || video_ == nullptr) throw std::bad_alloc();

    encoder_->width = stream.size.width;
    encoder_->height = stream.size.height;
    encoder_->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder_->framerate = stream.frameRate;
    encoder_->time_base = stream.timeBase;
    constexpr int kLargestMpeg4TimeBase = 65535;
    if (codec->id == AV_CODEC_ID_MPEG4 && stream.timeBase.den > kLargestMpeg4TimeBase) {
        encoder_->time_base = {1, 1000};
    }
    encoder_->sample_aspect_ratio = stream.pixelAspect;
    encoder_->color_range = AVCOL_RANGE_MPEG;
    encoder_->colorspace = stream.colorSpace;
    encoder_->thread_count = 0;
    if ((output_->oformat->flags & AVFMT_GLOBALHEADER) != 0) encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (codec->id == AV_CODEC_ID_MPEG4) {
        constexpr int kQuality = 3;
        encoder_->flags |= AV_CODEC_FLAG_QSCALE;
        encoder_->global_quality = kQuality * FF_QP2LAMBDA;
    }
    Dictionary settings;
    for (const EncoderSetting& setting : choice->settings) settings.Set(setting.key, setting.value);
    const int result = avcodec_open2(encoder_.get(), codec, settings.Address());
    if (result < 0) {
        throw Failure("cannot encode video of {}x{} with {}: {}", stream.size.width, stream.size.height,
                      codec->name, LibavText(result));
    }
    ticksPerFrame_ = std::max<int64_t>(av_rescale_q(1, av_inv_q(stream.frameRate), encoder_->time_base), 1);
    video_->time_base = encoder_->time_base;
    video_->avg_frame_rate = stream.frameRate;
    video_->sample_aspect_ratio = stream.pixelAspect;
    Check(avcodec_parameters_from_context(video_->codecpar, encoder_.get()));
}

void MediaOutput::AddAudio(const AVStream& input, const Notes& notes) {
    const AVCodecID codec = input.codecpar->codec_id;
    if (avformat_query_codec(output_->oformat, codec, FF_COMPLIANCE_NORMAL) != 1) {
        notes.Add("the sound is left out: {} does not take {}", output_->oformat->name,
                  avcodec_get_name(codec));
        return;
    }
    AVStream* stream = avformat_new_stream(output_.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    Check(avcodec_parameters_copy(stream->codecpar, input.codecpar));
    stream->codecpar->codec_tag = 0;  // the container has its own
    stream->time_base = input.time_base;
    stream->disposition = input.disposition;
    av_dict_copy(&stream->metadata, input.metadata, 0);
    audio_[input.index] = {stream, input.time_base};
}

void MediaOutput::Write(const Frame& frame) {
    const AVFramePtr view = ViewOf(frame);
    const AVFrame& converted = converter_.Convert(*view, frame.Width(), frame.Height(), AV_PIX_FMT_YUV420P);
    // The encoder may keep the picture for a while: it gets one of its own.
    const AVFramePtr picture = NewAVFrame(frame.Width(), frame.Height(), AV_PIX_FMT_YUV420P);
    Check(av_frame_copy(picture.get(), &converted));
    const int64_t time = av_rescale_q(frame.time, inputTimeBase_, encoder_->time_base);
    lastTime_ = std::max(time, lastTime_ + 1);
    picture->pts = lastTime_;
    picture->quality = encoder_->global_quality;
    Encode(picture.get());
}

void MediaOutput::Encode(const AVFrame* picture) {
    Check(avcodec_send_frame(encoder_.get(), picture));
    const PacketPtr packet = NewPacket();
    for (;;) {
        const int result = avcodec_receive_packet(encoder_.get(), packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        Check(result);
        if (packet->duration == 0) packet->duration = ticksPerFrame_;
        packet->stream_index = video_->index;
        av_packet_rescale_ts(packet.get(), encoder_->time_base, video_->time_base);
        Mux(*packet);
    }
}

void MediaOutput::WriteAudio(PacketPtr packet) {
    const auto found = audio_.find(packet->stream_index);
    if (found == audio_.end()) return;
    AudioTrack& track = found->second;
    packet->stream_index = track.stream->index;
    packet->pos = -1;
    av_packet_rescale_ts(packet.get(), track.inputTimeBase, track.stream->time_base);
    // A damaged input may go back in time, which no container takes.
    if (packet->dts != AV_NOPTS_VALUE) {
        if (track.lastTime != AV_NOPTS_VALUE && packet->dts <= track.lastTime) return;
        track.lastTime = packet->dts;
    }
    Mux(*packet);
}

void MediaOutput::Mux(AVPacket& packet) {
    Check(av_interleaved_write_frame(output_.get(), &packet));
    Check(output_->pb->error);
}

void MediaOutput::Finish() {
    Encode(nullptr);
    Check(av_write_trailer(output_.get()));
    avio_flush(output_->pb);
    Check(output_->pb->error);
    Check(avio_closep(&output_->pb));
    file_.Commit();
}

void MediaOutput::Check(int result) const {
    if (result < 0) throw Failure("cannot write {}: {}", file_.Path(), LibavText(result));
}

}  // namespace host
