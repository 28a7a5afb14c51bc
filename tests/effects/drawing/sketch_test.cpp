#include <gtest/gtest.h>

#include "effects/drawing/Sketch.h"
#include "tests/effects/drawing/TonePageModel.h"

namespace {

using namespace drawing_model;

constexpr const char* kGuids[4] = {"", "{3A849CCB-B961-40FF-ABB7-4385365DF0FC}",
                                   "{4DD74959-BE0F-44B1-92B6-043DC61D9F39}",
                                   "{E4CA9AFE-50ED-496A-9DC6-214A38B3AEA9}"};

void DrawPage(PlainPlane& page, int level) {
    int64_t sum = SumOf(page);
    const int64_t target = int64_t{std::min(level * 225 / 255 + 75, 255)} * page.width * page.height;
    while (sum > target) {
        const int px = std::rand() % page.width;
        const int py = std::rand() % page.height;
        const int length = std::rand() % 20 + 1;
        const int step = std::rand() % 2 == 0 ? 1 : -1;
        const int half = length / 2;
        int drawn = 0;
        for (int n = 0; n < length; ++n) {
            const int x = px - half + n, y = py - half * step + n * step;
            if (!Inside(page, x, y)) break;
            page(x, y) = static_cast<uint8_t>(level);
            ++drawn;
        }
        sum -= drawn * level;
    }
    if (level < 101) return;
    for (int y = 0; y < page.height; ++y) {
        for (int x = 2; x < page.width - 1; ++x) {
            if (page(x - 2, y) != 255 && page(x - 1, y) != 255 && page(x, y) != 255 &&
                page(x + 1, y) != 255) {
                page(x, y) = 255;
            }
        }
    }
}

class SketchModel {
  public:
    SketchModel(int variant, int width, int height) : variant_(variant), pages_(width, height, DrawPage) {}

    void operator()(TestFrame& frame) const {
        PlainPlane luma = LumaOf(frame);
        const std::vector<int> strengths = EdgeStrengths(luma);
        for (size_t i = 0; i < luma.pixels.size(); ++i) {
            uint8_t& y = luma.pixels[i];
            const int g = strengths[i];
            if (variant_ == 2) {
                y = g < 250 ? pages_(y, i) : 30;
            } else if (variant_ == 3) {
                y = g > 50 ? pages_(y, i) : pages_(Lifted(y), i);
            } else {
                y = pages_(y, i);
            }
        }
        if (variant_ == 3) SoftenDrawing(luma);
        luma.WriteTo(frame.plane(0));
    }

  private:
    int variant_;
    TonePageModel pages_;
};

auto ModelOf(int variant) {
    return [variant](int w, int h) { return SketchModel(variant, w, h); };
}

TEST(Sketch, KeepsTheContract) {
    for (const int variant : {1, 2, 3}) {
        ExpectEffect(kGuids[variant], "Sketch");
        ExpectNoProperties(kGuids[variant]);
    }
}

TEST(Sketch, EqualsItsModel) {
    for (const int variant : {1, 2, 3}) {
        EffectDriver effect(kGuids[variant]);
        ExpectEqualsModel(effect, ModelOf(variant));
    }
}

TEST(Sketch, EqualsItsModelOnTinyFrames) {
    for (const int variant : {1, 2, 3}) {
        EffectDriver effect(kGuids[variant]);
        ExpectEqualsModel(
            effect, ModelOf(variant),
            {{1, 1}, {1, 40}, {40, 1}, {2, 2}, {2, 9}, {3, 3}, {4, 5}, {5, 3}, {64, 2}, {127, 3}, {129, 5}});
    }
}

TEST(Sketch, AnyOtherVariantIsTheFirst) {
    for (const int variant : {0, 4, -1}) {
        EffectDriver effect = EffectDriver::Of<CSketchSpecialEffectFilter>(variant);
        ExpectEqualsModel(effect, ModelOf(1), {{64, 48}});
    }
}

TEST(Sketch, BlankPaperIsWhiteAndBlackIsDarkGrey) {
    for (const int variant : {1, 2, 3}) {
        EffectDriver effect(kGuids[variant]);
        ASSERT_EQ(effect.Configure(96, 64), kSuccess);
        for (int luma = 0; luma < 256; ++luma) {
            TestFrame frame(96, 64);
            frame.Fill(static_cast<uint8_t>(luma), 90, 170);
            ASSERT_EQ(effect.Process(frame), kSuccess);
            const int tone = variant == 3 ? Lifted(luma) : luma;
            if (tone >= 26 && tone < 205) continue;
            EXPECT_EQ(frame, TestFrame(96, 64).Fill(tone < 26 ? 30 : 255, 90, 170)) << luma;
        }
    }
}

TEST(Sketch, NeverInksTheBorder) {
    EffectDriver effect(kGuids[2]);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    TestFrame frame(64, 48);
    for (int i = 0; i < 64 * 48; ++i) frame.y()[i] = i % 64 / 2 % 2 == 0 ? 240 : 128;
    const TestFrame before = frame;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    int inked = 0;
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            const int at = y * 64 + x;
            const bool border = x == 0 || y == 0 || x == 63 || y == 47;
            if (before.plane(0)[static_cast<size_t>(at)] != 240) continue;
            EXPECT_EQ(frame.y()[at], border ? 255 : 30) << x << ", " << y;
            inked += frame.y()[at] == 30;
        }
    }
    EXPECT_GT(inked, 1000);
}

TEST(Sketch, TheSoftenedRingRepeatsItsNeighbours) {
    EffectDriver effect(kGuids[3]);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    TestFrame frame(64, 48);
    frame.Randomize(3);
    ASSERT_EQ(effect.Process(frame), kSuccess);
    PlainPlane luma = LumaOf(frame), repaired = luma;
    ReplicateRing(repaired);
    EXPECT_EQ(luma.pixels, repaired.pixels);
}

/// The strokes stay where they are from frame to frame; a second `Configure` draws new ones.
TEST(Sketch, DrawsItsPagesOncePerConfigure) {
    EffectDriver effect(kGuids[1]);
    const auto draw = [&] {
        TestFrame frame(96, 64);
        frame.Fill(100, 1, 2);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        return frame;
    };
    std::srand(3);
    ASSERT_EQ(effect.Configure(96, 64), kSuccess);
    const TestFrame first = draw();
    EXPECT_EQ(draw(), first);
    ASSERT_EQ(effect.Configure(96, 64), kSuccess);
    EXPECT_NE(FirstDifference(draw(), first), "");
    std::srand(3);
    ASSERT_EQ(effect.Configure(96, 64), kSuccess);
    EXPECT_EQ(draw(), first);
}

TEST(Sketch, DrawsItsPagesForPackedStreamsToo) {
    for (const int variant : {1, 2, 3}) ExpectPackedDrawsTheSame(kGuids[variant]);
}

}  // namespace
