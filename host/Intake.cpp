#include "Intake.h"

#include "Errors.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace host {
namespace {

// Through linear light: 100 nits become white, brighter parts are rolled off.
constexpr const char* kToneMapping =
    "zscale=transferin={}:primariesin={}:matrixin={}:rangein={}:transfer=linear:npl=100,format=gbrpf32le,"
    "zscale=primaries=bt709,tonemap=tonemap=hable:desat=0,"
    "zscale=transfer=bt709:matrix=bt709:range=tv:chromal=left,format=yuv420p";

}  // namespace

Intake::Intake(int width, int height, int quarterTurns, const Color& color)
    : quarterTurns_(quarterTurns),
      color_(color),
      pool_(width, height),
      sidewaysPool_(quarterTurns % 2 != 0 ? FramePool(height, width) : FramePool(width, height)) {}

AVFramePtr Intake::MapTones(const AVFrame& picture) {
    if (!HasFilter("zscale") || !HasFilter("tonemap")) {
        throw Failure(
            "the video has a high dynamic range (PQ or HLG) and FFmpeg's libraries here cannot reduce it; "
            "convert it to BT.709 first");
    }
    const bool changed =
        picture.width != mappedWidth_ || picture.height != mappedHeight_ || picture.format != mappedFormat_;
    if (!toneMapper_ || changed) {
        const bool hlg = picture.color_trc == AVCOL_TRC_ARIB_STD_B67;
        const bool full = picture.color_range == AVCOL_RANGE_JPEG;
        const bool rgb = IsRgb(static_cast<AVPixelFormat>(picture.format));
        toneMapper_.emplace(
            fmt::format(kToneMapping, hlg ? "arib-std-b67" : "smpte2084",
                        picture.color_primaries == AVCOL_PRI_UNSPECIFIED ? "bt2020" : "input",
                        picture.colorspace == AVCOL_SPC_UNSPECIFIED && !rgb ? "bt2020nc" : "input",
                        full  ? "full"
                        : rgb ? "input"
                              : "limited"),
            picture, AVRational{1, 1000});
        mappedWidth_ = picture.width;
        mappedHeight_ = picture.height;
        mappedFormat_ = picture.format;
    }
    toneMapper_->Send(&picture);
    AVFramePtr mapped = toneMapper_->Receive();
    if (!mapped) throw Failure("a picture cannot be tone-mapped");
    return mapped;
}

Frame Intake::Upright(AVFramePtr picture) {
    const Frame& size = sidewaysPool_.Take();
    const bool converts = picture->width != size.Width() || picture->height != size.Height() ||
                          (picture->format != AV_PIX_FMT_YUV420P && picture->format != AV_PIX_FMT_YUVJ420P) ||
                          IsFullRange(*picture) != (color_.range == AVCOL_RANGE_JPEG);
    if (!converts && quarterTurns_ == 0 && IsFrameLayout(*picture)) {
        picture->format = AV_PIX_FMT_YUV420P;
        return Frame(std::move(picture));
    }
    if (!converts && quarterTurns_ != 0) {
        Frame frame = pool_.Take();
        CopyTurned(*picture, quarterTurns_, frame.Picture());
        return frame;
    }
    Frame frame = sidewaysPool_.Take();
    SetColor(frame.Picture(), color_);
    if (converts) {
        scaler_.Convert(*picture, frame.Picture());
    } else {
        av_image_copy(frame.Picture().data, frame.Picture().linesize,
                      const_cast<const uint8_t**>(picture->data), picture->linesize, AV_PIX_FMT_YUV420P,
                      frame.Width(), frame.Height());
    }
    if (quarterTurns_ == 0) return frame;
    Frame turned = pool_.Take();
    CopyTurned(frame.Picture(), quarterTurns_, turned.Picture());
    return turned;
}

Frame Intake::Take(AVFramePtr picture) {
    const int64_t time = picture->pts;
    if (IsHighDynamicRange(*picture)) picture = MapTones(*picture);
    Frame frame = Upright(std::move(picture));
    SetColor(frame.Picture(), color_);
    frame.SetTime(time);
    return frame;
}

}  // namespace host
