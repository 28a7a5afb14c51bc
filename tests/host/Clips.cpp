#include "Clips.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "Scaler.h"
#include "TestScene.h"
#include "VideoInput.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/display.h>
}

namespace {

using host::CodecContextPtr;
using host::InputContextPtr;
using host::OutputContextPtr;

void Check(int result) {
    if (result < 0) throw std::runtime_error("libav: " + host::LibavText(result));
}

// One stream of a clip with its encoder.
struct Track {
    AVStream* stream;
    CodecContextPtr encoder;

    // Sends a frame (null at the end) and writes what comes out.
    void Encode(AVFormatContext* output, const AVFrame* frame) const {
        Check(avcodec_send_frame(encoder.get(), frame));
        const host::PacketPtr packet = host::NewPacket();
        while (avcodec_receive_packet(encoder.get(), packet.get()) >= 0) {
            packet->stream_index = stream->index;
            av_packet_rescale_ts(packet.get(), encoder->time_base, stream->time_base);
            Check(av_interleaved_write_frame(output, packet.get()));
        }
    }
};

template <class SetUp>
Track AddTrack(AVFormatContext* output, AVCodecID codecId, SetUp setUp) {
    const AVCodec* codec = avcodec_find_encoder(codecId);
    if (codec == nullptr) throw std::runtime_error("no encoder");
    Track track{avformat_new_stream(output, nullptr), CodecContextPtr(avcodec_alloc_context3(codec))};
    setUp(*track.encoder);
    if ((output->oformat->flags & AVFMT_GLOBALHEADER) != 0)
        track.encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    Check(avcodec_open2(track.encoder.get(), codec, nullptr));
    track.stream->time_base = track.encoder->time_base;
    Check(avcodec_parameters_from_context(track.stream->codecpar, track.encoder.get()));
    return track;
}

constexpr int kSampleRate = 44100;
constexpr int kSamplesPerPacket = 1024;

void EncodeSound(AVFormatContext* output, const Track& track, double seconds) {
    const auto sampleFormat = track.encoder->sample_fmt;
    for (int64_t start = 0; static_cast<double>(start) < seconds * kSampleRate; start += kSamplesPerPacket) {
        const host::AVFramePtr frame = host::NewAVFrame();
        frame->format = sampleFormat;
        frame->nb_samples = kSamplesPerPacket;
        frame->sample_rate = kSampleRate;
        av_channel_layout_default(&frame->ch_layout, 1);
        Check(av_frame_get_buffer(frame.get(), 0));
        for (int i = 0; i < kSamplesPerPacket; ++i) {
            const double value = 0.4 * std::sin(0.06 * static_cast<double>(start + i));
            if (sampleFormat == AV_SAMPLE_FMT_FLTP) {
                reinterpret_cast<float*>(frame->data[0])[i] = static_cast<float>(value);
            } else {
                reinterpret_cast<int16_t*>(frame->data[0])[i] = static_cast<int16_t>(value * 32000);
            }
        }
        frame->pts = start;
        track.Encode(output, frame.get());
    }
    track.Encode(output, nullptr);
}

InputContextPtr Open(const std::string& path) {
    AVFormatContext* input = nullptr;
    Check(avformat_open_input(&input, host::FileUrl(path).c_str(), nullptr, nullptr));
    InputContextPtr owned(input);
    Check(avformat_find_stream_info(input, nullptr));
    return owned;
}

}  // namespace

void MakeClip(const std::string& path, const ClipOptions& options) {
    AVFormatContext* output = nullptr;
    Check(avformat_alloc_output_context2(&output, nullptr, nullptr, path.c_str()));
    const OutputContextPtr owned(output);
    const Track video = AddTrack(output, AV_CODEC_ID_MPEG4, [&options](AVCodecContext& encoder) {
        encoder.width = options.width;
        encoder.height = options.height;
        encoder.pix_fmt = AV_PIX_FMT_YUV420P;
        encoder.time_base = {1, 30};
        encoder.framerate = {30, 1};
        encoder.bit_rate = 2000000;
    });
    if (options.rotation != 0) {
        auto* matrix = reinterpret_cast<int32_t*>(
            av_stream_new_side_data(video.stream, AV_PKT_DATA_DISPLAYMATRIX, 9 * sizeof(int32_t)));
        av_display_rotation_set(matrix, options.rotation);
    }
    Track sound{nullptr, nullptr};
    if (options.sound != AV_CODEC_ID_NONE) {
        sound = AddTrack(output, options.sound, [](AVCodecContext& encoder) {
            encoder.sample_fmt = encoder.codec->sample_fmts[0];
            encoder.sample_rate = kSampleRate;
            av_channel_layout_default(&encoder.ch_layout, 1);
            encoder.time_base = {1, kSampleRate};
        });
    }
    Check(avio_open(&output->pb, path.c_str(), AVIO_FLAG_WRITE));
    Check(avformat_write_header(output, nullptr));
    if (sound.stream != nullptr) EncodeSound(output, sound, options.frames / 30.0);
    host::Frame drawn(options.width & ~1, options.height & ~1);
    host::Scaler scaler;
    for (int i = 0; i < options.frames; ++i) {
        host::DrawTestScene(i, drawn);
        const host::AVFramePtr frame = host::NewAVFrame(options.width, options.height, AV_PIX_FMT_YUV420P);
        scaler.Convert(drawn.Picture(), *frame);
        frame->pts = i;
        video.Encode(output, frame.get());
    }
    video.Encode(output, nullptr);
    Check(av_write_trailer(output));
    avio_closep(&output->pb);
}

std::vector<host::Frame> FramesOf(const std::string& path) {
    const host::Notes notes(true);
    const auto input = host::OpenInput(path, {}, notes);
    std::vector<host::Frame> frames;
    while (auto item = input->Next()) {
        if (item->frame) frames.push_back(std::move(item->frame));
        if (input->Stream().kind == host::InputKind::Picture) break;
    }
    return frames;
}

host::Frame FirstFrameOf(const std::string& path) {
    return std::move(FramesOf(path).at(0));
}

Sound SoundOf(const std::string& path) {
    const InputContextPtr input = Open(path);
    Sound sound;
    const int index = av_find_best_stream(input.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (index < 0) return sound;
    const AVStream& stream = *input->streams[index];
    const host::PacketPtr packet = host::NewPacket();
    bool first = true;
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index == index) {
            sound.bytes.append(reinterpret_cast<const char*>(packet->data),
                               static_cast<size_t>(packet->size));
            sound.lastSecond = static_cast<double>(packet->pts) * av_q2d(stream.time_base);
            if (first) sound.firstSecond = sound.lastSecond;
            first = false;
        }
        av_packet_unref(packet.get());
    }
    return sound;
}

double MeanOf(const host::Frame& frame, int plane) {
    const int count = frame.RowBytes(plane) * frame.Rows(plane);
    double sum = 0;
    for (int i = 0; i < count; ++i) sum += frame.Plane(plane)[i];
    return sum / count;
}

double Difference(const host::Frame& a, const host::Frame& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height()) return 255;
    double sum = 0, count = 0;
    for (int plane = 0; plane < host::Frame::kPlanes; ++plane) {
        const int size = a.RowBytes(plane) * a.Rows(plane);
        for (int i = 0; i < size; ++i) sum += std::abs(a.Plane(plane)[i] - b.Plane(plane)[i]);
        count += size;
    }
    return sum / count;
}
