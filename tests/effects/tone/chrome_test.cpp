#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <thread>
#include <vector>

#include "tests/effects/tone/ToneModels.h"
#include "tests/support/EffectDriver.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuids[] = {"{1DC06F46-0253-4EF8-96AF-E69B0B535984}",
                                  "{43206F46-1253-4EF8-22AF-E69B0B535984}"};

int Curve(int variant, int i) {
    const double k = 0.098174770421875;
    const double a = std::max((std::sin(i * k) + 1.0) * 0.5, 0.0);
    const int b = 128 + static_cast<int>(a * 90.0);
    const double d = std::max((std::sin(b * k) + 1.0) * 0.5, 0.0);
    return variant == 1 ? 25 + static_cast<int>(d * 230.0) : 50 + static_cast<int>(d * 200.0);
}

uint8_t Tone(int variant, int luma, int x) {
    return static_cast<uint8_t>(Curve(variant, (x / 3 + luma) & 255));
}

class ChromeModel {
  public:
    ChromeModel(int variant, int w, int h) : variant_(variant), previous_(w, h) {}

    void operator()(TestFrame& frame) {
        const int w = frame.width();
        PlainPlane smooth = Masked5({w, frame.height(), frame.plane(0)}, model::PrimFilterLowpass8uC1);
        for (size_t i = 0; i < smooth.pixels.size(); ++i) {
            uint8_t& now = smooth.pixels[i];
            if (std::abs(now - previous_.pixels[i]) < 3) now = previous_.pixels[i];
        }
        previous_ = smooth;
        // What the second pass does not reach is the raw picture, not the smoothed one.
        const PlainPlane twice = Masked5(smooth, model::PrimFilterLowpass8uC1);
        for (int y = 0; y < frame.height(); ++y) {
            for (int x = 0; x < w; ++x) {
                uint8_t& luma = frame.y()[y * w + x];
                const bool reached = x >= 2 && y >= 2 && x < w - 2 && y < frame.height() - 2;
                luma = Tone(variant_, reached ? twice(x, y) : luma, x);
            }
        }
        std::fill(frame.plane(1).begin(), frame.plane(1).end(), uint8_t{128});
        std::fill(frame.plane(2).begin(), frame.plane(2).end(), uint8_t{128});
    }

  private:
    int variant_;
    PlainPlane previous_;
};

class Chrome : public testing::TestWithParam<int> {
  protected:
    static const char* Guid() { return kGuids[GetParam() - 1]; }
};

TEST_P(Chrome, KeepsTheContract) {
    EffectDriver effect(Guid());
    EXPECT_EQ(effect.Name(), "Chrome");
    ExpectContract(effect);
}

TEST_P(Chrome, EqualsItsModel) {
    EffectDriver effect(Guid());
    ExpectEqualsModel(effect, [](int32_t w, int32_t h) { return ChromeModel(GetParam(), w, h); });
}

TEST_P(Chrome, TheSlantWrapsRoundInWideFrames) {
    EffectDriver effect(Guid());
    ASSERT_EQ(effect.Configure(1600, 8), kSuccess);
    for (const int luma : {0, 40, 128, 255}) {
        TestFrame frame = TestFrame(1600, 8).Fill(static_cast<uint8_t>(luma), 1, 2);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        for (int x = 0; x < 1600; ++x) ASSERT_EQ(frame.y()[4 * 1600 + x], Tone(GetParam(), luma, x)) << x;
        EXPECT_EQ(frame.y()[4 * 1600], frame.y()[4 * 1600 + 768]);
    }
}

TEST_P(Chrome, SmallDifferencesAreHeldAndThreePassesThrough) {
    EffectDriver effect(Guid());
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    int steady = 0;
    for (const int luma : {100, 102, 98, 101, 103, 105, 102, 99, 100}) {
        if (std::abs(luma - steady) >= 3) steady = luma;
        TestFrame frame = TestFrame(64, 48).Fill(static_cast<uint8_t>(luma), 60, 70);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        for (int y = 2; y < 46; ++y) {
            for (int x = 2; x < 62; ++x) {
                ASSERT_EQ(frame.y()[y * 64 + x], Tone(GetParam(), steady, x)) << "luma " << luma;
            }
        }
    }
    EXPECT_EQ(steady, 99);
}

TEST_P(Chrome, IsStableUnderFaintNoise) {
    EffectDriver effect(Guid());
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    const TestFrame still = TestFrame(64, 48).Fill(120, 128, 128);
    TestFrame first = still;
    EXPECT_EQ(effect.Process(first), kSuccess);
    for (int i = 0; i < 8; ++i) {
        TestFrame noisy = still;
        TestRandom random(static_cast<uint64_t>(i));
        for (int y = 2; y < 46; ++y) {
            for (int x = 2; x < 62; ++x) noisy.y()[y * 64 + x] = static_cast<uint8_t>(118 + random.Below(5));
        }
        EXPECT_EQ(effect.Process(noisy), kSuccess);
        EXPECT_EQ(FirstDifference(noisy, first), "");
    }
}

TEST_P(Chrome, ConfigureForgetsThePreviousPicture) {
    EffectDriver effect(Guid());
    ASSERT_EQ(effect.Configure(32, 32), kSuccess);
    TestFrame frame = TestFrame(32, 32).Fill(2, 0, 0);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(frame.y()[16 * 32 + 16], Tone(GetParam(), 0, 16));  // held at the 0 from which it starts
    frame.Fill(90, 0, 0);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    ASSERT_EQ(effect.Configure(32, 32), kSuccess);
    frame.Fill(2, 0, 0);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(frame.y()[16 * 32 + 16], Tone(GetParam(), 0, 16));
}

TEST_P(Chrome, HasNoProperties) {
    ExpectNoProperties(Guid());
}

INSTANTIATE_TEST_SUITE_P(Variants, Chrome, testing::Values(1, 2));

TEST(ChromeVariants, DoNotDisturbEachOther) {
    EffectDriver dark(kGuids[0]), bright(kGuids[1]);
    ASSERT_EQ(dark.Configure(40, 30), kSuccess);
    ASSERT_EQ(bright.Configure(40, 30), kSuccess);
    ChromeModel darkModel(1, 40, 30), brightModel(2, 40, 30);
    for (int i = 0; i < 6; ++i) {
        TestFrame a(40, 30), b(40, 30);
        a.DrawScene(i);
        b.DrawScene(i + 10);
        TestFrame expectedA = a, expectedB = b;
        darkModel(expectedA);
        brightModel(expectedB);
        EXPECT_EQ(dark.Process(a), kSuccess);
        EXPECT_EQ(bright.Process(b), kSuccess);
        EXPECT_EQ(FirstDifference(a, expectedA), "");
        EXPECT_EQ(FirstDifference(b, expectedB), "");
    }
}

TEST(ChromeVariants, MayBeUsedOnSeveralThreads) {
    std::vector<std::thread> threads;
    std::vector<std::string> differences(4, "a thread refused");
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&differences, t] {
            EffectDriver effect(kGuids[t % 2]);
            if (effect.Configure(48, 32) != kSuccess) return;
            TestFrame frame(48, 32);
            frame.DrawScene(t);
            TestFrame expected = frame;
            ChromeModel(t % 2 + 1, 48, 32)(expected);
            if (effect.Process(frame) != kSuccess) return;
            differences[static_cast<size_t>(t)] = FirstDifference(frame, expected);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::string& difference : differences) EXPECT_EQ(difference, "");
}

}  // namespace
