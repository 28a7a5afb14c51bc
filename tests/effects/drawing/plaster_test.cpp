#include <gtest/gtest.h>

#include <cmath>

#include "tests/effects/drawing/DrawingModels.h"

namespace {

using namespace drawing_model;

constexpr const char* kGuid = "{0405DEA1-A404-4CC8-A70B-5C273A2A8172}";

int Shade(int nx, int ny) {
    const double azimuth = 1.57079632675, elevation = 0.26179938779166667;
    const int lx = static_cast<int>(std::cos(azimuth) * std::cos(elevation) * 255.9);
    const int ly = static_cast<int>(std::sin(azimuth) * std::cos(elevation) * 255.9);
    const int lz = static_cast<int>(std::sin(elevation) * 255.9);
    const int nz = 1530 / 3;
    if (nx == 0 && ny == 0) return lz;
    const int dot = nx * lx + ny * ly + nz * lz;
    if (dot < 0) return 0;
    const auto s = static_cast<float>(std::sqrt(static_cast<double>(nx * nx + ny * ny + nz * nz)));
    return std::min(static_cast<int>(dot * 1.3 / static_cast<double>(s)), 255);
}

/// The effect step by step, with its planes and its memory.
class PlasterModel {
  public:
    PlasterModel(int w, int h) : work_(w, h, 66), core_(w, h), mask_(w, h) {}

    int darkLimit() const { return darkLimit_; }

    void operator()(TestFrame& frame) {
        PlainPlane y = LumaOf(frame);
        Lowpass5(y, work_);
        y = work_;
        ThresholdDark(y);
        mask_ = y;
        const PlainPlane undilated = y;
        ForInterior(y, 1, [&](int column, int row) {
            int highest = 0, lowest = 255;
            for (int j = -1; j <= 1; ++j) {
                for (int i = -1; i <= 1; ++i) {
                    highest = std::max(highest, undilated(column + i, row + j));
                    lowest = std::min(lowest, std::as_const(mask_)(column + i, row + j));
                }
            }
            y(column, row) = static_cast<uint8_t>(highest);
            core_(column, row) = static_cast<uint8_t>(lowest);
        });
        Lowpass5(y, work_);
        Lowpass3(work_, y);
        for (int row = 0; row < y.height; ++row) {
            for (int x = 0; x < y.width; ++x) {
                if (x < 3 || row < 3 || x >= y.width - 3 || row >= y.height - 3) y(x, row) = 0;
            }
        }
        Emboss(y, work_);
        y = work_;
        Lowpass5(y, work_);
        y = work_;
        for (size_t i = 0; i < y.pixels.size(); ++i) {
            if (mask_.pixels[i] != 0) y.pixels[i] = core_.pixels[i] != 0 ? 30 : 50;
        }
        frame.Fill(0, 176, 96);
        y.WriteTo(frame.plane(0));
    }

  private:
    void ThresholdDark(PlainPlane& y) {
        const auto t = static_cast<uint8_t>(darkLimit_);
        int64_t sum = 0;
        for (uint8_t& v : y.pixels) {
            if (v < t) v = t;
            if (v > t) v = 0;
            if (v > 0) v = 100;
            sum += v;
        }
        const auto m = static_cast<uint8_t>(static_cast<double>(sum) / static_cast<double>(y.pixels.size()));
        if (m < 15) ++darkLimit_;
        if (m > 70) --darkLimit_;
        darkLimit_ = std::clamp(darkLimit_, 0, 255);
    }

    static void Emboss(const PlainPlane& src, PlainPlane& dst) {
        ForInterior(src, 1, [&](int x, int y) {
            const auto column = [&](int i) { return src(i, y - 1) + src(i, y) + src(i, y + 1); };
            const auto row = [&](int j) { return src(x - 1, j) + src(x, j) + src(x + 1, j); };
            const int c = src(x, y);
            const int shade =
                c == 0 || c == 100 ? 66 : Shade(column(x - 1) - column(x + 1), row(y + 1) - row(y - 1));
            dst(x, y) = static_cast<uint8_t>(shade);
        });
    }

    PlainPlane work_, core_, mask_;
    int darkLimit_ = 40;
};

TEST(Plaster, KeepsTheContract) {
    ExpectEffect(kGuid, "Plaster");
    ExpectNoProperties(kGuid);
}

TEST(Plaster, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int w, int h) { return PlasterModel(w, h); });
}

TEST(Plaster, EqualsItsModelOnTinyFrames) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(
        effect, [](int w, int h) { return PlasterModel(w, h); },
        {{1, 1}, {1, 9}, {9, 2}, {3, 3}, {4, 5}, {5, 5}, {6, 7}, {7, 7}, {8, 9}, {64, 4}, {30, 11}});
}

/// The mask is full and then empty in turn once the limit has sunk to 0.
TEST(Plaster, FlipsOnABlackScene) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(32, 24), kSuccess);
    PlasterModel model(32, 24);
    int dark = 0;
    for (int i = 0; i < 50; ++i) {
        TestFrame frame(32, 24), expected(32, 24);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        model(expected);
        ASSERT_EQ(FirstDifference(frame, expected), "") << i;
        const uint8_t middle = frame.y()[12 * 32 + 16];
        EXPECT_EQ(middle, i < 40 || i % 2 != 0 ? 30 : 66) << i;
        dark += middle == 30;
        EXPECT_LE(model.darkLimit(), std::max(39 - i, 1));
    }
    EXPECT_EQ(dark, 45);
}

/// The same at the other end of the scale.
TEST(Plaster, FlipsOnAWhiteScene) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    PlasterModel model(160, 120);
    int dark = 0;
    for (int i = 0; i < 225; ++i) {
        TestFrame frame(160, 120);
        frame.Fill(255, 1, 2);
        TestFrame expected = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        model(expected);
        ASSERT_EQ(FirstDifference(frame, expected), "") << i;
        const uint8_t middle = frame.y()[60 * 160 + 80];
        EXPECT_EQ(middle, i >= 215 && i % 2 != 0 ? 30 : 66) << i;
        // Without a mask all is flat. From limit 66 on the two outermost pixels count as dark: the first
        // mean does not reach them and leaves them at the shade of flat plaster.
        EXPECT_EQ(frame == TestFrame(160, 120).Fill(66, 176, 96), i < 66 - 40) << i;
        dark += middle == 30;
    }
    EXPECT_EQ(dark, 5);
    EXPECT_EQ(model.darkLimit(), 255);
}

/// A dark left half: flat, with a rim at the border; a slope that is lit; and beyond it the flat plaster.
TEST(Plaster, ShadesNothingButTheSlope) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    TestFrame frame(64, 48);
    for (int i = 0; i < 64 * 48; ++i) frame.y()[i] = i % 64 < 32 ? 0 : 255;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    const PlainPlane luma = LumaOf(frame);
    for (int y = 12; y < 36; ++y) {
        int rims = 0, slopes = 0;
        for (int x = 12; x < 64; ++x) {
            if (x < 28 || x >= 44) {
                EXPECT_EQ(luma(x, y), x < 28 ? 30 : 66) << x;
            }
            rims += luma(x, y) == 50 ? 1 : 0;
            slopes += luma(x, y) != 30 && luma(x, y) != 50 && luma(x, y) != 66 ? 1 : 0;
        }
        EXPECT_EQ(rims, 1) << y;
        EXPECT_GT(slopes, 0) << y;
    }
}

/// The limit of 40 stays where it is while the dark part covers 15 to 70 percent, both included. Of 50 by 24
/// pixels one dark column makes 20, after the mean, which makes a dark block two columns smaller at each
/// side.
TEST(Plaster, MovesTheLimitBeyondFifteenAndSeventyPercent) {
    struct Case {
        int darkColumns;
        uint8_t probe;  // a grey that the next frame shows dark or flat, according to the limit
        int shade;
    };
    for (const auto& [darkColumns, probe, shade] :
         {Case{8, 41, 30}, {9, 41, 66}, {9, 40, 30}, {42, 41, 66}, {42, 40, 30}, {43, 40, 66}}) {
        EffectDriver effect(kGuid);
        ASSERT_EQ(effect.Configure(50, 24), kSuccess);
        TestFrame frame(50, 24), next(50, 24);
        for (int i = 0; i < 50 * 24; ++i) frame.y()[i] = i % 50 < darkColumns + 4 ? 0 : 255;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        next.Fill(probe, 1, 2);
        ASSERT_EQ(effect.Process(next), kSuccess);
        EXPECT_EQ(next.y()[12 * 50 + 25], shade) << darkColumns << " columns, then " << int{probe};
    }
}

/// The limit starts anew at every `Configure`.
TEST(Plaster, ForgetsTheLimitAtConfigure) {
    EffectDriver effect(kGuid);
    TestFrame first(40, 30), again(40, 30);
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    for (int i = 0; i < 30; ++i) {
        TestFrame frame(40, 30);
        frame.DrawScene(i);
        effect.Process(frame);
        if (i == 0) first = frame;
    }
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    again.DrawScene(0);
    effect.Process(again);
    EXPECT_EQ(again, first);
}

}  // namespace
