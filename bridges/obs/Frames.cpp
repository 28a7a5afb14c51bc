#include "Frames.h"

namespace sfxobs {
namespace {

constexpr int32_t kUnknown = -1;

int32_t FormatOf(video_format format) {
    switch (format) {
        case VIDEO_FORMAT_I420:
        case VIDEO_FORMAT_I40A:
            return SFX_I420;
        case VIDEO_FORMAT_NV12:
            return SFX_NV12;
        case VIDEO_FORMAT_I422:
        case VIDEO_FORMAT_I42A:
            return SFX_I422;
        case VIDEO_FORMAT_I444:
        case VIDEO_FORMAT_YUVA:
            return SFX_I444;
        case VIDEO_FORMAT_YUY2:
            return SFX_YUY2;
        case VIDEO_FORMAT_UYVY:
            return SFX_UYVY;
        case VIDEO_FORMAT_RGBA:
            return SFX_RGBA;
        case VIDEO_FORMAT_BGRA:
        case VIDEO_FORMAT_BGRX:
            return SFX_BGRA;
        case VIDEO_FORMAT_BGR3:
            return SFX_BGR24;
        default:
            return kUnknown;
    }
}

}  // namespace

bool PictureOf(const obs_source_frame& frame, sfx_picture& picture) {
    const int32_t format = FormatOf(frame.format);
    if (format == kUnknown) return false;
    // The matrix and range matter for RGB alone. Frames of RGB have no matrix; with this one the colours that
    // effects paint come out as they are meant.
    picture = SFX_PICTURE_INIT;
    picture.format = format;
    picture.width = static_cast<int32_t>(frame.width);
    picture.height = static_cast<int32_t>(frame.height);
    for (int32_t plane = 0; plane < sfx_format_planes(format); ++plane) {
        const auto stride = static_cast<ptrdiff_t>(frame.linesize[plane]);
        const ptrdiff_t rows = sfx_plane_rows(format, plane, picture.height);
        const bool bottomUp = frame.flip && rows > 0 && frame.data[plane] != nullptr;
        picture.planes[plane] = bottomUp ? frame.data[plane] + (rows - 1) * stride : frame.data[plane];
        picture.strides[plane] = bottomUp ? -stride : stride;
        picture.sizes[plane] = static_cast<size_t>(rows * stride);
    }
    return true;
}

}  // namespace sfxobs
