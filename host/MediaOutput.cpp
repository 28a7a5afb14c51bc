#include "MediaOutput.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
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
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
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
    : m_file(path), m_inputTimeBase(stream.timeBase) {
    AVFormatContext* context = nullptr;
    // The muxer is named: the name of the file that is written ends in .part.
    const std::string url = FileUrl(m_file.PartPath());
    Check(avformat_alloc_output_context2(&context, nullptr, ContainerOf(path)->muxer, url.c_str()));
    m_output.reset(context);
    OpenEncoder(stream);
    for (const AVStream* input : audio) AddAudio(*input, notes);
    Check(avio_open(&m_output->pb, url.c_str(), AVIO_FLAG_WRITE));
    Dictionary settings;
    settings.Set("movflags", "+faststart");
    Check(avformat_write_header(m_output.get(), settings.Address()));
}

MediaOutput::~MediaOutput() {
    avio_closep(&m_output->pb);
}

void MediaOutput::OpenEncoder(const StreamInfo& stream) {
    const AVCodec* codec = nullptr;
    const VideoEncoder* choice = nullptr;
    for (const VideoEncoder& encoder : ContainerOf(m_file.Path())->encoders) {
        if (codec != nullptr) break;
        codec = avcodec_find_encoder_by_name(encoder.name);
        choice = &encoder;
    }
    if (codec == nullptr) {
        throw Failure("cannot write {}: FFmpeg's libraries here have no video encoder for it", m_file.Path());
    }
    m_encoder.reset(avcodec_alloc_context3(codec));
    m_video = avformat_new_stream(m_output.get(), nullptr);
    if (!m_encoder || m_video == nullptr) throw std::bad_alloc();

    m_encoder->width = stream.size.width;
    m_encoder->height = stream.size.height;
    m_encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    m_encoder->framerate = stream.frameRate;
    m_encoder->time_base = stream.timeBase;
    constexpr int kLargestMpeg4TimeBase = 65535;
    if (codec->id == AV_CODEC_ID_MPEG4 && stream.timeBase.den > kLargestMpeg4TimeBase) {
        m_encoder->time_base = {1, 1000};
    }
    m_encoder->sample_aspect_ratio = stream.pixelAspect;
    m_encoder->color_range = AVCOL_RANGE_MPEG;
    m_encoder->colorspace = stream.colorSpace;
    m_encoder->thread_count = 0;
    if ((m_output->oformat->flags & AVFMT_GLOBALHEADER) != 0) m_encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (codec->id == AV_CODEC_ID_MPEG4) {
        constexpr int kQuality = 3;
        m_encoder->flags |= AV_CODEC_FLAG_QSCALE;
        m_encoder->global_quality = kQuality * FF_QP2LAMBDA;
    }
    Dictionary settings;
    for (const EncoderSetting& setting : choice->settings) settings.Set(setting.key, setting.value);
    const int result = avcodec_open2(m_encoder.get(), codec, settings.Address());
    if (result < 0) {
        throw Failure("cannot encode video of {}x{} with {}: {}", stream.size.width, stream.size.height,
                      codec->name, LibavText(result));
    }
    m_ticksPerFrame = std::max<int64_t>(av_rescale_q(1, av_inv_q(stream.frameRate), m_encoder->time_base), 1);
    m_video->time_base = m_encoder->time_base;
    m_video->avg_frame_rate = stream.frameRate;
    m_video->sample_aspect_ratio = stream.pixelAspect;
    Check(avcodec_parameters_from_context(m_video->codecpar, m_encoder.get()));
}

void MediaOutput::AddAudio(const AVStream& input, const Notes& notes) {
    const AVCodecID codec = input.codecpar->codec_id;
    if (avformat_query_codec(m_output->oformat, codec, FF_COMPLIANCE_NORMAL) != 1) {
        notes.Add("the sound is left out: {} does not take {}", m_output->oformat->name,
                  avcodec_get_name(codec));
        return;
    }
    AVStream* stream = avformat_new_stream(m_output.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    Check(avcodec_parameters_copy(stream->codecpar, input.codecpar));
    stream->codecpar->codec_tag = 0;  // the container has its own
    stream->time_base = input.time_base;
    stream->disposition = input.disposition;
    av_dict_copy(&stream->metadata, input.metadata, 0);
    m_audio[input.index] = {stream, input.time_base};
}

void MediaOutput::Write(const Frame& frame) {
    const AVFramePtr view = ViewOf(frame);
    const AVFrame& converted = m_converter.Convert(*view, frame.Width(), frame.Height(), AV_PIX_FMT_YUV420P);
    // The encoder may keep the picture for a while: it gets one of its own.
    const AVFramePtr picture = NewAVFrame(frame.Width(), frame.Height(), AV_PIX_FMT_YUV420P);
    Check(av_frame_copy(picture.get(), &converted));
    const int64_t time = av_rescale_q(frame.time, m_inputTimeBase, m_encoder->time_base);
    m_lastTime = std::max(time, m_lastTime + 1);
    picture->pts = m_lastTime;
    picture->quality = m_encoder->global_quality;
    Encode(picture.get());
}

void MediaOutput::Encode(const AVFrame* picture) {
    Check(avcodec_send_frame(m_encoder.get(), picture));
    const PacketPtr packet = NewPacket();
    for (;;) {
        const int result = avcodec_receive_packet(m_encoder.get(), packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        Check(result);
        if (packet->duration == 0) packet->duration = m_ticksPerFrame;
        packet->stream_index = m_video->index;
        av_packet_rescale_ts(packet.get(), m_encoder->time_base, m_video->time_base);
        Mux(*packet);
    }
}

void MediaOutput::WriteAudio(PacketPtr packet) {
    const auto found = m_audio.find(packet->stream_index);
    if (found == m_audio.end()) return;
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
    Check(av_interleaved_write_frame(m_output.get(), &packet));
    Check(m_output->pb->error);
}

void MediaOutput::Finish() {
    Encode(nullptr);
    Check(av_write_trailer(m_output.get()));
    avio_flush(m_output->pb);
    Check(m_output->pb->error);
    Check(avio_closep(&m_output->pb));
    m_file.Commit();
}

void MediaOutput::Check(int result) const {
    if (result < 0) throw Failure("cannot write {}: {}", m_file.Path(), LibavText(result));
}

}  // namespace host
