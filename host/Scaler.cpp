#include "Scaler.h"

#include <new>
#include <utility>

#include "Color.h"
#include "Errors.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace host {
namespace {

// Exact rather than fast, and the same on every processor.
constexpr int kScalerFlags = SWS_BICUBIC | SWS_FULL_CHR_H_INT | SWS_ACCURATE_RND | SWS_BITEXACT;

// The yuvj formats are YUV formats with a range of their own, which is stated beside them.
int PlainFormat(int format) {
    switch (format) {
        case AV_PIX_FMT_YUVJ420P:
            return AV_PIX_FMT_YUV420P;
        case AV_PIX_FMT_YUVJ422P:
            return AV_PIX_FMT_YUV422P;
        case AV_PIX_FMT_YUVJ444P:
            return AV_PIX_FMT_YUV444P;
        case AV_PIX_FMT_YUVJ440P:
            return AV_PIX_FMT_YUV440P;
        case AV_PIX_FMT_YUVJ411P:
            return AV_PIX_FMT_YUV411P;
        default:
            return format;
    }
}

AVColorSpace MatrixOf(const AVFrame& picture) {
    return picture.colorspace == AVCOL_SPC_UNSPECIFIED ? MatrixForHeight(picture.height) : picture.colorspace;
}

// Turns a plane of `width` by `height` pixels clockwise.
void TurnPlane(const uint8_t* source, ptrdiff_t sourceStep, int width, int height, int quarterTurns,
               uint8_t* target, ptrdiff_t targetStep) {
    for (int y = 0; y < height; ++y) {
        const uint8_t* row = source + y * sourceStep;
        for (int x = 0; x < width; ++x) {
            int tx = x, ty = y;
            switch (quarterTurns) {
                case 1:
                    tx = height - 1 - y, ty = x;
                    break;
                case 2:
                    tx = width - 1 - x, ty = height - 1 - y;
                    break;
                case 3:
                    tx = y, ty = width - 1 - x;
                    break;
                default:
                    break;
            }
            target[ty * targetStep + tx] = row[x];
        }
    }
}

}  // namespace

void Scaler::SetUp(const Setting& setting) {
    scaler_.reset(sws_alloc_context());
    if (!scaler_) throw std::bad_alloc();
    const std::pair<const char*, int> options[] = {
        {"srcw", setting.fromWidth},        {"srch", setting.fromHeight},
        {"src_format", setting.fromFormat}, {"src_range", setting.fromFull ? 1 : 0},
        {"dstw", setting.toWidth},          {"dsth", setting.toHeight},
        {"dst_format", setting.toFormat},   {"dst_range", setting.toFull ? 1 : 0},
        {"sws_flags", kScalerFlags},
    };
    for (const auto& [name, value] : options) av_opt_set_int(scaler_.get(), name, value, 0);
    if (sws_init_context(scaler_.get(), nullptr, nullptr) < 0) {
        throw Failure("cannot convert pictures of {}x{} in the format {} to {}x{}", setting.fromWidth,
                      setting.fromHeight, av_get_pix_fmt_name(static_cast<AVPixelFormat>(setting.fromFormat)),
                      setting.toWidth, setting.toHeight);
    }
    constexpr int kUnchanged = 1 << 16;
    sws_setColorspaceDetails(scaler_.get(), sws_getCoefficients(setting.fromMatrix), setting.fromFull ? 1 : 0,
                             sws_getCoefficients(setting.toMatrix), setting.toFull ? 1 : 0, 0, kUnchanged,
                             kUnchanged);
    setting_ = setting;
}

void Scaler::Convert(const AVFrame& from, AVFrame& to) {
    const bool fromRgb = IsRgb(static_cast<AVPixelFormat>(from.format));
    const AVColorSpace fromMatrix = fromRgb ? MatrixOf(to) : MatrixOf(from);
    const AVColorSpace toMatrix = fromRgb ? MatrixOf(to) : fromMatrix;
    const Setting setting{
        from.width, from.height, PlainFormat(from.format), to.width,       to.height, PlainFormat(to.format),
        fromMatrix, toMatrix,    IsFullRange(from),        IsFullRange(to)};
    if (!scaler_ || setting != setting_) SetUp(setting);
    const int rows = sws_scale(scaler_.get(), from.data, from.linesize, 0, from.height, to.data, to.linesize);
    if (rows < 0) throw Failure("cannot convert a picture: {}", LibavText(rows));
}

void CopyTurned(const AVFrame& from, int quarterTurns, AVFrame& to) {
    for (int plane = 0; plane < 3; ++plane) {
        const int width = plane == 0 ? from.width : (from.width + 1) / 2;
        const int height = plane == 0 ? from.height : (from.height + 1) / 2;
        TurnPlane(from.data[plane], from.linesize[plane], width, height, quarterTurns, to.data[plane],
                  to.linesize[plane]);
    }
}

}  // namespace host
