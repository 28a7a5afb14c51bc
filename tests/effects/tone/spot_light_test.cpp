#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tests/effects/tone/ToneModels.h"
#include "tests/support/EffectDriver.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuids[] = {"{80636C0C-87C0-4EDE-AC46-B9F78D3DBF9F}",
                                  "{0255B3CB-9DF7-4B4D-ADBA-8730305B29EA}",
                                  "{6A5E49C5-2ACA-4115-B778-74AA63AE43C1}"};

int ToByte(double truncated) {
    return truncated >= 255 ? 255 : truncated >= 0 ? static_cast<int>(truncated) : 0;
}

/// One value of a mask, at distance d from the middle of row y.
int MaskValue(int shape, int w, int h, int y, int d) {
    if (shape == 0) {
        const double diagonal = std::sqrt(double{1} * w * w + double{1} * h * h);
        double a = std::abs(h / 2 - y);
        if (y > h / 2) a = a / 1.4;
        return 255 - (static_cast<int>(std::sqrt(d * d + a * a) * 255.0 / (diagonal * 0.5)) & 255);
    }
    const int q = h / 4 + y;
    if (shape == 1) {
        const double root = std::sqrt(q * q - (d * 1.8) * (d * 1.8));
        return std::isnan(root) ? 0 : ToByte(std::trunc((root - y / 3) * 255.0 / q));
    }
    if (q < d) return 0;
    double v = 2 * std::sqrt(double{1} * q * q - double{1} * d * d) - y * 1.8;
    if (v > 0) v = v + (h - y) / (h / 255.0);
    return ToByte(std::trunc(v - 255.0));
}

std::vector<uint8_t> MakeMask(int shape, int w, int h) {
    std::vector<uint8_t> mask;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            // The middle column of an odd width is as the one to its left.
            int d = x < w / 2 ? w / 2 - x : x - (w - 1 - w / 2);
            if (w % 2 != 0 && x == w / 2) d = 1;
            mask.push_back(w == 1 ? uint8_t{0} : static_cast<uint8_t>(MaskValue(shape, w, h, y, d)));
        }
    }
    return mask;
}

class SpotLightModel {
  public:
    SpotLightModel(int shape, int w, int h) : luma_(w, h, MakeMask(shape, w, h)), chroma_(w / 2, h / 2) {
        ModelResize(luma_, 0, chroma_);
    }

    void operator()(TestFrame& frame) const {
        for (size_t i = 0; i < luma_.pixels.size(); ++i) {
            const int m = luma_.pixels[i], y = frame.y()[i];
            frame.y()[i] =
                static_cast<uint8_t>(std::clamp(m == 0 ? y - 127 : ((m + 2 * y) >> 1) - 91, 0, 255));
        }
        for (size_t i = 0; i < chroma_.pixels.size(); ++i) {
            const int c = chroma_.pixels[i] * 16 / 255;
            frame.u()[i] = static_cast<uint8_t>(std::min(frame.u()[i] + c, 255));
            frame.v()[i] = static_cast<uint8_t>(std::min(frame.v()[i] + c, 255));
        }
    }

    const PlainPlane& luma() const { return luma_; }
    const PlainPlane& chroma() const { return chroma_; }

  private:
    PlainPlane luma_, chroma_;
};

class SpotLight : public testing::TestWithParam<int> {};

TEST_P(SpotLight, KeepsTheContract) {
    EffectDriver effect(kGuids[GetParam()]);
    EXPECT_EQ(effect.Name(), "Spot Light");
    ExpectContract(effect);
}

TEST_P(SpotLight, EqualsItsModel) {
    EffectDriver effect(kGuids[GetParam()]);
    ExpectEqualsModel(effect, [](int32_t w, int32_t h) { return SpotLightModel(GetParam(), w, h); });
}

TEST_P(SpotLight, ServesEveryLuma) {
    EffectDriver effect(kGuids[GetParam()]);
    ASSERT_EQ(effect.Configure(130, 90), kSuccess);
    const SpotLightModel model(GetParam(), 130, 90);
    for (int luma = 0; luma < 256; ++luma) {
        const auto value = static_cast<uint8_t>(luma);
        TestFrame frame = TestFrame(130, 90).Fill(value, value, static_cast<uint8_t>(255 - luma));
        TestFrame expected = frame;
        model(expected);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        ASSERT_EQ(FirstDifference(frame, expected), "") << luma;
    }
}

TEST_P(SpotLight, IsTheSameOnEveryFrame) {
    EffectDriver effect(kGuids[GetParam()]);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    const TestFrame before = TestFrame(64, 48).DrawScene(3);
    TestFrame first = before, second = before;
    EXPECT_EQ(effect.Process(first), kSuccess);
    EXPECT_EQ(effect.Process(second), kSuccess);
    EXPECT_EQ(FirstDifference(first, second), "");
}

TEST_P(SpotLight, HasNoProperties) {
    ExpectNoProperties(kGuids[GetParam()]);
}

INSTANTIATE_TEST_SUITE_P(Shapes, SpotLight, testing::Range(0, 3));

/// What the effect makes of a flat frame.
TestFrame Lit(int shape, int w, int h, uint8_t luma) {
    EffectDriver effect(kGuids[shape]);
    EXPECT_EQ(effect.Configure(w, h), kSuccess);
    TestFrame frame = TestFrame(w, h).Fill(luma, 100, 250);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    return frame;
}

/// Where the mask of a shape first has the value m; fails the test when it has it nowhere.
size_t PlaceOf(int shape, int w, int h, uint8_t m) {
    const std::vector<uint8_t> mask = MakeMask(shape, w, h);
    const auto at = std::find(mask.begin(), mask.end(), m);
    EXPECT_NE(at, mask.end()) << int{m};
    return at == mask.end() ? 0 : static_cast<size_t>(at - mask.begin());
}

TEST(SpotLightLevels, FullLight) {
    const size_t at = PlaceOf(0, 640, 480, 255);
    EXPECT_EQ(Lit(0, 640, 480, 0).y()[at], 36);
    EXPECT_EQ(Lit(0, 640, 480, 255).y()[at], 255);
}

TEST(SpotLightLevels, NoLight) {
    const size_t at = PlaceOf(1, 320, 240, 0);
    EXPECT_EQ(Lit(1, 320, 240, 100).y()[at], 0);
    EXPECT_EQ(Lit(1, 320, 240, 200).y()[at], 73);
}

TEST(SpotLightLevels, TheFirstGlimmerIsAStep) {
    const size_t at = PlaceOf(2, 320, 240, 1);
    EXPECT_EQ(Lit(2, 320, 240, 100).y()[at], 9);
}

TEST(SpotLightLevels, FullLightWarmsTheChromaBySixteen) {
    TestFrame frame = Lit(0, 1280, 720, 128);
    const auto brightest = std::max_element(frame.plane(1).begin(), frame.plane(1).end());
    EXPECT_EQ(*brightest, 116);
    EXPECT_EQ(frame.v()[brightest - frame.plane(1).begin()], 255);
}

// A luma of 91 shows half of the mask, rounded down.

TEST(SpotLightMask, RoundLightFadesFromTheCentreToTheUpperCorners) {
    TestFrame lit = Lit(0, 640, 480, 91);
    EXPECT_EQ(lit.y()[240 * 640 + 320], 127);
    EXPECT_EQ(lit.y()[0], 0);
    EXPECT_EQ(lit.y()[639], 0);
    EXPECT_GT(lit.y()[479 * 640], 0);
}

TEST(SpotLightMask, TheComparedMasksHoldEveryValue) {
    // The round light leaves out 0, which the beams have.
    const SpotLightModel model(0, 640, 480);
    for (const PlainPlane* mask : {&model.luma(), &model.chroma()}) {
        for (int m = 1; m < 256; ++m) {
            ASSERT_NE(std::ranges::find(mask->pixels, static_cast<uint8_t>(m)), mask->pixels.end()) << m;
        }
    }
}

TEST(SpotLightMask, BeamsHaveADarkEdge) {
    for (const int shape : {1, 2}) {
        TestFrame lit = Lit(shape, 640, 480, 91);
        EXPECT_EQ(lit.y()[0], 0);
        EXPECT_EQ(lit.y()[639], 0);
        EXPECT_GT(lit.y()[320], 50) << shape;
    }
}

TEST(SpotLightShapes, AnOddWidthHasNoSeamInTheMiddle) {
    for (const int shape : {0, 1, 2}) {
        TestFrame frame = Lit(shape, 161, 121, 200);
        for (int y = 0; y < 121; ++y) {
            ASSERT_EQ(frame.y()[y * 161 + 80], frame.y()[y * 161 + 79]) << shape << ", row " << y;
            ASSERT_EQ(frame.y()[y * 161 + 80], frame.y()[y * 161 + 81]) << shape << ", row " << y;
        }
    }
}

}  // namespace
