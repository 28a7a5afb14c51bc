#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/EffectDriver.h"

namespace {

constexpr const char* kGuid = "{3BF3AE40-0316-41B9-84C5-A8C671212CAC}";

/// One colour channel: half to even, saturated.
uint8_t Rounded(double value) {
    if (value >= 255) return 255;
    if (value <= 0) return 0;
    const int up = static_cast<int>(value + 0.5);
    return static_cast<uint8_t>(up % 2 != 0 && up == value + 0.5 ? up - 1 : up);
}

void SepiaPixel(uint8_t* p) {
    const float m[3][4] = {
        {0.393F, 0.769F, 0.189F, 0.0F}, {0.349F, 0.686F, 0.168F, 0.0F}, {0.272F, 0.534F, 0.131F, 1.0F}};
    uint8_t out[3] = {};
    for (int c = 0; c < 3; ++c) {
        out[c] = Rounded(double{m[c][0]} * p[0] + double{m[c][1]} * p[1] + double{m[c][2]} * p[2] +
                         double{m[c][3]});
    }
    std::copy_n(out, 3, p);
}

/// A planar frame of even size: widen, twist, average back.
void SepiaModel(TestFrame& frame) {
    const int w = frame.width(), h = frame.height();
    std::vector<uint8_t> rgb(static_cast<size_t>(3 * w * h));
    const auto sat = [](int v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); };
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const int chroma = y / 2 * (w / 2) + x / 2;
            const int luma = frame.y()[y * w + x] << 16;
            const int u = frame.u()[chroma] - 128, v = frame.v()[chroma] - 128;
            uint8_t* p = &rgb[static_cast<size_t>(3 * (y * w + x))];
            p[0] = sat((luma + 74711 * v) >> 16);
            p[1] = sat((luma - 38076 * v - 25821 * u) >> 16);
            p[2] = sat((luma + 133169 * u) >> 16);
            SepiaPixel(p);
        }
    }
    for (int y = 0; y < h; y += 2) {
        for (int x = 0; x < w; x += 2) {
            int sum = 0, s0 = 0, s2 = 0;
            for (int k = 0; k < 4; ++k) {
                const int at = (y + k / 2) * w + x + k % 2;
                const uint8_t* p = &rgb[static_cast<size_t>(3 * at)];
                const int light = 19595 * p[0] + 38470 * p[1] + 7471 * p[2];
                frame.y()[at] = static_cast<uint8_t>(light >> 16);
                sum += light;
                s0 += p[0];
                s2 += p[2];
            }
            const int at = y / 2 * (w / 2) + x / 2;
            frame.u()[at] =
                static_cast<uint8_t>((((((s2 << 16) - sum + 0x1ffff) >> 16) * 32244) >> 18) - 128);
            frame.v()[at] = sat((((((s0 << 16) - sum + 0x1ffff) >> 16) * 57475) >> 18) + 128);
        }
    }
}

TEST(Sepia, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Sepia");
    ExpectContract(effect, {.planarOnly = false});
}

TEST(Sepia, TintsPackedPixelsInPlace) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(2, 1, kFormatPacked), kSuccess);
    TestFrame frame(2, 1, kFormatPacked);
    std::fill_n(frame.y() + 3, 3, uint8_t{255});
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(std::vector<uint8_t>(frame.y(), frame.y() + 6), (std::vector<uint8_t>{0, 0, 1, 255, 255, 240}));

    ASSERT_EQ(effect.Configure(67, 35, kFormatPacked), kSuccess);
    TestFrame random(67, 35, kFormatPacked);
    random.Randomize(5);
    TestFrame expected = random;
    for (int i = 0; i < 67 * 35; ++i) SepiaPixel(expected.y() + 3 * i);
    EXPECT_EQ(effect.Process(random), kSuccess);
    EXPECT_EQ(FirstDifference(random, expected), "");
}

TEST(Sepia, RefusesAMissingPlane) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(16, 16), kSuccess);
    TestFrame frame(16, 16);
    const TestFrame before = frame.Randomize(3);
    frame.image().Plane[2] = nullptr;
    EXPECT_EQ(effect.Process(frame), kInvalidArgument);
    EXPECT_EQ(FirstDifference(frame, before), "");
    TestFrame packed(16, 16, kFormatPacked);
    packed.image().Plane[0] = nullptr;
    ASSERT_EQ(effect.Configure(16, 16, kFormatPacked), kSuccess);
    EXPECT_EQ(effect.Process(packed), kInvalidArgument);
}

TEST(Sepia, EqualsItsModelOnPlanarFrames) {
    EffectDriver effect(kGuid);
    for (const auto& [w, h] : {std::pair{320, 240}, {176, 144}, {640, 480}, {2, 2}, {34, 6}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        for (int i = 0; i < 20; ++i) {
            TestFrame frame(w, h);
            i % 2 == 0 ? frame.DrawScene(i) : frame.Randomize(static_cast<uint64_t>(i));
            TestFrame expected = frame;
            SepiaModel(expected);
            EXPECT_EQ(effect.Process(frame), kSuccess);
            ASSERT_EQ(FirstDifference(frame, expected), "") << w << " by " << h << ", frame " << i;
        }
    }
}

TEST(Sepia, PackedFramesNeedNoWorkspace) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(4, 4, kFormatPacked), kSuccess);
    effect->Shutdown();
    TestFrame frame(4, 4, kFormatPacked);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(frame.y()[2], 1);
}

TEST(Sepia, LeavesPackedFramesOfARefusedStreamAlone) {
    EffectDriver effect(kGuid);
    const TestFrame before = TestFrame(4, 4, kFormatPacked).Randomize(5);
    for (const auto& [w, h] : {std::pair{16385, 4}, {4, 16385}, {-4, 4}, {4, 0}, {1 << 30, 1 << 30}}) {
        EXPECT_EQ(effect.Configure(w, h, kFormatPacked), kInvalidArgument);
        TestFrame frame = before;
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, before), "") << w << " by " << h;
        EXPECT_TRUE(frame.GuardsIntact());
        frame.image().Plane[0] = nullptr;
        EXPECT_EQ(effect.Process(frame), kInvalidArgument);
    }
}

}  // namespace
