// How pictures lie in memory.
#include <array>

#include "Harness.h"

namespace {

/// A pixel as GStreamer reads it: alpha, then Y U V or R G B.
std::array<int, 4> PixelOf(GstBuffer* buffer, const NamedFormat& format, int32_t width, int32_t height, int x,
                           int y) {
    const GstVideoInfo info = InfoOf(format, width, height);
    GstVideoFrame frame;
    EXPECT_TRUE(gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ));
    std::vector<uint8_t> row(static_cast<size_t>(width + 8) * 4);
    info.finfo->unpack_func(info.finfo, GST_VIDEO_PACK_FLAG_NONE, row.data(), frame.data, frame.info.stride,
                            0, y, width);
    gst_video_frame_unmap(&frame);
    const uint8_t* const pixel = &row[static_cast<size_t>(x) * 4];
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

// A colour that libsfx paints is that colour for GStreamer in every format.
TEST(Formats, MeanTheSameToBoth) {
    for (const NamedFormat& format : kNamedFormats) {
        SCOPED_TRACE(format.name);
        Harness harness("sfx-line-art-1 background-color=0xffe02000");
        harness.SetFormat(format, 64, 48);
        BufferHandle out;
        for (int frame = 0; frame < 4; ++frame) {
            BufferHandle gray = harness.Input(0);
            gst_buffer_memset(gray.get(), 0, 128, gst_buffer_get_size(gray.get()));
            GST_BUFFER_PTS(gray.get()) = static_cast<GstClockTime>(frame) * GST_SECOND / 25;
            out = harness.PushAndPull(std::move(gray));
        }
        const auto [alpha, a, b, c] = PixelOf(out.get(), format, 64, 48, 32, 24);
        if (format.format >= SFX_RGB24) {
            EXPECT_NEAR(a, 0xE0, 8);
            EXPECT_NEAR(b, 0x20, 8);
            EXPECT_NEAR(c, 0x00, 8);
        } else {
            EXPECT_LT(b, 110);  // little blue
            EXPECT_GT(c, 190);  // much red
        }
        if (format.format >= SFX_RGBA && format.name[3] != 'x' && format.name[0] != 'x') {
            EXPECT_EQ(alpha, 128);
        }
    }
}

TEST(Formats, AreChangedInPlaceWhereRowsAreTight) {
    for (const char* const name : {"sfx-polarize", "sfx-motion-blur-1", "sfxchain effect=rain+quark"}) {
        Harness harness(name);
        harness.SetFormat(kI420, 64, 48);
        for (int frame = 0; frame < 3; ++frame) {
            BufferHandle input = harness.Input(frame);
            const GstBuffer* const buffer = input.get();
            const GstMemory* const memory = gst_buffer_peek_memory(input.get(), 0);
            const BufferHandle output = harness.PushAndPull(std::move(input));
            EXPECT_EQ(output.get(), buffer);
            EXPECT_EQ(gst_buffer_peek_memory(output.get(), 0), memory);
        }
    }
}

/// A buffer whose planes lie as the test wants it, in memory full of a guard byte.
BufferHandle LayOut(const NamedFormat& format, const Picture& picture, int extraStride, bool oneMemoryEach) {
    constexpr uint8_t kGuard = 0xA7;
    constexpr gsize kGap = 24;
    const sfx_picture& record = picture.record();
    const GstVideoInfo info = InfoOf(format, record.width, record.height);
    const gsize gap = oneMemoryEach ? 0 : kGap;
    gint strides[GST_VIDEO_MAX_PLANES] = {};
    gsize offsets[GST_VIDEO_MAX_PLANES] = {}, end = 0;
    BufferHandle buffer(gst_buffer_new());
    for (guint plane = 0; plane < GST_VIDEO_INFO_N_PLANES(&info); ++plane) {
        strides[plane] = GST_VIDEO_INFO_PLANE_STRIDE(&info, plane) + extraStride;
        offsets[plane] = end + gap;
        const int32_t rows = sfx_plane_rows(format.format, static_cast<int32_t>(plane), record.height);
        const gsize size = static_cast<gsize>(strides[plane]) * static_cast<gsize>(rows);
        end = offsets[plane] + size;
        if (oneMemoryEach) {
            gst_buffer_append_memory(buffer.get(), gst_allocator_alloc(nullptr, size, nullptr));
        }
    }
    if (!oneMemoryEach) {
        gst_buffer_append_memory(buffer.get(), gst_allocator_alloc(nullptr, end + gap, nullptr));
    }
    gst_buffer_memset(buffer.get(), 0, kGuard, gst_buffer_get_size(buffer.get()));
    gst_buffer_add_video_meta_full(buffer.get(), GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_INFO_FORMAT(&info),
                                   static_cast<guint>(record.width), static_cast<guint>(record.height),
                                   GST_VIDEO_INFO_N_PLANES(&info), offsets, strides);
    GstVideoFrame frame;
    EXPECT_TRUE(gst_video_frame_map(&frame, &info, buffer.get(), GST_MAP_WRITE));
    picture.CopyTo(frame);
    gst_video_frame_unmap(&frame);
    return buffer;
}

/// The bytes of a buffer outside the picture's rows.
std::vector<uint8_t> Outside(GstBuffer* buffer, const NamedFormat& format, int32_t width, int32_t height) {
    Picture blank(format, width, height);
    const BufferHandle copy(gst_buffer_copy_deep(buffer));
    const GstVideoInfo info = InfoOf(format, width, height);
    GstVideoFrame frame;
    EXPECT_TRUE(gst_video_frame_map(&frame, &info, copy.get(), GST_MAP_READWRITE));
    blank.CopyTo(frame);
    gst_video_frame_unmap(&frame);
    std::vector<uint8_t> bytes(gst_buffer_get_size(copy.get()));
    gst_buffer_extract(copy.get(), 0, bytes.data(), bytes.size());
    return bytes;
}

TEST(Formats, LieAsTheBufferSays) {
    for (const NamedFormat& format : kNamedFormats) {
        SCOPED_TRACE(format.name);
        for (const auto& [width, height] : std::vector<std::pair<int32_t, int32_t>>{{64, 48}, {35, 17}}) {
            for (const int extraStride : {0, 16, 52}) {
                for (const bool oneMemoryEach : {false, true}) {
                    Harness harness("sfx-liquefy-1");
                    Reference reference("liquefy-1");
                    harness.SetFormat(format, width, height);
                    for (int i = 0; i < 3; ++i) {
                        Picture wanted = Picture(format, width, height).Draw(i);
                        BufferHandle input = LayOut(format, wanted, extraStride, oneMemoryEach);
                        reference.Process(wanted, i);
                        const std::vector<uint8_t> outside = Outside(input.get(), format, width, height);
                        GST_BUFFER_PTS(input.get()) = static_cast<GstClockTime>(i) * GST_SECOND / 25;
                        const BufferHandle output = harness.PushAndPull(std::move(input));
                        ASSERT_TRUE(harness.PictureOf(output).bytes() == wanted.bytes());
                        ASSERT_TRUE(Outside(output.get(), format, width, height) == outside);
                    }
                }
            }
        }
    }
}

// Only the visible part of a larger picture in memory is a picture to the effect.
TEST(Formats, OfBuffersLargerThanTheVideo) {
    Harness harness("sfx-rain");
    Reference reference("rain");
    harness.SetFormat(kI420, 60, 40);
    GstVideoInfo large = InfoOf(kI420, 64, 48);
    for (int i = 0; i < 6; ++i) {
        Picture wanted = Picture(kI420, 60, 40).Draw(i);
        BufferHandle input(NewBuffer(kI420, Picture(kI420, 64, 48), i));
        gst_buffer_add_video_meta_full(input.get(), GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_FORMAT_I420, 64, 48,
                                       3, large.offset, large.stride);
        const GstVideoInfo info = InfoOf(kI420, 60, 40);
        GstVideoFrame frame;
        ASSERT_TRUE(gst_video_frame_map(&frame, &info, input.get(), GST_MAP_WRITE));
        wanted.CopyTo(frame);
        gst_video_frame_unmap(&frame);
        reference.Process(wanted, i);
        const BufferHandle output = harness.PushAndPull(std::move(input));
        ASSERT_TRUE(harness.PictureOf(output).bytes() == wanted.bytes()) << "frame " << i;
    }
}

// A plane that ends beyond its memory is refused, not read.
TEST(Formats, ThatDoNotFitTheirMemoryAreRefused) {
    Harness harness("sfx-polarize");
    harness.SetFormat(kI420, 64, 48);
    BufferHandle input(gst_buffer_new_allocate(nullptr, 64 * 48, nullptr));
    gst_buffer_memset(input.get(), 0, 0, 64 * 48);
    gsize offsets[GST_VIDEO_MAX_PLANES] = {0, 64 * 40, 64 * 47};
    gint strides[GST_VIDEO_MAX_PLANES] = {64, 32, 32};
    gst_buffer_add_video_meta_full(input.get(), GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_FORMAT_I420, 64, 48, 3,
                                   offsets, strides);
    EXPECT_EQ(harness.Push(std::move(input)), GST_FLOW_ERROR);
    EXPECT_EQ(harness.Messages(GST_MESSAGE_ERROR).size(), 1u);
}

TEST(Formats, InterlacedVideoIsChangedWithOneWarning) {
    Harness harness("sfx-polarize");
    Reference reference("polarize");
    for (const char* const size : {"width=64,height=48", "width=32,height=48", "width=64,height=48"}) {
        gst_harness_set_src_caps_str(
            harness.get(),
            (std::string("video/x-raw,format=I420,framerate=25/1,interlace-mode=interleaved,") + size)
                .c_str());
    }
    Picture wanted = Picture(kI420, 64, 48).Draw(0);
    const BufferHandle output = harness.PushAndPull(BufferHandle(NewBuffer(kI420, wanted, 0)));
    reference.Process(wanted, 0);
    EXPECT_TRUE(PictureIn(output.get(), kI420, 64, 48).bytes() == wanted.bytes());
    const std::vector<std::string> warnings = harness.Messages(GST_MESSAGE_WARNING);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find("interlaced"), std::string::npos);
}

}  // namespace
