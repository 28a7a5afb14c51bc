#include "MediaInput.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

#include "Interrupt.h"

extern "C" {
#include <libavutil/display.h>
}

namespace host {
namespace {

// Quarter turns clockwise that a display matrix asks for.
int QuarterTurns(const void* displayMatrix) {
    const double degrees = av_display_rotation_get(static_cast<const int32_t*>(displayMatrix));
    if (std::isnan(degrees)) return 0;
    return ((static_cast<int>(std::lround(-degrees / 90)) % 4) + 4) % 4;
}

// Readers that take any text for a picture made of characters.
bool IsTextReader(AVCodecID codec) {
    return codec == AV_CODEC_ID_ANSI || codec == AV_CODEC_ID_XBIN || codec == AV_CODEC_ID_BINTEXT ||
           codec == AV_CODEC_ID_IDF;
}

bool IsCoverPicture(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

// Streams whose packets an output may want.
bool IsCompanion(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    return type == AVMEDIA_TYPE_AUDIO || type == AVMEDIA_TYPE_SUBTITLE || IsCoverPicture(stream);
}

}  // namespace

MediaInput::MediaInput(const std::string& name, const InputOptions& options, const Notes& notes)
    : source_(name, options, [this] { return cancelled_.load(); }),
      packet_(NewPacket()),
      picture_(NewAVFrame()) {
    stream_.kind = source_.Kind();
    stream_.isFile = source_.IsFile();
    OpenDecoder();
    if (options.start > 0) Seek(options.start);
    Describe(options, notes);
}

void MediaInput::OpenDecoder() {
    AVFormatContext& container = source_.Context();
    int result = avformat_find_stream_info(&container, nullptr);
    if (result < 0) throw Failure("cannot read {}: {}", source_.Name(), LibavText(result));
    const AVCodec* codec = nullptr;
    videoIndex_ = av_find_best_stream(&container, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (videoIndex_ < 0 || codec == nullptr || IsCoverPicture(VideoStream())) {
        throw Failure("{} has no video that can be decoded", source_.Name());
    }
    const AVCodecParameters& parameters = *VideoStream().codecpar;
    if (IsTextReader(parameters.codec_id)) {
        throw Failure("{} is text, not a video or picture", source_.Name());
    }
    for (AVStream* stream : std::span(container.streams, container.nb_streams)) {
        if (stream->index != videoIndex_ && !IsCompanion(*stream)) stream->discard = AVDISCARD_ALL;
    }
    decoder_ = NewCodecContext(codec);
    result = avcodec_parameters_to_context(decoder_.get(), &parameters);
    decoder_->pkt_timebase = VideoStream().time_base;
    decoder_->thread_count = 0;
    if (stream_.kind == InputKind::Live) decoder_->thread_type = FF_THREAD_SLICE;  // adds no delay
    if (result >= 0) result = avcodec_open2(decoder_.get(), codec, nullptr);
    if (result < 0) throw Failure("cannot decode {}: {}", source_.Name(), LibavText(result));
    if (container.start_time != AV_NOPTS_VALUE) origin_ = container.start_time;
    // Before 0 lies the priming of a sound decoder, which is not played, unless the video begins there.
    const AVStream& video = VideoStream();
    if (origin_ < 0 && video.start_time != AV_NOPTS_VALUE) {
        const int64_t start = av_rescale_q(video.start_time, video.time_base, av_get_time_base_q());
        origin_ = std::min<int64_t>(start, 0);
    }
}

void MediaInput::Seek(double seconds) {
    if (stream_.kind == InputKind::Live) throw UsageError("--start does not go with a camera");
    origin_ += std::llround(seconds * AV_TIME_BASE);
    hasSkipped_ = true;
    // To a key frame before it; where the input cannot jump, what comes before is read and left out.
    if (source_.IsFile()) {
        avformat_seek_file(&source_.Context(), -1, std::numeric_limits<int64_t>::min(), origin_, origin_, 0);
    }
}

bool MediaInput::IsStillPicture() const {
    const std::string_view reader = source_.Context().iformat->name;
    return (reader == "image2" && !IsSequenceInput(source_.Name())) || reader.ends_with("_pipe");
}

void MediaInput::Describe(const InputOptions& options, const Notes& notes) {
    const AVStream& stream = VideoStream();
    stream_.timeBase = stream.time_base;
    if (IsStillPicture()) stream_.kind = InputKind::Picture;
    // Only a decoded picture has all of it: its colour, and how the camera was held.
    if (!DecodeNext()) {
        if (Interrupted()) throw Failure("interrupted before the first frame");
        if (hasSkipped_) throw UsageError("{} ends before {} seconds", source_.Name(), options.start);
        throw Failure("{} cannot be decoded; it may be cut short", source_.Name());
    }
    if (const uint8_t* matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr)) {
        quarterTurns_ = QuarterTurns(matrix);
    } else if (const auto* data = av_frame_get_side_data(picture_.get(), AV_FRAME_DATA_DISPLAYMATRIX)) {
        quarterTurns_ = QuarterTurns(data->data);
    }
    Size native{picture_->width, picture_->height};
    AVRational aspect = av_guess_sample_aspect_ratio(&source_.Context(),
                                                     source_.Context().streams[videoIndex_], picture_.get());
    if (quarterTurns_ % 2 != 0) {
        std::swap(native.width, native.height);
        std::swap(aspect.num, aspect.den);
    }
    if (native.width < 1 || native.height < 1) {
        throw Failure("{} has no pictures that can be decoded", source_.Name());
    }
    stream_.size = FrameSize(source_.Name(), native, options, notes);
    if (aspect.num > 0 && aspect.den > 0 && !options.size) stream_.pixelAspect = aspect;
    stream_.color = ColorAsFrame(*picture_, stream_.size.height);
    intake_.emplace(stream_.size.width, stream_.size.height, quarterTurns_, stream_.color);
    if (stream_.kind == InputKind::Picture) return;

    const AVRational rate =
        av_guess_frame_rate(&source_.Context(), source_.Context().streams[videoIndex_], nullptr);
    if (rate.num > 0 && rate.den > 0) stream_.frameRate = rate;
    if (stream_.kind == InputKind::Live) return;
    stream_.frameCount = stream.nb_frames;
    const int64_t duration = source_.Context().duration;
    if (stream_.frameCount <= 0 && duration > 0) {
        stream_.frameCount = av_rescale_q(duration, av_get_time_base_q(), av_inv_q(stream_.frameRate));
    }
    if (options.start > 0) {
        const double skipped = options.start * av_q2d(stream_.frameRate);
        stream_.frameCount = std::max<int64_t>(stream_.frameCount - std::llround(skipped), 0);
    }
}

bool MediaInput::HasUnusedStreams() const {
    const std::span streams(source_.Context().streams, source_.Context().nb_streams);
    return std::any_of(streams.begin(), streams.end(),
                       [](const AVStream* stream) { return stream->discard == AVDISCARD_ALL; });
}

std::optional<InputItem> MediaInput::Next() {
    for (;;) {
        if (!packets_.empty() && IsDue(*packets_.front())) {
            PacketPtr packet = std::move(packets_.front());
            packets_.pop_front();
            return InputItem{{}, std::move(packet)};
        }
        if (!framesEnded_ && !ended_) {
            if (picture_->data[0] != nullptr || DecodeNext()) return InputItem{TakePicture()};
            framesEnded_ = true;
            continue;
        }
        // After the last frame all packets are due; after EndAt only those before the end that it set.
        if (packets_.empty() || ended_) {
            if (!ReadPacket()) {
                std::erase_if(packets_, [this](const PacketPtr& packet) { return !IsDue(*packet); });
                if (packets_.empty()) return std::nullopt;
                continue;
            }
            QueuePacket();
        }
    }
}

void MediaInput::EndAt(int64_t end) {
    ended_ = true;
    end_ = end;
}

bool MediaInput::IsDue(const AVPacket& packet) const {
    if (packet.pts == AV_NOPTS_VALUE || (framesEnded_ && !ended_)) return true;
    const AVRational timeBase = source_.Context().streams[packet.stream_index]->time_base;
    return av_compare_ts(packet.pts, timeBase, end_, stream_.timeBase) < 0;
}

// Puts the next decoded picture into picture_. False at the end.
bool MediaInput::DecodeNext() {
    for (;;) {
        int result = avcodec_receive_frame(decoder_.get(), picture_.get());
        if (result == 0) {
            if (!hasSkipped_ || TimeOf(*picture_) >= 0) return true;
            av_frame_unref(picture_.get());
            continue;
        }
        if (result == AVERROR_EOF) return false;
        if (result != AVERROR(EAGAIN)) {
            ++damagedCount_;
            continue;
        }
        bool isVideo = false;
        while (!isVideo && ReadPacket()) isVideo = !QueuePacket();
        if (inputEnded_) {
            avcodec_send_packet(decoder_.get(), nullptr);
            continue;
        }
        ++packetCount_;
        result = avcodec_send_packet(decoder_.get(), packet_.get());
        if (result < 0 || (packet_->flags & AV_PKT_FLAG_CORRUPT) != 0) ++damagedCount_;
    }
}

// The next packet of a stream that is in use. False at the end, for any reason.
bool MediaInput::ReadPacket() {
    AVFormatContext& container = source_.Context();
    while (!inputEnded_) {
        av_packet_unref(packet_.get());
        const int result = av_read_frame(&container, packet_.get());
        if (result == AVERROR(EAGAIN)) continue;
        if (result < 0) {
            inputEnded_ = true;
            const bool stopped = Interrupted() || cancelled_;
            if (result != AVERROR_EOF && !stopped) readError_ = LibavText(result);
            continue;
        }
        const AVStream& stream = *container.streams[packet_->stream_index];
        if (stream.discard == AVDISCARD_ALL) continue;
        if (packet_->pts == AV_NOPTS_VALUE) return true;
        const int64_t end = packet_->pts + packet_->duration;
        packetsEnd_ = std::max(packetsEnd_, av_rescale_q(end, stream.time_base, av_get_time_base_q()));
        if (!ended_) return true;
        // Streams lie within a second of each other.
        const int64_t start = av_rescale_q(packet_->pts, stream.time_base, av_get_time_base_q()) - origin_;
        const int64_t last = av_rescale_q(end_, stream_.timeBase, av_get_time_base_q());
        if (start <= last + AV_TIME_BASE) return true;
        inputEnded_ = true;
    }
    return false;
}

// Puts the packet that was read into the queue unless it is video. True for what is not video.
bool MediaInput::QueuePacket() {
    if (packet_->stream_index == videoIndex_) return false;
    const AVStream& stream = *source_.Context().streams[packet_->stream_index];
    const bool cover = IsCoverPicture(stream);
    const int64_t start = av_rescale_q(origin_, av_get_time_base_q(), stream.time_base);
    if (packet_->pts != AV_NOPTS_VALUE && !cover) packet_->pts -= start;
    if (packet_->dts != AV_NOPTS_VALUE && !cover) packet_->dts -= start;
    if (hasSkipped_ && packet_->pts != AV_NOPTS_VALUE && packet_->pts < 0) return true;
    PacketPtr packet = NewPacket();
    av_packet_move_ref(packet.get(), packet_.get());
    packets_.push_back(std::move(packet));
    return true;
}

Frame MediaInput::TakePicture() {
    AVFramePtr picture = std::exchange(picture_, NewAVFrame());
    const int64_t expected = lastTime_ < 0 ? 0 : lastTime_ + stream_.TicksPerFrame();
    const bool untimed =
        picture->best_effort_timestamp == AV_NOPTS_VALUE || stream_.kind == InputKind::Picture;
    // Times rise from frame to frame, even where those of the input do not.
    const int64_t time = untimed ? expected : std::max(TimeOf(*picture), lastTime_ + 1);
    Frame frame = intake_->Take(std::move(picture));
    frame.SetTime(time);
    lastTime_ = time;
    ++frameCount_;
    end_ = time + stream_.TicksPerFrame();
    return frame;
}

// Ticks from the video's beginning.
int64_t MediaInput::TimeOf(const AVFrame& picture) const {
    if (picture.best_effort_timestamp == AV_NOPTS_VALUE) return 0;
    return picture.best_effort_timestamp - av_rescale_q(origin_, av_get_time_base_q(), stream_.timeBase);
}

std::string MediaInput::Shortfall() const {
    if (!readError_.empty()) return readError_;
    const int64_t announced = hasSkipped_ ? 0 : VideoStream().nb_frames;
    if (announced > packetCount_) {
        return fmt::format("cut short, {} of {} frames are there", frameCount_, announced);
    }
    if (damagedCount_ > 0) return fmt::format("damaged, {} frames could not be read well", damagedCount_);
    // The container's duration is that of its longest stream, which may be one that is not read.
    const AVFormatContext& container = source_.Context();
    if (container.duration_estimation_method != AVFMT_DURATION_FROM_STREAM || HasUnusedStreams()) return {};
    constexpr int64_t kTolerance = AV_TIME_BASE / 2;
    const int64_t start = container.start_time == AV_NOPTS_VALUE ? 0 : container.start_time;
    const int64_t there = packetsEnd_ - start;
    if (there + kTolerance >= container.duration) return {};
    return fmt::format("cut short, {:.1f} of {:.1f} seconds are there",
                       static_cast<double>(there) / AV_TIME_BASE,
                       static_cast<double>(container.duration) / AV_TIME_BASE);
}

}  // namespace host
