#include "MediaInput.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>

#include "Interrupt.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/opt.h>
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

int StopWaiting(void*) {
    return Interrupted() ? 1 : 0;
}

void CheckFile(const std::string& name) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0) throw Failure("cannot open {}: {}", name, SystemText(errno));
    if (S_ISDIR(status.st_mode)) throw Failure("{} is a directory, not a video or picture", name);
    if (S_ISREG(status.st_mode) && status.st_size == 0) throw Failure("{} is empty", name);
}

}  // namespace

MediaInput::MediaInput(const std::string& name, const InputOptions& options, const Notes& notes)
    : name_(name == "-" ? "standard input" : name), packet_(NewPacket()), picture_(NewAVFrame()) {
    stream_.kind = IsDevice(name) ? InputKind::Live : InputKind::Recording;
    if (stream_.kind == InputKind::Live) {
        OpenCamera(name, options);
    } else {
        OpenFile(name);
    }
    OpenDecoder();
    Describe(options, notes);
}

void MediaInput::OpenFile(const std::string& name) {
    if (name != "-") {
        CheckFile(name);
    } else if (isatty(STDIN_FILENO) != 0) {
        throw UsageError("standard input is a terminal; pipe a video into it, or name a file");
    }
    Dictionary settings;
    settings.Set("protocol_whitelist", "file,pipe");  // a playlist reaches no network
    settings.Set("pattern_type", "none");             // a name with % or * is one file
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) throw std::bad_alloc();
    context->interrupt_callback.callback = StopWaiting;
    // Frees the context when it fails.
    const int result = avformat_open_input(&context, name == "-" ? "pipe:0" : FileUrl(name).c_str(), nullptr,
                                           settings.Address());
    if (result < 0) {
        if (Interrupted()) throw Failure("interrupted while {} was opened", name_);
        if (result == AVERROR_INVALIDDATA || result == AVERROR_EOF || result == AVERROR(EINVAL)) {
            throw Failure("{} is no video or picture that can be read, or is cut short", name_);
        }
        throw Failure("cannot read {}: {}", name_, LibavText(result));
    }
    input_.reset(context);
}

void MediaInput::OpenCamera(const std::string& name, const InputOptions& options) {
    const AVInputFormat* format = av_find_input_format("v4l2");
    if (format == nullptr) throw Failure("cannot read {}: FFmpeg's libraries here have no cameras", name);
    Dictionary settings;
    if (options.size) {
        settings.Set("video_size", fmt::format("{}x{}", options.size->width, options.size->height));
    }
    AVFormatContext* context = nullptr;
    const int result = avformat_open_input(&context, name.c_str(), format, settings.Address());
    if (result < 0) throw Failure("cannot open the camera {}: {}", name, LibavText(result));
    input_.reset(context);
}

void MediaInput::OpenDecoder() {
    int result = avformat_find_stream_info(input_.get(), nullptr);
    if (result < 0) throw Failure("cannot read {}: {}", name_, LibavText(result));
    const AVCodec* codec = nullptr;
    videoIndex_ = av_find_best_stream(input_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (videoIndex_ < 0 || codec == nullptr ||
        (VideoStream().disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) {
        throw Failure("{} has no video that can be decoded", name_);
    }
    const AVCodecParameters& parameters = *VideoStream().codecpar;
    if (IsTextReader(parameters.codec_id)) throw Failure("{} is text, not a video or picture", name_);
    for (unsigned i = 0; i < input_->nb_streams; ++i) {
        AVStream& stream = *input_->streams[i];
        const bool used =
            static_cast<int>(i) == videoIndex_ || stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
        if (!used) stream.discard = AVDISCARD_ALL;
    }
    decoder_.reset(avcodec_alloc_context3(codec));
    if (!decoder_) throw std::bad_alloc();
    result = avcodec_parameters_to_context(decoder_.get(), &parameters);
    decoder_->pkt_timebase = VideoStream().time_base;
    decoder_->thread_count = 0;
    if (stream_.kind == InputKind::Live) decoder_->thread_type = FF_THREAD_SLICE;  // adds no delay
    if (result >= 0) result = avcodec_open2(decoder_.get(), codec, nullptr);
    if (result < 0) throw Failure("cannot decode {}: {}", name_, LibavText(result));
}

bool MediaInput::IsStillPicture() const {
    const std::string_view reader = input_->iformat->name;
    return reader == "image2" || reader.ends_with("_pipe");
}

void MediaInput::Describe(const InputOptions& options, const Notes& notes) {
    const AVStream& stream = VideoStream();
    if (const uint8_t* matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr)) {
        quarterTurns_ = QuarterTurns(matrix);
    }
    if (IsStillPicture()) {
        stream_.kind = InputKind::Picture;
        // Only the decoded picture tells how the photographer held the camera.
        if (!DecodeNext()) throw Failure("{} cannot be decoded; it may be cut short", name_);
        if (const auto* data = av_frame_get_side_data(picture_.get(), AV_FRAME_DATA_DISPLAYMATRIX)) {
            quarterTurns_ = QuarterTurns(data->data);
        }
    }
    Size native{decoder_->width, decoder_->height};
    AVRational aspect = av_guess_sample_aspect_ratio(input_.get(), input_->streams[videoIndex_], nullptr);
    if (quarterTurns_ % 2 != 0) {
        std::swap(native.width, native.height);
        std::swap(aspect.num, aspect.den);
    }
    if (native.width < 1 || native.height < 1) throw Failure("{} has no pictures that can be decoded", name_);
    stream_.size = EvenSize(options.size.value_or(native), notes);
    if (std::max(stream_.size.width, stream_.size.height) > kLargestSide) {
        throw Failure("{} is {}x{}; effects take sides up to {}; --size scales it", name_, native.width,
                      native.height, kLargestSide);
    }
    if (aspect.num > 0 && aspect.den > 0 && !options.size) stream_.pixelAspect = aspect;
    stream_.colorSpace = decoder_->colorspace == AVCOL_SPC_RGB ? AVCOL_SPC_UNSPECIFIED : decoder_->colorspace;
    if (options.format == kFormatPacked) stream_.colorSpace = AVCOL_SPC_SMPTE170M;
    if (stream_.kind == InputKind::Picture) return;

    const AVRational rate = av_guess_frame_rate(input_.get(), input_->streams[videoIndex_], nullptr);
    if (rate.num > 0 && rate.den > 0) stream_.frameRate = rate;
    stream_.timeBase = stream.time_base;
    if (stream_.kind == InputKind::Live) return;
    stream_.frameCount = stream.nb_frames;
    if (stream_.frameCount <= 0 && input_->duration > 0) {
        stream_.frameCount =
            av_rescale_q(input_->duration, av_get_time_base_q(), av_inv_q(stream_.frameRate));
    }
}

std::vector<const AVStream*> MediaInput::AudioStreams() const {
    std::vector<const AVStream*> streams;
    for (unsigned i = 0; i < input_->nb_streams; ++i) {
        if (input_->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            streams.push_back(input_->streams[i]);
        }
    }
    return streams;
}

bool MediaInput::HasUnusedStreams() const {
    const std::span streams(input_->streams, input_->nb_streams);
    return std::any_of(streams.begin(), streams.end(),
                       [](const AVStream* stream) { return stream->discard == AVDISCARD_ALL; });
}

bool MediaInput::Read(Frame& frame) {
    // A picture has been decoded already.
    if (picture_->data[0] == nullptr && !DecodeNext()) return false;
    Deliver(frame);
    av_frame_unref(picture_.get());
    return true;
}

bool MediaInput::DecodeNext() {
    for (;;) {
        int result = avcodec_receive_frame(decoder_.get(), picture_.get());
        if (result == 0) return true;
        if (result == AVERROR_EOF) return false;
        if (result != AVERROR(EAGAIN)) {
            ++damagedCount_;
            continue;
        }
        bool isVideo = false;
        while (!isVideo && ReadPacket()) isVideo = !TakeAudioPacket();
        if (inputEnded_) {
            avcodec_send_packet(decoder_.get(), nullptr);
            continue;
        }
        ++packetCount_;
        result = avcodec_send_packet(decoder_.get(), packet_.get());
        if (result < 0 || (packet_->flags & AV_PKT_FLAG_CORRUPT) != 0) ++damagedCount_;
    }
}

// The next packet of a stream that is in use. False at the end, for whatever reason.
bool MediaInput::ReadPacket() {
    while (!inputEnded_) {
        av_packet_unref(packet_.get());
        const int result = av_read_frame(input_.get(), packet_.get());
        if (result < 0) {
            inputEnded_ = true;
            if (result != AVERROR_EOF && !Interrupted()) readError_ = LibavText(result);
        } else if (const AVStream& stream = *input_->streams[packet_->stream_index];
                   stream.discard != AVDISCARD_ALL) {
            if (packet_->pts != AV_NOPTS_VALUE) {
                const int64_t end = packet_->pts + packet_->duration;
                packetsEnd_ =
                    std::max(packetsEnd_, av_rescale_q(end, stream.time_base, av_get_time_base_q()));
            }
            return true;
        }
    }
    return false;
}

// Puts the packet that was read into the queue of sound if it is sound.
bool MediaInput::TakeAudioPacket() {
    if (packet_->stream_index == videoIndex_) return false;
    const AVStream& stream = *input_->streams[packet_->stream_index];
    const int64_t start = input_->start_time == AV_NOPTS_VALUE
                              ? 0
                              : av_rescale_q(input_->start_time, av_get_time_base_q(), stream.time_base);
    if (packet_->pts != AV_NOPTS_VALUE) packet_->pts -= start;
    if (packet_->dts != AV_NOPTS_VALUE) packet_->dts -= start;
    PacketPtr packet = NewPacket();
    av_packet_move_ref(packet.get(), packet_.get());
    audio_.push_back(std::move(packet));
    return true;
}

PacketPtr MediaInput::NextAudio(int64_t end, bool readOn) {
    while (audio_.empty() && readOn && ReadPacket()) TakeAudioPacket();
    if (audio_.empty()) return nullptr;
    const AVPacket& next = *audio_.front();
    const AVRational timeBase = input_->streams[next.stream_index]->time_base;
    const bool before = end == std::numeric_limits<int64_t>::max() || next.pts == AV_NOPTS_VALUE ||
                        av_compare_ts(next.pts, timeBase, end, stream_.timeBase) < 0;
    if (!before) return nullptr;
    PacketPtr packet = std::move(audio_.front());
    audio_.pop_front();
    return packet;
}

void MediaInput::Deliver(Frame& frame) {
    Size target = stream_.size;
    if (quarterTurns_ % 2 != 0) std::swap(target.width, target.height);
    const AVFrame& converted =
        converter_.Convert(*picture_, target.width, target.height, PixelFormat(frame.Format()));
    CopyTurned(converted, quarterTurns_, frame);
    frame.time = TimeOf(*picture_);
    lastTime_ = frame.time;
    ++frameCount_;
}

// Ticks from the beginning, rising from frame to frame whatever the input says.
int64_t MediaInput::TimeOf(const AVFrame& picture) {
    const int64_t expected = lastTime_ < 0 ? 0 : lastTime_ + stream_.TicksPerFrame();
    if (picture.best_effort_timestamp == AV_NOPTS_VALUE || stream_.kind == InputKind::Picture)
        return expected;
    const int64_t start = input_->start_time == AV_NOPTS_VALUE
                              ? 0
                              : av_rescale_q(input_->start_time, av_get_time_base_q(), stream_.timeBase);
    return std::max(picture.best_effort_timestamp - start, lastTime_ + 1);
}

std::string MediaInput::Shortfall() const {
    if (!readError_.empty()) return readError_;
    const int64_t announced = VideoStream().nb_frames;
    if (announced > packetCount_) {
        return fmt::format("cut short, {} of {} frames are there", packetCount_, announced);
    }
    if (damagedCount_ > 0) return fmt::format("damaged, {} frames could not be read well", damagedCount_);
    // The container's duration is that of its longest stream, which may be one that is not read.
    if (input_->duration_estimation_method != AVFMT_DURATION_FROM_STREAM || HasUnusedStreams()) return {};
    constexpr int64_t kTolerance = AV_TIME_BASE / 2;
    if (packetsEnd_ + kTolerance >= input_->duration) return {};
    return fmt::format("cut short, {:.1f} of {:.1f} seconds are there",
                       static_cast<double>(packetsEnd_) / AV_TIME_BASE,
                       static_cast<double>(input_->duration) / AV_TIME_BASE);
}

}  // namespace host
