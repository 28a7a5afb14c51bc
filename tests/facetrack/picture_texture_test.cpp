#include "facetrack/PictureTexture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace {

constexpr int32_t kWidth = 40, kHeight = 30, kThumb = 20;

/// A frame whose planes hold one value each.
PlaneSet FlatFrame(uint8_t y, uint8_t u, uint8_t v) {
    PlaneSet frame;
    frame.Allocate(kWidth, kHeight);
    frame.y.Fill(y);
    frame.u.Fill(u);
    frame.v.Fill(v);
    return frame;
}

TEST(PictureTexture, WhatIsOutsideTheFrameIsBlackOnTheThumbnail) {
    for (const CPictureTexture::Point slot :
         {CPictureTexture::Point{10, 6}, {30, 6}, {-12, 6}, {10, 24}, {10, -14}, {26, 18}, {-6, -8}}) {
        CPictureTexture texture(kWidth, kHeight, kThumb, kThumb);
        PlaneSet frame = FlatFrame(70, 90, 110);
        // The region is empty, so nothing but the thumbnail is drawn.
        ASSERT_EQ(texture.Start(frame, {0, 0}, &slot, {0, 0}, 0, 1, 1), kSuccess);
        ASSERT_TRUE(texture.Advance());
        texture.DrawMoving(frame);

        PlaneSet shown = FlatFrame(0, 0, 0);
        texture.PlaceSlot({0, 0});
        texture.DrawThumb(shown);
        for (int32_t y = 2; y < kThumb - 2; ++y) {
            for (int32_t x = 2; x < kThumb - 2; ++x) {
                const bool inside =
                    slot.x + x >= 0 && slot.x + x < kWidth && slot.y + y >= 0 && slot.y + y < kHeight;
                ASSERT_EQ(shown.y.Row(y)[x], inside ? 70 : 0)
                    << slot.x << "," << slot.y << ": " << x << "," << y;
                ASSERT_EQ(shown.u.Row(y / 2)[x / 2], inside ? 90 : 128) << slot.x << "," << slot.y;
                ASSERT_EQ(shown.v.Row(y / 2)[x / 2], inside ? 110 : 128) << slot.x << "," << slot.y;
            }
        }
    }
}

TEST(PictureTexture, IsDrawnAsAThumbnailOnceItHasLanded) {
    CPictureTexture texture(kWidth, kHeight, kThumb, kThumb);
    const CPictureTexture::Point slot{10, 6};
    PlaneSet frame = FlatFrame(70, 90, 110);
    ASSERT_EQ(texture.Start(frame, {0, 0}, &slot, {0, 0}, 0, 1, 1), kSuccess);
    ASSERT_TRUE(texture.Advance());
    texture.DrawMoving(frame);
    ASSERT_FALSE(texture.Advance());

    PlaneSet moving = FlatFrame(20, 30, 40), thumbnail = FlatFrame(20, 30, 40);
    texture.DrawMoving(moving);
    texture.DrawThumb(thumbnail);
    EXPECT_EQ(moving.y.Row(16)[20], 70);
    EXPECT_EQ(moving.u.Row(8)[10], 90);
    for (const auto& [one, other] :
         {std::pair{&moving.y, &thumbnail.y}, {&moving.u, &thumbnail.u}, {&moving.v, &thumbnail.v}}) {
        EXPECT_TRUE(std::equal(one->data, one->data + one->Size(), other->data));
    }
}

}  // namespace
