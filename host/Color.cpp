#include "Color.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace host {
namespace {

constexpr int kLinesOfBt709 = 720;

bool IsJpegFormat(int format) {
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVJ444P ||
           format == AV_PIX_FMT_YUVJ440P || format == AV_PIX_FMT_YUVJ411P;
}

const AVPixFmtDescriptor* Describe(int format) {
    return av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format));
}

bool IsGray(int format) {
    const AVPixFmtDescriptor* description = Describe(format);
    return description != nullptr && description->nb_components < 3 &&
           (description->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) == 0;
}

bool HasFrameChroma(int format) {
    const AVPixFmtDescriptor* description = Describe(format);
    return description != nullptr && description->log2_chroma_w == 1 && description->log2_chroma_h == 1;
}

}  // namespace

Color ColorOf(const AVFrame& picture) {
    return {picture.color_primaries, picture.color_trc, picture.colorspace, picture.color_range,
            picture.chroma_location};
}

void SetColor(AVFrame& picture, const Color& color) {
    picture.color_primaries = color.primaries;
    picture.color_trc = color.transfer;
    picture.colorspace = color.matrix;
    picture.color_range = color.range;
    picture.chroma_location = color.chroma;
}

void SetColor(AVCodecContext& codec, const Color& color) {
    codec.color_primaries = color.primaries;
    codec.color_trc = color.transfer;
    codec.colorspace = color.matrix;
    codec.color_range = color.range == AVCOL_RANGE_JPEG ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    codec.chroma_sample_location = color.chroma;
}

bool IsHighDynamicRange(const AVFrame& picture) {
    return picture.color_trc == AVCOL_TRC_SMPTE2084 || picture.color_trc == AVCOL_TRC_ARIB_STD_B67;
}

bool IsRgb(AVPixelFormat format) {
    const AVPixFmtDescriptor* description = Describe(format);
    return description != nullptr && (description->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
}

bool IsFullRange(const AVFrame& picture) {
    if (IsRgb(static_cast<AVPixelFormat>(picture.format)) || IsJpegFormat(picture.format)) return true;
    if (picture.color_range == AVCOL_RANGE_UNSPECIFIED) return IsGray(picture.format);
    return picture.color_range == AVCOL_RANGE_JPEG;
}

AVColorSpace MatrixForHeight(int lines) {
    return lines >= kLinesOfBt709 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

Color ColorAsFrame(const AVFrame& picture, int targetHeight) {
    if (IsHighDynamicRange(picture)) {
        return {AVCOL_PRI_BT709, AVCOL_TRC_BT709, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG, AVCHROMA_LOC_LEFT};
    }
    Color color = ColorOf(picture);
    if (!HasFrameChroma(picture.format)) color.chroma = AVCHROMA_LOC_LEFT;
    if (IsRgb(static_cast<AVPixelFormat>(picture.format))) {
        color.matrix = MatrixForHeight(targetHeight);
        color.range = AVCOL_RANGE_MPEG;
        return color;
    }
    if (color.matrix == AVCOL_SPC_RGB) color.matrix = AVCOL_SPC_UNSPECIFIED;
    // Scaled to another height it would be taken for another matrix.
    const AVColorSpace assumed = MatrixForHeight(picture.height);
    if (color.matrix == AVCOL_SPC_UNSPECIFIED && assumed != MatrixForHeight(targetHeight)) {
        color.matrix = assumed;
    }
    if (IsFullRange(picture)) color.range = AVCOL_RANGE_JPEG;
    return color;
}

}  // namespace host
