#include "VideoEncoder.h"

#include <algorithm>
#include <span>
#include <string_view>

#include <fmt/format.h>

extern "C" {
#include <libavutil/opt.h>
}

namespace host {
namespace {

struct EncoderSetting {
    const char* key;
    const char* value;
};

constexpr EncoderSetting kX264[] = {{"preset", "veryfast"}, {"crf", "20"}};
constexpr EncoderSetting kX265[] = {{"preset", "veryfast"}, {"crf", "23"}, {"x265-params", "log-level=none"}};
constexpr EncoderSetting kVp9[] = {
    {"deadline", "realtime"}, {"cpu-used", "6"}, {"row-mt", "1"}, {"crf", "28"}, {"b", "0"}};
constexpr EncoderSetting kVp8[] = {
    {"deadline", "realtime"}, {"cpu-used", "4"}, {"crf", "10"}, {"b", "4000000"}};
constexpr EncoderSetting kAom[] = {{"usage", "realtime"}, {"cpu-used", "8"}, {"row-mt", "1"}, {"crf", "30"}};
constexpr EncoderSetting kSvtAv1[] = {{"preset", "10"}, {"crf", "32"}};

struct SettingsOfEncoder {
    std::string_view encoder;
    std::span<const EncoderSetting> settings;
};

// Good pictures, about as fast as frames come.
constexpr SettingsOfEncoder kSettings[] = {
    {"libx264", kX264}, {"libx265", kX265},   {"libvpx-vp9", kVp9},
    {"libvpx", kVp8},   {"libaom-av1", kAom}, {"libsvtav1", kSvtAv1},
};

struct CodecName {
    std::string_view name;
    const char* encoder;
};

// What people call codecs, beside FFmpeg's own names of encoders.
constexpr CodecName kCodecNames[] = {
    {"h264", "libx264"}, {"avc", "libx264"},      {"h265", "libx265"},      {"hevc", "libx265"},
    {"vp8", "libvpx"},   {"vp9", "libvpx-vp9"},   {"av1", "libaom-av1"},    {"mpeg2", "mpeg2video"},
    {"mpeg4", "mpeg4"},  {"prores", "prores_ks"}, {"webp", "libwebp_anim"},
};

const AVCodec* FindEncoder(const std::string& name) {
    const auto* known = std::find_if(std::begin(kCodecNames), std::end(kCodecNames),
                                     [&name](const CodecName& codec) { return codec.name == name; });
    const AVCodec* codec =
        avcodec_find_encoder_by_name(known != std::end(kCodecNames) ? known->encoder : name.c_str());
    return codec != nullptr && codec->type == AVMEDIA_TYPE_VIDEO ? codec : nullptr;
}

// Bit streams that cannot say that black is 0 and white 255.
bool HasOnlyLimitedRange(AVCodecID codec) {
    return codec == AV_CODEC_ID_MPEG4 || codec == AV_CODEC_ID_MPEG2VIDEO || codec == AV_CODEC_ID_VP8 ||
           codec == AV_CODEC_ID_PRORES;
}

// Encoders whose quality goes by a quantizer that the program sets.
bool HasQuantizer(AVCodecID codec) {
    return codec == AV_CODEC_ID_MPEG4 || codec == AV_CODEC_ID_MPEG2VIDEO || codec == AV_CODEC_ID_MJPEG;
}

// The encoders of H.264 and HEVC print a line of their own for any other.
constexpr std::string_view kPresets[] = {"ultrafast", "superfast", "veryfast", "faster",   "fast",
                                         "medium",    "slow",      "slower",   "veryslow", "placebo"};

bool IsPreset(const AVCodec& codec, std::string_view preset) {
    const std::string_view name = codec.name;
    if (name != "libx264" && name != "libx265") return true;
    return std::find(std::begin(kPresets), std::end(kPresets), preset) != std::end(kPresets);
}

bool HasOption(const AVCodec& codec, const char* name) {
    return codec.priv_class != nullptr && av_opt_find(const_cast<const AVClass**>(&codec.priv_class), name,
                                                      nullptr, 0, AV_OPT_SEARCH_FAKE_OBJ) != nullptr;
}

AVPixelFormat FormatFor(const AVCodec& codec, bool animation) {
    if (codec.id == AV_CODEC_ID_GIF) return AV_PIX_FMT_PAL8;
    if (codec.id == AV_CODEC_ID_MJPEG) return AV_PIX_FMT_YUVJ420P;
    if (codec.pix_fmts == nullptr) return AV_PIX_FMT_YUV420P;
    const AVPixelFormat wanted = animation ? AV_PIX_FMT_RGB24 : AV_PIX_FMT_YUV420P;
    return avcodec_find_best_pix_fmt_of_list(codec.pix_fmts, wanted, 0, nullptr);
}

}  // namespace

VideoEncoder::VideoEncoder(Muxer& muxer, const StreamInfo& stream, const OutputOptions& options)
    : muxer_(muxer), inputTimeBase_(stream.timeBase) {
    Choose(options);
    encoder_ = NewCodecContext(codec_);
    stream_ = &muxer.AddStream();
    Configure(stream);
    Open(options);
    ticksPerFrame_ = std::max<int64_t>(av_rescale_q(1, av_inv_q(stream.frameRate), encoder_->time_base), 1);
    stream_->time_base = encoder_->time_base;
    stream_->avg_frame_rate = stream.frameRate;
    stream_->sample_aspect_ratio = encoder_->sample_aspect_ratio;
    muxer_.Check(avcodec_parameters_from_context(stream_->codecpar, encoder_.get()));
}

void VideoEncoder::Choose(const OutputOptions& options) {
    if (!options.codec.empty()) {
        codec_ = FindEncoder(options.codec);
        if (codec_ == nullptr) {
            throw UsageError(
                "there is no video encoder \"{}\"; h264, hevc, vp8, vp9, av1, mpeg4 and the names that "
                "\"ffmpeg -encoders\" lists can be used",
                options.codec);
        }
        if (!TakesCodec(muxer_.Kind(), codec_->id)) {
            throw UsageError("{} does not take {}; leave out --codec, or write to .mkv",
                             muxer_.Kind().extension, options.codec);
        }
        return;
    }
    for (const char* name : muxer_.Kind().videoEncoders) {
        codec_ = avcodec_find_encoder_by_name(name);
        if (codec_ != nullptr) return;
    }
    throw Failure("cannot write {}: FFmpeg's libraries here have no video encoder for it", muxer_.Path());
}

void VideoEncoder::Configure(const StreamInfo& stream) {
    const bool animation = muxer_.Kind().animation;
    Size size = stream.size;
    if (animation && stream.pixelAspect.num > 0) {
        size.width = static_cast<int>(av_rescale(size.width, stream.pixelAspect.num, stream.pixelAspect.den));
        size.width = std::clamp(size.width, 1, kLargestSide);
    }
    encoder_->width = size.width;
    encoder_->height = size.height;
    encoder_->pix_fmt = FormatFor(*codec_, animation);
    encoder_->framerate = stream.frameRate;
    encoder_->time_base = stream.timeBase;
    constexpr int kLargestMpegTimeBase = 65535;
    if (codec_->id == AV_CODEC_ID_MPEG4 && stream.timeBase.den > kLargestMpegTimeBase) {
        encoder_->time_base = {1, 1000};
    }
    if (codec_->id == AV_CODEC_ID_MPEG2VIDEO) encoder_->time_base = av_inv_q(stream.frameRate);
    if (codec_->id == AV_CODEC_ID_GIF) encoder_->time_base = {1, 100};
    encoder_->thread_count = 0;
    if (!animation) {
        encoder_->sample_aspect_ratio = stream.pixelAspect;
        SetColor(*encoder_, stream.color);
        if (HasOnlyLimitedRange(codec_->id)) encoder_->color_range = AVCOL_RANGE_MPEG;
    }
    if (encoder_->pix_fmt == AV_PIX_FMT_YUVJ420P) encoder_->color_range = AVCOL_RANGE_JPEG;
    if ((muxer_.Context().oformat->flags & AVFMT_GLOBALHEADER) != 0) {
        encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    if (HasQuantizer(codec_->id)) {
        constexpr int kQuality = 3;
        encoder_->flags |= AV_CODEC_FLAG_QSCALE;
        encoder_->global_quality = kQuality * FF_QP2LAMBDA;
    }
}

void VideoEncoder::Open(const OutputOptions& options) {
    Dictionary settings;
    for (const SettingsOfEncoder& known : kSettings) {
        if (known.encoder != codec_->name) continue;
        for (const EncoderSetting& setting : known.settings) settings.Set(setting.key, setting.value);
    }
    if (options.crf) {
        if (!HasOption(*codec_, "crf")) throw UsageError("the encoder {} takes no --crf", codec_->name);
        settings.Set("crf", std::to_string(*options.crf));
    }
    if (!options.preset.empty()) {
        if (!HasOption(*codec_, "preset")) throw UsageError("the encoder {} takes no --preset", codec_->name);
        if (!IsPreset(*codec_, options.preset)) {
            throw UsageError("{} has no preset \"{}\"; there are {}", codec_->name, options.preset,
                             fmt::join(kPresets, ", "));
        }
        settings.Set("preset", options.preset);
    }
    const int result = avcodec_open2(encoder_.get(), codec_, settings.Address());
    if (result >= 0) return;
    if (options.crf || !options.preset.empty()) {
        throw UsageError("the encoder {} refuses its options: {}; --crf and --preset may be out of its range",
                         codec_->name, LibavText(result));
    }
    throw Failure("cannot encode video of {}x{} with {}: {}", encoder_->width, encoder_->height, codec_->name,
                  LibavText(result));
}

bool VideoEncoder::TakesFramesAsTheyAre(const Frame& frame) const {
    return encoder_->pix_fmt == AV_PIX_FMT_YUV420P && encoder_->width == frame.Width() &&
           encoder_->height == frame.Height() &&
           IsFullRange(frame.Picture()) == (encoder_->color_range == AVCOL_RANGE_JPEG);
}

void VideoEncoder::Write(Frame frame) {
    const int64_t time = av_rescale_q(frame.Time(), inputTimeBase_, encoder_->time_base);
    if (lastTime_ >= 0) {
        muxer_.NoteGap(static_cast<double>(time - lastTime_) * av_q2d(encoder_->time_base));
    }
    lastTime_ = std::max(time, lastTime_ + 1);
    AVFramePtr converted;
    if (!TakesFramesAsTheyAre(frame)) {
        const bool gif = encoder_->pix_fmt == AV_PIX_FMT_PAL8;
        converted = NewAVFrame(encoder_->width, encoder_->height, gif ? AV_PIX_FMT_BGRA : encoder_->pix_fmt);
        converted->color_range = encoder_->color_range;
        converted->colorspace = frame.Picture().colorspace;
        scaler_.Convert(frame.Picture(), *converted);
        if (gif) {
            // Each picture has a palette of its own: nothing waits for the last one.
            if (!palette_) {
                palette_.emplace(
                    "split[a][b];[a]palettegen=stats_mode=single:reserve_transparent=0[p];"
                    "[b][p]paletteuse=new=1",
                    *converted, encoder_->time_base);
            }
            converted->pts = lastTime_;
            palette_->Send(converted.get());
            converted = palette_->Receive();
            if (!converted) throw Failure("no palette can be made for a picture");
        }
    }
    AVFrame& picture = converted ? *converted : frame.Picture();
    picture.pts = lastTime_;
    picture.quality = encoder_->global_quality;
    picture.pict_type = AV_PICTURE_TYPE_NONE;
    picture.sample_aspect_ratio = encoder_->sample_aspect_ratio;
    Encode(&picture);
}

void VideoEncoder::Finish() {
    Encode(nullptr);
}

void VideoEncoder::Encode(const AVFrame* picture) {
    muxer_.Check(avcodec_send_frame(encoder_.get(), picture));
    muxer_.WriteEncoded(*encoder_, *stream_, ticksPerFrame_);
}

}  // namespace host
