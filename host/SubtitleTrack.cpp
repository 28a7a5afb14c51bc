// Subtitles of text that are written in the form of another container.
#include <cstring>
#include <new>

#include "Track.h"

namespace host {
namespace {

constexpr size_t kMostBytes = 64 * 1024;  // of one subtitle

class SubtitleTrack : public Track {
  public:
    SubtitleTrack(const AVStream& input, Muxer& muxer, CodecContextPtr decoder, CodecContextPtr encoder)
        : muxer_(muxer),
          timeBase_(input.time_base),
          decoder_(std::move(decoder)),
          encoder_(std::move(encoder)),
          stream_(muxer.AddStream()) {
        stream_.time_base = input.time_base;
        muxer.Check(avcodec_parameters_from_context(stream_.codecpar, encoder_.get()));
        CopyStreamTags(input, stream_);
    }

    void Write(PacketPtr packet) override {
        AVSubtitle subtitle{};
        int complete = 0;
        if (avcodec_decode_subtitle2(decoder_.get(), &subtitle, &complete, packet.get()) < 0) return;
        if (complete != 0 && subtitle.num_rects > 0) Encode(subtitle, *packet);
        avsubtitle_free(&subtitle);
    }

  private:
    void Encode(const AVSubtitle& subtitle, const AVPacket& source) {
        const PacketPtr packet = NewPacket();
        if (av_new_packet(packet.get(), static_cast<int>(kMostBytes)) < 0) throw std::bad_alloc();
        const int size =
            avcodec_encode_subtitle(encoder_.get(), packet->data, static_cast<int>(kMostBytes), &subtitle);
        if (size < 0) return;
        av_shrink_packet(packet.get(), size);
        packet->pts = packet->dts = source.pts;
        packet->duration = source.duration;
        muxer_.Write(*packet, stream_, timeBase_);
    }

    Muxer& muxer_;
    AVRational timeBase_;
    CodecContextPtr decoder_;
    CodecContextPtr encoder_;
    AVStream& stream_;
};

bool IsText(AVCodecID codec) {
    const AVCodecDescriptor* description = avcodec_descriptor_get(codec);
    return description != nullptr && (description->props & AV_CODEC_PROP_TEXT_SUB) != 0;
}

}  // namespace

std::unique_ptr<Track> EncodeSubtitles(const AVStream& input, Muxer& muxer) {
    const AVCodec* decoder = avcodec_find_decoder(input.codecpar->codec_id);
    const AVCodec* encoder = avcodec_find_encoder(muxer.Kind().subtitles);
    if (!IsText(input.codecpar->codec_id) || decoder == nullptr || encoder == nullptr) return nullptr;
    CodecContextPtr from = NewCodecContext(decoder), to = NewCodecContext(encoder);
    from->pkt_timebase = input.time_base;
    if (avcodec_parameters_to_context(from.get(), input.codecpar) < 0 ||
        avcodec_open2(from.get(), decoder, nullptr) < 0) {
        return nullptr;
    }
    to->time_base = {1, 1000};
    if (from->subtitle_header != nullptr) {
        const auto size = static_cast<size_t>(from->subtitle_header_size);
        to->subtitle_header = static_cast<uint8_t*>(av_mallocz(size + 1));
        if (to->subtitle_header == nullptr) throw std::bad_alloc();
        std::memcpy(to->subtitle_header, from->subtitle_header, size);
        to->subtitle_header_size = from->subtitle_header_size;
    }
    if (avcodec_open2(to.get(), encoder, nullptr) < 0) return nullptr;
    return std::make_unique<SubtitleTrack>(input, muxer, std::move(from), std::move(to));
}

}  // namespace host
