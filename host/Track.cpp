#include "Track.h"

#include <array>

#include "LeftOut.h"

namespace host {
namespace {

class CopiedTrack : public Track {
  public:
    CopiedTrack(const AVStream& input, Muxer& muxer)
        : muxer_(muxer), timeBase_(input.time_base), stream_(muxer.AddStream()) {
        muxer.Check(avcodec_parameters_copy(stream_.codecpar, input.codecpar));
        stream_.codecpar->codec_tag = 0;  // the container has its own
        stream_.time_base = input.time_base;
        CopyStreamTags(input, stream_);
    }

    void Write(PacketPtr packet) override { muxer_.Write(*packet, stream_, timeBase_); }

  private:
    Muxer& muxer_;
    AVRational timeBase_;
    AVStream& stream_;
};

constexpr std::array kAac = {"aac"};
constexpr std::array kOpus = {"libopus"};

std::unique_ptr<Track> MakeSoundTrack(const AVStream& input, Muxer& muxer, Sound sound) {
    const Container& container = muxer.Kind();
    const AVCodecID codec = input.codecpar->codec_id;
    if (sound == Sound::None || container.animation) return nullptr;
    if (sound == Sound::Aac || sound == Sound::Opus) {
        const bool aac = sound == Sound::Aac;
        if (!TakesCodec(container, aac ? AV_CODEC_ID_AAC : AV_CODEC_ID_OPUS)) {
            throw UsageError("{} does not take sound in {}; leave out --audio", container.extension,
                             aac ? "AAC" : "Opus");
        }
        return aac ? EncodeSound(input, muxer, kAac) : EncodeSound(input, muxer, kOpus);
    }
    if (TakesCodec(container, codec)) return CopyTrack(input, muxer);
    if (sound == Sound::Copy) {
        throw UsageError("{} does not take {} as it is; leave out --audio copy and it is encoded",
                         container.extension, avcodec_get_name(codec));
    }
    return EncodeSound(input, muxer, container.soundEncoders);
}

std::unique_ptr<Track> MakeSubtitleTrack(const AVStream& input, Muxer& muxer) {
    if (muxer.Kind().animation) return nullptr;
    if (TakesCodec(muxer.Kind(), input.codecpar->codec_id)) return CopyTrack(input, muxer);
    return EncodeSubtitles(input, muxer);
}

}  // namespace

std::unique_ptr<Track> MakeTrack(const AVStream& input, Muxer& muxer, Sound sound) {
    switch (input.codecpar->codec_type) {
        case AVMEDIA_TYPE_AUDIO:
            return MakeSoundTrack(input, muxer, sound);
        case AVMEDIA_TYPE_SUBTITLE:
            return MakeSubtitleTrack(input, muxer);
        default:
            return nullptr;
    }
}

std::unique_ptr<Track> CopyTrack(const AVStream& input, Muxer& muxer) {
    return std::make_unique<CopiedTrack>(input, muxer);
}

void CopyStreamTags(const AVStream& from, AVStream& to) {
    to.disposition = from.disposition;
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(from.metadata, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        if (IsTagOfWork(entry->key)) av_dict_set(&to.metadata, entry->key, entry->value, 0);
    }
}

}  // namespace host
