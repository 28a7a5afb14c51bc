#include <gtest/gtest.h>

#include "tests/effects/drawing/DrawingModels.h"

namespace {

using namespace drawing_model;

constexpr const char* kGuid = "{7B4F7937-8D17-4216-B206-383740E65E17}";

void ColoredPencilModel(TestFrame& frame) {
    PlainPlane luma = LumaOf(frame);
    PlainPlane scratch = luma;
    PlainBox(scratch, 5);
    for (size_t i = 0; i < luma.pixels.size(); ++i) {
        const int rise = std::max(luma.pixels[i] - scratch.pixels[i], 0);
        const int line = 255 - std::min(rise * 16, 255);
        luma.pixels[i] = static_cast<uint8_t>(line > 30 ? line - 30 : line);
    }
    scratch = luma;
    Gauss5(scratch, luma);
    luma.WriteTo(frame.plane(0));
}

TEST(ColoredPencil, KeepsTheContract) {
    ExpectEffect(kGuid, "Colored Pencil");
    ExpectNoProperties(kGuid);
}

TEST(ColoredPencil, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, EveryFrame(ColoredPencilModel));
}

TEST(ColoredPencil, EqualsItsModelOnTinyFrames) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, EveryFrame(ColoredPencilModel),
                      {{1, 1}, {2, 9}, {4, 4}, {5, 5}, {9, 9}, {10, 9}, {10, 10}, {11, 30}, {64, 5}});
}

TEST(ColoredPencil, AUniformFrameIsPaper) {
    ExpectUniformFramesBecome(kGuid, 225, 90, 170);
}

/// A step from dark to bright draws its line on the bright side, and the frame of the picture stays paper.
TEST(ColoredPencil, DrawsOnTheBrightSideOfAStep) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    TestFrame frame(64, 48);
    for (int i = 0; i < 64 * 48; ++i) frame.y()[i] = i % 64 < 32 ? 60 : 120;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    const PlainPlane luma = LumaOf(frame);
    for (int y = 0; y < 48; ++y) {
        for (const int border : {0, 1, 62, 63}) EXPECT_EQ(luma(border, y), 225);
        EXPECT_EQ(luma(20, y), 225);
        EXPECT_EQ(luma(44, y), 225);
    }
    EXPECT_LT(luma(32, 24), luma(31, 24));
    EXPECT_LT(luma(33, 24), luma(30, 24));
    EXPECT_EQ(luma(29, 24), 225);
    EXPECT_LT(luma(34, 24), 225);
}

}  // namespace
