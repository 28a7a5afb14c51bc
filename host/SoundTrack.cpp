// Sound that is decoded and encoded again.
#include <algorithm>
#include <optional>
#include <span>

#include "FilterGraph.h"
#include "Track.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

namespace host {
namespace {

constexpr int64_t kBitsPerChannel = 64'000;  // a second

// The nearest rate above that the encoder has.
int SampleRateFor(const AVCodec& codec, int rate) {
    if (codec.supported_samplerates == nullptr) return rate;
    int best = 0;
    for (const int* each = codec.supported_samplerates; *each != 0; ++each) {
        const bool nearer = best < rate ? *each > best : *each >= rate && *each < best;
        if (best == 0 || nearer) best = *each;
    }
    return best;
}

// The input's channels where the encoder has such a layout, else two.
void ChooseChannels(const AVCodec& codec, const AVChannelLayout& input, AVChannelLayout& chosen) {
    const auto takes = [&codec](const AVChannelLayout& layout) {
        if (codec.ch_layouts == nullptr) return true;
        for (const AVChannelLayout* each = codec.ch_layouts; each->nb_channels != 0; ++each) {
            if (av_channel_layout_compare(each, &layout) == 0) return true;
        }
        return false;
    };
    if (input.order == AV_CHANNEL_ORDER_NATIVE && takes(input)) {
        av_channel_layout_copy(&chosen, &input);
        return;
    }
    av_channel_layout_default(&chosen, input.nb_channels);
    if (chosen.order == AV_CHANNEL_ORDER_NATIVE && takes(chosen)) return;
    av_channel_layout_uninit(&chosen);
    av_channel_layout_default(&chosen, 2);
}

class SoundTrack : public Track {
  public:
    SoundTrack(const AVStream& input, Muxer& muxer, CodecContextPtr decoder, const AVCodec& codec)
        : muxer_(muxer),
          decoder_(std::move(decoder)),
          encoder_(NewCodecContext(&codec)),
          stream_(muxer.AddStream()) {
        encoder_->sample_rate = SampleRateFor(codec, decoder_->sample_rate);
        encoder_->sample_fmt = codec.sample_fmts[0];
        ChooseChannels(codec, decoder_->ch_layout, encoder_->ch_layout);
        encoder_->time_base = {1, encoder_->sample_rate};
        encoder_->bit_rate = kBitsPerChannel * encoder_->ch_layout.nb_channels;
        if ((muxer.Context().oformat->flags & AVFMT_GLOBALHEADER) != 0) {
            encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        }
        muxer.Check(avcodec_open2(encoder_.get(), &codec, nullptr));
        stream_.time_base = encoder_->time_base;
        muxer.Check(avcodec_parameters_from_context(stream_.codecpar, encoder_.get()));
        CopyStreamTags(input, stream_);
    }

    // A packet that cannot be decoded leaves a gap.
    void Write(PacketPtr packet) override {
        if (avcodec_send_packet(decoder_.get(), packet.get()) >= 0) Decode();
    }

    void Finish() override {
        avcodec_send_packet(decoder_.get(), nullptr);
        Decode();
        if (graph_) {
            graph_->Send(nullptr);
            Encode();
        }
        muxer_.Check(avcodec_send_frame(encoder_.get(), nullptr));
        muxer_.WriteEncoded(*encoder_, stream_);
    }

  private:
    void Decode() {
        const AVFramePtr frame = NewAVFrame();
        while (avcodec_receive_frame(decoder_.get(), frame.get()) >= 0) {
            if (frame->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC) {
                av_channel_layout_default(&frame->ch_layout, frame->ch_layout.nb_channels);
            }
            const AVRational samples{1, frame->sample_rate};
            frame->pts = frame->pts == AV_NOPTS_VALUE
                             ? next_
                             : av_rescale_q(frame->pts, decoder_->pkt_timebase, samples);
            next_ = frame->pts + frame->nb_samples;
            if (!graph_) SetUpGraph(*frame);
            graph_->Send(frame.get());
            av_frame_unref(frame.get());
            Encode();
        }
    }

    void SetUpGraph(const AVFrame& first) {
        char layout[128] = {};
        av_channel_layout_describe(&encoder_->ch_layout, layout, sizeof layout);
        graph_.emplace(
            fmt::format("aresample=async=1,aformat=sample_fmts={}:sample_rates={}:channel_layouts={}",
                        av_get_sample_fmt_name(encoder_->sample_fmt), encoder_->sample_rate, layout),
            first, AVRational{1, first.sample_rate});
        const bool anySize = (encoder_->codec->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE) != 0;
        if (!anySize) graph_->SetFrameSize(encoder_->frame_size);
    }

    void Encode() {
        while (const AVFramePtr frame = graph_->Receive()) {
            if (frame->pts != AV_NOPTS_VALUE) {
                frame->pts = av_rescale_q(frame->pts, graph_->TimeBase(), encoder_->time_base);
            }
            muxer_.Check(avcodec_send_frame(encoder_.get(), frame.get()));
            muxer_.WriteEncoded(*encoder_, stream_);
        }
    }

    Muxer& muxer_;
    CodecContextPtr decoder_;
    CodecContextPtr encoder_;
    AVStream& stream_;
    std::optional<FilterGraph> graph_;
    int64_t next_ = 0;  // where the next samples belong if they do not say
};

}  // namespace

std::unique_ptr<Track> EncodeSound(const AVStream& input, Muxer& muxer,
                                   std::span<const char* const> encoders) {
    const AVCodec* decoder = avcodec_find_decoder(input.codecpar->codec_id);
    if (decoder == nullptr) return nullptr;
    CodecContextPtr context = NewCodecContext(decoder);
    context->pkt_timebase = input.time_base;
    if (avcodec_parameters_to_context(context.get(), input.codecpar) < 0 ||
        avcodec_open2(context.get(), decoder, nullptr) < 0 || context->sample_rate <= 0) {
        return nullptr;
    }
    for (const char* name : encoders) {
        const AVCodec* codec = avcodec_find_encoder_by_name(name);
        if (codec != nullptr) return std::make_unique<SoundTrack>(input, muxer, std::move(context), *codec);
    }
    return nullptr;
}

}  // namespace host
