#include "MediaInput.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

#include "Interrupt.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/opt.h>
}

namespace host {
namespace {

constexpr int kLargestSide = 16384;  // that an effect can be configured for

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
    : m_name(name == "-" ? "standard input" : name), m_packet(NewPacket()), m_picture(NewAVFrame()) {
    m_stream.kind = IsDevice(name) ? InputKind::Live : InputKind::Recording;
    if (m_stream.kind == InputKind::Live) {
        OpenCamera(name, options);
    } else {
        OpenFile(name);
    }
    OpenDecoder();
    Describe(options, notes);
}

void MediaInput::OpenFile(const std::string& name) {
    if (name != "-") CheckFile(name);
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
        if (result == AVERROR_INVALIDDATA || result == AVERROR_EOF) {
            throw Failure("{} is no video or picture that can be read, or is cut short", m_name);
        }
        throw Failure("cannot read {}: {}", m_name, LibavText(result));
    }
    m_input.reset(context);
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
    m_input.reset(context);
}

void MediaInput::OpenDecoder() {
    int result = avformat_find_stream_info(m_input.get(), nullptr);
    if (result < 0) throw Failure("cannot read {}: {}", m_name, LibavText(result));
    const AVCodec* codec = nullptr;
    m_videoIndex = av_find_best_stream(m_input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (m_videoIndex < 0 || codec == nullptr ||
        (VideoStream().disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) {
        throw Failure("{} has no video that can be decoded", m_name);
    }
    const AVCodecParameters& parameters = *VideoStream().codecpar;
    if (IsTextReader(parameters.codec_id)) throw Failure("{} is text, not a video or picture", m_name);
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        AVStream& stream = *m_input->streams[i];
        const bool used =
            static_cast<int>(i) == m_videoIndex || stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
        if (!used) stream.discard = AVDISCARD_ALL;
    }
    m_decoder.reset(avcodec_alloc_context3(codec));
    if (!m_decoder) throw std::bad_alloc();
    result = avcodec_parameters_to_context(m_decoder.get(), &parameters);
    m_decoder->pkt_timebase = VideoStream().time_base;
    m_decoder->thread_count = 0;
    if (m_stream.kind == InputKind::Live) m_decoder->thread_type = FF_THREAD_SLICE;  // adds no delay
    if (result >= 0) result = avcodec_open2(m_decoder.get(), codec, nullptr);
    if (result < 0) throw Failure("cannot decode {}: {}", m_name, LibavText(result));
}

bool MediaInput::IsStillPicture() const {
    const std::string_view reader = m_input->iformat->name;
    return reader == "image2" || reader.ends_with("_pipe");
}

void MediaInput::Describe(const InputOptions& options, const Notes& notes) {
    const AVStream& stream = VideoStream();
    if (const uint8_t* matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr)) {
        m_quarterTurns = QuarterTurns(matrix);
    }
    if (IsStillPicture()) {
        m_stream.kind = InputKind::Picture;
        // Only the decoded picture tells how the photographer held the camera.
        if (!DecodeNext()) throw Failure("{} cannot be decoded; it may be cut short", m_name);
        if (const auto* data = av_frame_get_side_data(m_picture.get(), AV_FRAME_DATA_DISPLAYMATRIX)) {
            m_quarterTurns = QuarterTurns(data->data);
        }
    }
    Size native{m_decoder->width, m_decoder->height};
    AVRational aspect = av_guess_sample_aspect_ratio(m_input.get(), m_input->streams[m_videoIndex], nullptr);
    if (m_quarterTurns % 2 != 0) {
        std::swap(native.width, native.height);
        std::swap(aspect.num, aspect.den);
    }
    if (native.width < 1 || native.height < 1)
        throw Failure("{} has no pictures that can be decoded", m_name);
    const Size wanted = options.size.value_or(native);
    m_stream.size = EvenSize(wanted);
    if (m_stream.size != wanted) {
        notes.Add("{}x{} is scaled to {}x{}: sides have to be even", wanted.width, wanted.height,
                  m_stream.size.width, m_stream.size.height);
    }
    if (std::max(m_stream.size.width, m_stream.size.height) > kLargestSide) {
        throw Failure("{} is {}x{}; effects take sides up to {}; --size scales it", m_name, native.width,
                      native.height, kLargestSide);
    }
    if (aspect.num > 0 && aspect.den > 0 && !options.size) m_stream.pixelAspect = aspect;
    m_stream.colorSpace =
        m_decoder->colorspace == AVCOL_SPC_RGB ? AVCOL_SPC_UNSPECIFIED : m_decoder->colorspace;
    if (options.format == kFormatPacked) m_stream.colorSpace = AVCOL_SPC_SMPTE170M;
    if (m_stream.kind == InputKind::Picture) return;

    const AVRational rate = av_guess_frame_rate(m_input.get(), m_input->streams[m_videoIndex], nullptr);
    if (rate.num > 0 && rate.den > 0) m_stream.frameRate = rate;
    m_stream.timeBase = stream.time_base;
    if (m_stream.kind == InputKind::Live) return;
    m_stream.frameCount = stream.nb_frames;
    if (m_stream.frameCount <= 0 && m_input->duration > 0) {
        m_stream.frameCount =
            av_rescale_q(m_input->duration, av_get_time_base_q(), av_inv_q(m_stream.frameRate));
    }
}

std::vector<const AVStream*> MediaInput::AudioStreams() const {
    std::vector<const AVStream*> streams;
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        if (m_input->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            streams.push_back(m_input->streams[i]);
        }
    }
    return streams;
}

bool MediaInput::Read(Frame& frame) {
    // A picture has been decoded already.
    if (m_picture->data[0] == nullptr && !DecodeNext()) return false;
    Deliver(frame);
    av_frame_unref(m_picture.get());
    return true;
}

bool MediaInput::DecodeNext() {
    for (;;) {
        int result = avcodec_receive_frame(m_decoder.get(), m_picture.get());
        if (result == 0) return true;
        if (result == AVERROR_EOF) return false;
        if (result != AVERROR(EAGAIN)) {
            ++m_damagedCount;
            continue;
        }
        bool isVideo = false;
        while (!isVideo && ReadPacket()) isVideo = !TakeAudioPacket();
        if (m_inputEnded) {
            avcodec_send_packet(m_decoder.get(), nullptr);
            continue;
        }
        ++m_packetCount;
        result = avcodec_send_packet(m_decoder.get(), m_packet.get());
        if (result < 0 || (m_packet->flags & AV_PKT_FLAG_CORRUPT) != 0) ++m_damagedCount;
    }
}

// The next packet of a stream that is in use. False at the end, for whatever reason.
bool MediaInput::ReadPacket() {
    while (!m_inputEnded) {
        av_packet_unref(m_packet.get());
        const int result = av_read_frame(m_input.get(), m_packet.get());
        if (result < 0) {
            m_inputEnded = true;
            if (result != AVERROR_EOF && !Interrupted()) m_readError = LibavText(result);
        } else if (m_input->streams[m_packet->stream_index]->discard != AVDISCARD_ALL) {
            return true;
        }
    }
    return false;
}

// Puts the packet that was read into the queue of sound if it is sound.
bool MediaInput::TakeAudioPacket() {
    if (m_packet->stream_index == m_videoIndex) return false;
    const AVStream& stream = *m_input->streams[m_packet->stream_index];
    const int64_t start = m_input->start_time == AV_NOPTS_VALUE
                              ? 0
                              : av_rescale_q(m_input->start_time, av_get_time_base_q(), stream.time_base);
    if (m_packet->pts != AV_NOPTS_VALUE) m_packet->pts -= start;
    if (m_packet->dts != AV_NOPTS_VALUE) m_packet->dts -= start;
    PacketPtr packet = NewPacket();
    av_packet_move_ref(packet.get(), m_packet.get());
    m_audio.push_back(std::move(packet));
    return true;
}

PacketPtr MediaInput::NextAudio(int64_t end, bool readOn) {
    while (m_audio.empty() && readOn && ReadPacket()) TakeAudioPacket();
    if (m_audio.empty()) return nullptr;
    const AVPacket& next = *m_audio.front();
    const AVRational timeBase = m_input->streams[next.stream_index]->time_base;
    const bool before = end == std::numeric_limits<int64_t>::max() || next.pts == AV_NOPTS_VALUE ||
                        av_compare_ts(next.pts, timeBase, end, m_stream.timeBase) < 0;
    if (!before) return nullptr;
    PacketPtr packet = std::move(m_audio.front());
    m_audio.pop_front();
    return packet;
}

void MediaInput::Deliver(Frame& frame) {
    Size target = m_stream.size;
    if (m_quarterTurns % 2 != 0) std::swap(target.width, target.height);
    const AVFrame& converted =
        m_converter.Convert(*m_picture, target.width, target.height, PixelFormat(frame.Format()));
    CopyTurned(converted, m_quarterTurns, frame);
    frame.time = TimeOf(*m_picture);
    m_lastTime = frame.time;
    ++m_frameCount;
}

// Ticks from the beginning, rising from frame to frame whatever the input says.
int64_t MediaInput::TimeOf(const AVFrame& picture) {
    const int64_t expected = m_lastTime < 0 ? 0 : m_lastTime + m_stream.TicksPerFrame();
    if (picture.best_effort_timestamp == AV_NOPTS_VALUE || m_stream.kind == InputKind::Picture)
        return expected;
    const int64_t start = m_input->start_time == AV_NOPTS_VALUE
                              ? 0
                              : av_rescale_q(m_input->start_time, av_get_time_base_q(), m_stream.timeBase);
    return std::max(picture.best_effort_timestamp - start, m_lastTime + 1);
}

std::string MediaInput::Shortfall() const {
    if (!m_readError.empty()) return m_readError;
    const int64_t announced = VideoStream().nb_frames;
    if (announced > m_packetCount) {
        return fmt::format("cut short, {} of {} frames are there", m_packetCount, announced);
    }
    if (m_damagedCount > 0) return fmt::format("damaged, {} frames could not be read well", m_damagedCount);
    // Streams of sound may be longer than the video; a container that holds nothing but the video may not.
    if (m_input->duration_estimation_method == AVFMT_DURATION_FROM_STREAM && AudioStreams().empty()) {
        constexpr int64_t kTolerance = AV_TIME_BASE / 2;
        const int64_t end =
            av_rescale_q(m_lastTime + m_stream.TicksPerFrame(), m_stream.timeBase, av_get_time_base_q());
        if (end + kTolerance < m_input->duration) {
            return fmt::format("cut short, {:.1f} of {:.1f} seconds are there",
                               static_cast<double>(end) / AV_TIME_BASE,
                               static_cast<double>(m_input->duration) / AV_TIME_BASE);
        }
    }
    return {};
}

}  // namespace host
