#include "Pictures.h"

#include <algorithm>
#include <string>

namespace sfxgst {
namespace {

struct FormatPair {
    GstVideoFormat gst;
    sfx_format sfx;
};

// In the order of preference. I420 and YV12 need no conversion.
constexpr FormatPair kFormats[] = {
    {GST_VIDEO_FORMAT_I420, SFX_I420}, {GST_VIDEO_FORMAT_YV12, SFX_YV12}, {GST_VIDEO_FORMAT_NV12, SFX_NV12},
    {GST_VIDEO_FORMAT_NV21, SFX_NV21}, {GST_VIDEO_FORMAT_Y42B, SFX_I422}, {GST_VIDEO_FORMAT_Y444, SFX_I444},
    {GST_VIDEO_FORMAT_YUY2, SFX_YUY2}, {GST_VIDEO_FORMAT_UYVY, SFX_UYVY}, {GST_VIDEO_FORMAT_RGBA, SFX_RGBA},
    {GST_VIDEO_FORMAT_BGRA, SFX_BGRA}, {GST_VIDEO_FORMAT_ARGB, SFX_ARGB}, {GST_VIDEO_FORMAT_ABGR, SFX_ABGR},
    {GST_VIDEO_FORMAT_RGBx, SFX_RGBA}, {GST_VIDEO_FORMAT_BGRx, SFX_BGRA}, {GST_VIDEO_FORMAT_xRGB, SFX_ARGB},
    {GST_VIDEO_FORMAT_xBGR, SFX_ABGR}, {GST_VIDEO_FORMAT_RGB, SFX_RGB24}, {GST_VIDEO_FORMAT_BGR, SFX_BGR24},
};

/// A sfx_format, or -1, which libsfx refuses.
int32_t FormatOf(GstVideoFormat format) {
    const auto* const pair = std::find_if(std::begin(kFormats), std::end(kFormats),
                                          [&](const FormatPair& p) { return p.gst == format; });
    return pair != std::end(kFormats) ? pair->sfx : -1;
}

/// Bytes of a plane from the lowest address of its rows to the end of the mapped memory. 1 where the plane
/// does not lie in it.
size_t MappedBytes(const GstMapInfo& map, const uint8_t* topRow, ptrdiff_t stride, int32_t rows) {
    const auto begin = reinterpret_cast<uintptr_t>(map.data);
    const auto top = reinterpret_cast<uintptr_t>(topRow);
    const size_t above = stride < 0 ? static_cast<size_t>(-stride) * static_cast<size_t>(rows - 1) : 0;
    if (top < begin || top - begin < above || top - begin - above >= map.size) {
        return 1;
    }
    return map.size - (top - begin - above);
}

}  // namespace

GstCaps* SupportedCaps() {
    std::string formats;
    for (const FormatPair& pair : kFormats) {
        formats += formats.empty() ? "" : ", ";
        formats += gst_video_format_to_string(pair.gst);
    }
    const std::string side = "[1, " + std::to_string(SFX_MAX_SIDE) + "]";
    const std::string caps = "video/x-raw, format=(string){" + formats + "}, width=" + side +
                             ", height=" + side + ", framerate=" GST_VIDEO_FPS_RANGE;
    return gst_caps_from_string(caps.c_str());
}

sfx_picture PictureOf(const GstVideoFrame& frame, const GstVideoInfo& negotiated) {
    sfx_picture picture = SFX_PICTURE_INIT;
    picture.format = FormatOf(GST_VIDEO_FRAME_FORMAT(&frame));
    picture.width = GST_VIDEO_INFO_WIDTH(&negotiated);
    picture.height = GST_VIDEO_INFO_HEIGHT(&negotiated);
    for (int32_t plane = 0; plane < sfx_format_planes(picture.format); ++plane) {
        // Planes are mapped one by one where the buffer has a GstVideoMeta.
        const GstMapInfo& map = frame.map[frame.meta != nullptr ? plane : 0];
        picture.planes[plane] = static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, plane));
        picture.strides[plane] = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, plane);
        picture.sizes[plane] = MappedBytes(map, picture.planes[plane], picture.strides[plane],
                                           sfx_plane_rows(picture.format, plane, picture.height));
    }
    return picture;
}

}  // namespace sfxgst
