#include "Muxer.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <string_view>

#include "Errors.h"

namespace host {

Muxer::Muxer(const std::string& path, const Container& container, bool overwrite)
    : container_(container), file_(path, overwrite) {
    AVFormatContext* context = nullptr;
    // The muxer is named: the name of the file that is written ends in .part.
    Check(avformat_alloc_output_context2(&context, nullptr, container.muxer,
                                         FileUrl(file_.PartPath()).c_str()));
    context_.reset(context);
}

Muxer::~Muxer() {
    // The muxers of animated pictures keep the last packet, and free it with the trailer only.
    const std::string_view name = context_->oformat->name;
    if (hasHeader_ && (name == "gif" || name == "apng" || name == "webp")) {
        av_write_trailer(context_.get());
    }
    avio_closep(&context_->pb);
}

AVStream& Muxer::AddStream() {
    AVStream* stream = avformat_new_stream(context_.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    return *stream;
}

void Muxer::Start() {
    Check(avio_open(&context_->pb, FileUrl(file_.PartPath()).c_str(), AVIO_FLAG_WRITE));
    Dictionary settings;
    const std::string_view muxer = container_.muxer;
    if (muxer == "mp4" || muxer == "mov") settings.Set("movflags", "+faststart+write_colr");
    if (muxer == "apng") settings.Set("plays", "0");  // forever
    if (muxer == "webp") settings.Set("loop", "0");
    Check(avformat_write_header(context_.get(), settings.Address()));
    hasHeader_ = true;
    lastTimes_.assign(context_->nb_streams, AV_NOPTS_VALUE);
}

void Muxer::Write(AVPacket& packet, const AVStream& stream, AVRational timeBase) {
    packet.stream_index = stream.index;
    packet.pos = -1;
    av_packet_rescale_ts(&packet, timeBase, stream.time_base);
    if (packet.dts != AV_NOPTS_VALUE) {
        int64_t& last = lastTimes_[static_cast<size_t>(stream.index)];
        if (last != AV_NOPTS_VALUE && packet.dts <= last) return;
        last = packet.dts;
    }
    Check(av_interleaved_write_frame(context_.get(), &packet));
    Check(context_->pb->error);
}

void Muxer::WriteEncoded(AVCodecContext& encoder, const AVStream& stream, int64_t usualDuration) {
    const PacketPtr packet = NewPacket();
    for (;;) {
        const int result = avcodec_receive_packet(&encoder, packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        Check(result);
        if (packet->duration == 0) packet->duration = usualDuration;
        Write(*packet, stream, encoder.time_base);
    }
}

void Muxer::Finish() {
    hasHeader_ = false;
    Check(av_write_trailer(context_.get()));
    avio_flush(context_->pb);
    Check(context_->pb->error);
    Check(avio_closep(&context_->pb));
    file_.Commit();
}

void Muxer::NoteGap(double seconds) {
    longestGap_ = std::max(longestGap_, seconds);
}

void Muxer::Check(int result) const {
    if (result >= 0) return;
    constexpr double kHour = 3600;
    if (longestGap_ > kHour && (result == AVERROR_PATCHWELCOME || result == AVERROR(EINVAL))) {
        throw Failure(
            "cannot write {}: a frame comes {:.1f} hours after the one before it, and {} takes no such gap; "
            "the times may be damaged, and --fps leaves the gap out",
            file_.Path(), longestGap_ / kHour, container_.extension);
    }
    throw Failure("cannot write {}: {}", file_.Path(), LibavText(result));
}

}  // namespace host
