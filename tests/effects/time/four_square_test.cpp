#include <gtest/gtest.h>

#include <cstdlib>

#include "imaging/ScalarColor.h"
#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{6179FB24-F31A-44C7-B0AB-8DF5F96F4315}";

struct Rgb {
    uint8_t r, g, b;
};
struct Quadrant {
    Rgb black, white, tint;
};
constexpr Quadrant kQuadrants[4] = {{{225, 75, 25}, {253, 192, 39}, {180, 255, 180}},
                                    {{50, 180, 50}, {255, 255, 180}, {255, 128, 255}},
                                    {{0, 0, 0}, {180, 180, 255}, {255, 0, 0}},
                                    {{0, 0, 255}, {225, 225, 0}, {255, 80, 0}}};

class Model {
  public:
    void operator()(TestFrame& frame) {
        const int w = frame.width(), h = frame.height();
        PlainPlane scratch(w / 2, h / 2), smallChroma(w / 4, h / 4);
        PlainResize(LumaOf(frame), scratch);
        PlainPlane small = scratch;
        PlainGauss3(scratch, small);
        if (hasPrevious_) {
            for (size_t i = 0; i < small.pixels.size(); ++i) {
                if (std::abs(small.pixels[i] - previous_.pixels[i]) < 2) {
                    small.pixels[i] = previous_.pixels[i];
                }
            }
        }
        hasPrevious_ = true;
        previous_ = small;
        for (uint8_t& p : small.pixels) p = p > 180 ? 255 : p < 60 ? 0 : p;
        PlainResize(small, smallChroma);
        for (int q = 0; q < 4; ++q) {
            Print(frame, small, smallChroma, kQuadrants[q], q % 2 == 0 ? 0 : w / 2, q / 2 == 0 ? 0 : h / 2);
        }
    }

  private:
    static void Print(TestFrame& frame, const PlainPlane& small, const PlainPlane& smallChroma,
                      const Quadrant& colors, int x, int y) {
        const auto [black, white, tint] = colors;
        PlainPlane tile = small;
        for (uint8_t& p : tile.pixels) {
            p = p > 254 ? RgbToY(white.r, white.g, white.b) : p < 1 ? RgbToY(black.r, black.g, black.b) : p;
        }
        SoftPaste(frame, 0, tile, x, y);
        const int tu = static_cast<int>(tint.b * 0.439 - (tint.g * 0.291 + tint.r * 0.148));
        const int tv = static_cast<int>(tint.r * 0.439 - tint.g * 0.368 - tint.b * 0.071);
        for (int plane = 1; plane <= 2; ++plane) {
            PlainPlane chroma = smallChroma;
            for (uint8_t& p : chroma.pixels) {
                if (p == 0) {
                    p = plane == 1 ? RgbToU(black.r, black.g, black.b) : RgbToV(black.r, black.g, black.b);
                } else if (p == 255) {
                    p = plane == 1 ? RgbToU(white.r, white.g, white.b) : RgbToV(white.r, white.g, white.b);
                } else {
                    p = static_cast<uint8_t>(p * (plane == 1 ? tu : tv) / 255 + 128);
                }
            }
            SoftPaste(frame, plane, chroma, x / 2, y / 2);
        }
    }

    static void SoftPaste(TestFrame& frame, int plane, const PlainPlane& tile, int x, int y) {
        PlainPlane soft = tile;
        PlainGauss3(tile, soft);
        const int step = plane == 0 ? frame.width() : frame.width() / 2;
        for (int r = 0; r < soft.height; ++r) {
            for (int c = 0; c < soft.width; ++c) {
                frame.plane(plane)[static_cast<size_t>((y + r) * step + x + c)] =
                    static_cast<uint8_t>(soft.At(c, r));
            }
        }
    }

    bool hasPrevious_ = false;
    PlainPlane previous_;
};

TEST(FourSquare, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Four Square");
    ExpectContract(effect);
}

TEST(FourSquare, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int, int) { return Model(); });
}

TEST(FourSquare, BlackAndWhitePrintInEachQuadrantsColours) {
    EffectDriver effect(kGuid);
    for (const bool white : {false, true}) {
        ASSERT_EQ(effect.Configure(64, 48), kSuccess);
        TestFrame frame(64, 48);
        frame.Fill(white ? 255 : 0, 128, 128);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        for (int q = 0; q < 4; ++q) {
            const Rgb c = white ? kQuadrants[q].white : kQuadrants[q].black;
            const int x = q % 2 * 32 + 16, y = q / 2 * 24 + 12;
            EXPECT_EQ(frame.y()[y * 64 + x], RgbToY(c.r, c.g, c.b));
            EXPECT_EQ(frame.u()[y / 2 * 32 + x / 2], RgbToU(c.r, c.g, c.b));
            EXPECT_EQ(frame.v()[y / 2 * 32 + x / 2], RgbToV(c.r, c.g, c.b));
        }
    }
}

TEST(FourSquare, TonesAt60And180Pass) {
    EffectDriver effect(kGuid);
    for (const auto& [tone, printed] :
         {std::pair{60, 60}, {180, 180}, {59, int{RgbToY(225, 75, 25)}}, {181, int{RgbToY(253, 192, 39)}}}) {
        ASSERT_EQ(effect.Configure(64, 48), kSuccess);
        TestFrame frame(64, 48);
        frame.Fill(static_cast<uint8_t>(tone), 128, 128);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame.y()[12 * 64 + 16], printed) << tone;
    }
}

TEST(FourSquare, OddSizesKeepTheLastColumnAndRow) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(33, 25), kSuccess);
    TestFrame frame = TestFrame(33, 25).Randomize(3);
    const TestFrame before = frame;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    for (size_t y = 0; y < 25; ++y) EXPECT_EQ(frame.plane(0)[y * 33 + 32], before.plane(0)[y * 33 + 32]);
    for (size_t x = 0; x < 33; ++x) EXPECT_EQ(frame.plane(0)[24 * 33 + x], before.plane(0)[24 * 33 + x]);
}

TEST(FourSquare, ConfigureForgetsTheLastFrame) {
    // A drift from 1 upward is held back at every other level: at the even ones, unless something was there
    // before it.
    EffectDriver effect(kGuid);
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(effect.Configure(32, 32), kSuccess);
        for (int level = 1; level <= 101; ++level) {
            TestFrame frame(32, 32);
            frame.Fill(static_cast<uint8_t>(level), 128, 128);
            ASSERT_EQ(effect.Process(frame), kSuccess);
            if (level >= 100) {
                EXPECT_EQ(frame.y()[8 * 32 + 8], level == 100 ? 99 : 101) << round;
            }
        }
    }
}

TEST(FourSquare, HoldsBackADriftOfOneLevel) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(32, 32), kSuccess);
    const int shown[] = {100, 100, 102, 102, 104};
    for (int i = 0; i < 5; ++i) {
        TestFrame frame(32, 32);
        frame.Fill(static_cast<uint8_t>(100 + i), 128, 128);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame.y()[8 * 32 + 8], shown[i]) << i;
    }
}

}  // namespace
