#include "Libav.h"

#include <new>

#include "Errors.h"

extern "C" {
#include <libavdevice/avdevice.h>
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

namespace host {
namespace {

template <class T>
T* NotNull(T* object) {
    if (object == nullptr) throw std::bad_alloc();
    return object;
}

bool IsJpegFormat(AVPixelFormat format) {
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVJ444P ||
           format == AV_PIX_FMT_YUVJ440P || format == AV_PIX_FMT_YUVJ411P;
}

bool IsRgb(AVPixelFormat format) {
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(format);
    return description != nullptr && (description->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

bool IsFullRange(const AVFrame& picture, AVPixelFormat format) {
    return picture.color_range == AVCOL_RANGE_JPEG || IsJpegFormat(format) || IsRgb(format);
}

// Exact rather than fast, and the same on every processor.
constexpr int kScalerFlags = SWS_BICUBIC | SWS_FULL_CHR_H_INT | SWS_ACCURATE_RND | SWS_BITEXACT;

// Turns a plane of `width` by `height` pixels of Bytes bytes each clockwise.
template <int Bytes>
void TurnPlane(const uint8_t* source, ptrdiff_t sourceStep, int width, int height, int quarterTurns,
               uint8_t* target) {
    const int targetWidth = quarterTurns % 2 == 0 ? width : height;
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
            uint8_t* pixel = target + (static_cast<ptrdiff_t>(ty) * targetWidth + tx) * Bytes;
            for (int i = 0; i < Bytes; ++i) pixel[i] = row[x * Bytes + i];
        }
    }
}

}  // namespace

PacketPtr NewPacket() {
    return PacketPtr(NotNull(av_packet_alloc()));
}

AVFramePtr NewAVFrame() {
    return AVFramePtr(NotNull(av_frame_alloc()));
}

AVFramePtr NewAVFrame(int width, int height, AVPixelFormat format) {
    AVFramePtr frame = NewAVFrame();
    frame->width = width;
    frame->height = height;
    frame->format = format;
    const int result = av_frame_get_buffer(frame.get(), 0);
    if (result == AVERROR(EINVAL)) {
        throw Failure("pictures of {}x{} are too large for FFmpeg's libraries", width, height);
    }
    if (result < 0) throw std::bad_alloc();
    return frame;
}

AVFramePtr ViewOf(const Frame& frame) {
    AVFramePtr view = NewAVFrame();
    view->width = frame.Width();
    view->height = frame.Height();
    view->format = PixelFormat(frame.Format());
    for (int plane = 0; plane < frame.PlaneCount(); ++plane) {
        view->data[plane] = const_cast<uint8_t*>(frame.Plane(plane));  // nobody writes through a view
        view->linesize[plane] = frame.RowBytes(plane);
    }
    return view;
}

AVPixelFormat PixelFormat(int32_t format) {
    return format == kFormatPacked ? AV_PIX_FMT_RGB24 : AV_PIX_FMT_YUV420P;
}

std::string LibavText(int result) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(result, text, sizeof text);
    return text;
}

void SetUpLibav() {
    av_log_set_level(AV_LOG_QUIET);
    avdevice_register_all();
}

std::string FileUrl(const std::string& path) {
    return "file:" + path;
}

const AVFrame& Converter::Convert(const AVFrame& picture, int width, int height, AVPixelFormat format) {
    const auto sourceFormat = static_cast<AVPixelFormat>(picture.format);
    const bool fullSource = IsFullRange(picture, sourceFormat);
    const bool fullTarget = IsJpegFormat(format) || IsRgb(format);
    if (picture.width == width && picture.height == height && sourceFormat == format &&
        fullSource == fullTarget) {
        return picture;
    }
    SwsContext* before = scaler_.get();
    scaler_.reset(sws_getCachedContext(scaler_.release(), picture.width, picture.height, sourceFormat, width,
                                       height, format, kScalerFlags, nullptr, nullptr, nullptr));
    if (!scaler_) {
        throw Failure("cannot convert pictures of {}x{} in the format {} to {}x{}", picture.width,
                      picture.height, av_get_pix_fmt_name(sourceFormat), width, height);
    }
    if (scaler_.get() != before) {
        const int* sourceMatrix = sws_getCoefficients(picture.colorspace);
        const int* targetMatrix = IsRgb(sourceFormat) ? sws_getCoefficients(SWS_CS_ITU601) : sourceMatrix;
        constexpr int kUnchanged = 1 << 16;
        sws_setColorspaceDetails(scaler_.get(), sourceMatrix, fullSource ? 1 : 0, targetMatrix,
                                 fullTarget ? 1 : 0, 0, kUnchanged, kUnchanged);
    }
    if (!result_ || result_->width != width || result_->height != height || result_->format != format) {
        result_ = NewAVFrame(width, height, format);
    }
    const int rows = sws_scale(scaler_.get(), picture.data, picture.linesize, 0, picture.height,
                               result_->data, result_->linesize);
    if (rows < 0) throw Failure("cannot convert a picture: {}", LibavText(rows));
    return *result_;
}

void CopyTurned(const AVFrame& picture, int quarterTurns, Frame& frame) {
    for (int plane = 0; plane < frame.PlaneCount(); ++plane) {
        const uint8_t* source = picture.data[plane];
        const int step = picture.linesize[plane];
        const int width = plane == 0 ? picture.width : picture.width / 2;
        const int height = plane == 0 ? picture.height : picture.height / 2;
        if (quarterTurns == 0) {
            av_image_copy_plane(frame.Plane(plane), frame.RowBytes(plane), source, step,
                                frame.RowBytes(plane), frame.Rows(plane));
        } else if (frame.Format() == kFormatPacked) {
            TurnPlane<3>(source, step, width, height, quarterTurns, frame.Plane(plane));
        } else {
            TurnPlane<1>(source, step, width, height, quarterTurns, frame.Plane(plane));
        }
    }
}

}  // namespace host
