// A picture in a buffer of GStreamer's, and the same as libsfx sees it.
#ifndef SPECIALEFFECTS_TESTS_BRIDGES_GSTREAMER_PICTURE_H
#define SPECIALEFFECTS_TESTS_BRIDGES_GSTREAMER_PICTURE_H

#include <gst/video/video.h>

#include <cstdint>
#include <string>
#include <vector>

#include "sfx/sfx.h"

/// The formats of the elements' pads, by GStreamer's name.
struct NamedFormat {
    const char* name;
    sfx_format format;
};
inline constexpr NamedFormat kNamedFormats[] = {
    {"I420", SFX_I420}, {"YV12", SFX_YV12}, {"NV12", SFX_NV12}, {"NV21", SFX_NV21}, {"Y42B", SFX_I422},
    {"Y444", SFX_I444}, {"YUY2", SFX_YUY2}, {"UYVY", SFX_UYVY}, {"RGBA", SFX_RGBA}, {"BGRA", SFX_BGRA},
    {"ARGB", SFX_ARGB}, {"ABGR", SFX_ABGR}, {"RGBx", SFX_RGBA}, {"BGRx", SFX_BGRA}, {"xRGB", SFX_ARGB},
    {"xBGR", SFX_ABGR}, {"RGB", SFX_RGB24}, {"BGR", SFX_BGR24},
};

/// A picture with tight planes.
class Picture {
  public:
    Picture(const NamedFormat& format, int32_t width, int32_t height);
    Picture(const Picture& other);
    Picture& operator=(const Picture&) = delete;

    const sfx_picture& record() const { return record_; }
    const std::vector<uint8_t>& bytes() const { return bytes_; }

    /// Shapes that move on from frame to frame, with some noise.
    Picture& Draw(int frame);

    /// Fills the rows of a mapped frame, or takes them from it.
    void CopyTo(GstVideoFrame& frame) const;
    void CopyFrom(const GstVideoFrame& frame);

  private:
    sfx_picture record_ = SFX_PICTURE_INIT;
    std::vector<uint8_t> bytes_;
};

std::string CapsText(const NamedFormat& format, int32_t width, int32_t height);

/// Video at 25 frames a second.
GstVideoInfo InfoOf(const NamedFormat& format, int32_t width, int32_t height);

/// A new buffer in GStreamer's usual layout. Frame n comes after n / 25 s.
GstBuffer* NewBuffer(const NamedFormat& format, const Picture& picture, int frame);

/// The picture in a buffer.
Picture PictureIn(GstBuffer* buffer, const NamedFormat& format, int32_t width, int32_t height);

#endif
