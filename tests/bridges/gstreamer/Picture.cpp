#include "Picture.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

constexpr GstClockTime kFrameDuration = GST_SECOND / 25;

/// Calls `copy(row of the frame, row of the picture, bytes)` for all rows.
template <class Copy>
void ForEachRow(const GstVideoFrame& frame, const sfx_picture& picture, Copy copy) {
    for (int32_t plane = 0; plane < sfx_format_planes(picture.format); ++plane) {
        auto* const data = static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, plane));
        const size_t length = sfx_plane_row_bytes(picture.format, plane, picture.width);
        for (int32_t y = 0; y < sfx_plane_rows(picture.format, plane, picture.height); ++y) {
            copy(data + ptrdiff_t{y} * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, plane),
                 picture.planes[plane] + y * picture.strides[plane], length);
        }
    }
}

}  // namespace

Picture::Picture(const NamedFormat& format, int32_t width, int32_t height) {
    bytes_.resize(sfx_picture_layout(nullptr, format.format, width, height, nullptr));
    EXPECT_GT(sfx_picture_layout(&record_, format.format, width, height, bytes_.data()), 0u);
}

Picture::Picture(const Picture& other) : bytes_(other.bytes_) {
    sfx_picture_layout(&record_, other.record_.format, other.record_.width, other.record_.height,
                       bytes_.data());
}

Picture& Picture::Draw(int frame) {
    uint32_t noise = static_cast<uint32_t>(frame) * 2654435761u + 1;
    for (int32_t plane = 0; plane < sfx_format_planes(record_.format); ++plane) {
        const size_t length = sfx_plane_row_bytes(record_.format, plane, record_.width);
        for (int32_t y = 0; y < sfx_plane_rows(record_.format, plane, record_.height); ++y) {
            uint8_t* const row = record_.planes[plane] + y * record_.strides[plane];
            for (size_t x = 0; x < length; ++x) {
                noise = noise * 1664525u + 1013904223u;
                const auto place = static_cast<int>(x) + 3 * frame;
                const bool inside = place % 40 < 20 && (y + frame) % 30 < 15;
                row[x] = static_cast<uint8_t>((inside ? 170 : 60) + (place + y) % 32 +
                                              static_cast<int>(noise >> 29));
            }
        }
    }
    return *this;
}

void Picture::CopyTo(GstVideoFrame& frame) const {
    ForEachRow(frame, record_,
               [](uint8_t* row, const uint8_t* own, size_t length) { std::memcpy(row, own, length); });
}

void Picture::CopyFrom(const GstVideoFrame& frame) {
    ForEachRow(frame, record_,
               [](const uint8_t* row, uint8_t* own, size_t length) { std::memcpy(own, row, length); });
}

std::string CapsText(const NamedFormat& format, int32_t width, int32_t height) {
    return std::string("video/x-raw,format=") + format.name + ",width=" + std::to_string(width) +
           ",height=" + std::to_string(height) + ",framerate=25/1";
}

GstVideoInfo InfoOf(const NamedFormat& format, int32_t width, int32_t height) {
    GstVideoInfo info;
    GstCaps* const caps = gst_caps_from_string(CapsText(format, width, height).c_str());
    EXPECT_TRUE(gst_video_info_from_caps(&info, caps));
    gst_caps_unref(caps);
    return info;
}

GstBuffer* NewBuffer(const NamedFormat& format, const Picture& picture, int frame) {
    const GstVideoInfo info = InfoOf(format, picture.record().width, picture.record().height);
    GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, GST_VIDEO_INFO_SIZE(&info), nullptr);
    gst_buffer_memset(buffer, 0, 0, GST_VIDEO_INFO_SIZE(&info));
    GstVideoFrame mapped;
    EXPECT_TRUE(gst_video_frame_map(&mapped, &info, buffer, GST_MAP_WRITE));
    picture.CopyTo(mapped);
    gst_video_frame_unmap(&mapped);
    GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(frame) * kFrameDuration;
    GST_BUFFER_DURATION(buffer) = kFrameDuration;
    return buffer;
}

Picture PictureIn(GstBuffer* buffer, const NamedFormat& format, int32_t width, int32_t height) {
    Picture picture(format, width, height);
    const GstVideoInfo info = InfoOf(format, width, height);
    GstVideoFrame mapped;
    if (buffer == nullptr || !gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ)) {
        ADD_FAILURE() << "no picture came out";
        return picture;
    }
    picture.CopyFrom(mapped);
    gst_video_frame_unmap(&mapped);
    return picture;
}
