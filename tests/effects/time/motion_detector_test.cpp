#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <vector>

#include "imaging/ScalarColor.h"
#include "tests/imaging/models/PointModels.h"
#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"
#include "tests/support/TestSurroundings.h"

namespace {

constexpr const char* kGuid = "{6C250CDD-8B28-4821-B047-B30878E3439F}";

/// Moves on by `step` whenever it is read.
class TickingClock : public TestClock {
  public:
    int64_t step = 0;
    int64_t Milliseconds() override { return now += step; }
};

class MotionDetector : public testing::Test {
  protected:
    MotionDetector() { now = 5000; }

    TestFrame Process(const TestFrame& picture) {
        TestFrame frame = picture;
        EXPECT_EQ(effect.Process(frame), kSuccess);
        return frame;
    }

    TickingClock clock;
    int64_t& now = clock.now;
    const SurroundingsScope scope{clock};
    EffectDriver effect{kGuid};
};

/// Its clock runs with the frames: 33 ms each from `start` on.
class Model {
  public:
    Model(int width, int height, int blurDelay, uint32_t color, int64_t start = 5000)
        : width_(width), height_(height), blurDelay_(blurDelay), color_(color), clock_(start) {}

    void operator()(TestFrame& frame) {
        clock_ += 33;
        const auto stamp = static_cast<float>(static_cast<double>(clock_) / 1000.0);
        PlainPlane y = LumaOf(frame), smoothed = y;
        PlainGauss3(smoothed, y);
        smoothed = y;
        if (first_) {
            background_ = y;
            history_.assign(y.pixels.size(), 0.0F);
            first_ = false;
        }
        for (size_t i = 0; i < y.pixels.size(); ++i) {
            y.pixels[i] = std::abs(background_.pixels[i] - y.pixels[i]) > 16 ? 1 : 0;
        }
        for (size_t i = 0; i < y.pixels.size(); ++i) {
            if (y.pixels[i] != 0) {
                history_[i] = stamp;
            } else if (history_[i] < stamp - 1.0F) {
                history_[i] = 0.0F;
            }
        }
        const auto delay = static_cast<float>(blurDelay_ * 1.8 / 100.0 + 0.1);
        const float low = stamp - delay;
        const float high = low + 1.0F;
        model::PrimScale32f8u(history_.data(), width_ * 4, y.pixels.data(), width_, width_, height_, low,
                              high);
        y.WriteTo(frame.plane(0));
        for (size_t i = 0; i < y.pixels.size(); ++i) {
            background_.pixels[i] =
                static_cast<uint8_t>((smoothed.pixels[i] + 2 * background_.pixels[i]) / 3);
        }
        std::fill(frame.plane(1).begin(), frame.plane(1).end(), PackedToU(color_));
        std::fill(frame.plane(2).begin(), frame.plane(2).end(), PackedToV(color_));
    }

  private:
    int width_, height_, blurDelay_;
    uint32_t color_;
    int64_t clock_;
    bool first_ = true;
    PlainPlane background_;
    std::vector<float> history_;
};

TEST_F(MotionDetector, KeepsTheContract) {
    EXPECT_EQ(effect.Name(), "Motion Detector");
    ExpectContract(effect);
}

TEST_F(MotionDetector, EqualsItsModel) {
    // The clock ticks whenever it is read: once a frame.
    clock.step = 33;
    ExpectEqualsModel(
        effect, [](int w, int h) { return Model(w, h, 50, 255); }, [&] { now = 5000; });
    ExpectEqualsModel(
        effect, [](int w, int h) { return Model(w, h, 100, 10 | 200 << 8 | 30 << 16); },
        [&] {
            now = 5000;
            EXPECT_EQ(effect.Set("blurdelay", "1000"), kSuccess);
            EXPECT_EQ(effect.Set("BLURCOLOR", "10,200,30"), kSuccess);
        },
        40);
    ExpectEqualsModel(
        effect, [](int w, int h) { return Model(w, h, 1, 0); },
        [&] {
            now = 5000;
            EXPECT_EQ(effect.Set("BlurDelay", "-4"), kSuccess);
            EXPECT_EQ(effect.Set("BlurColor", "nothing"), kSuccess);
        });
    // After half a day a time stamp is good for 4 milliseconds only, which shows.
    constexpr int64_t kLate = 43'200'001;
    ExpectEqualsModel(
        effect, [](int w, int h) { return Model(w, h, 50, 255, kLate); }, [&] { now = kLate; }, 40);
}

TEST_F(MotionDetector, TheFirstFrameIsDark) {
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    const TestFrame frame = Process(TestFrame(40, 30).Randomize(3));
    EXPECT_TRUE(std::all_of(frame.plane(0).begin(), frame.plane(0).end(), [](uint8_t y) { return y == 0; }));
    EXPECT_EQ(frame.plane(1)[0], RgbToU(255, 0, 0));
    EXPECT_EQ(frame.plane(2)[0], RgbToV(255, 0, 0));
}

/// A pixel that never moved counts as moved at 0, which no fade reaches.
TEST_F(MotionDetector, TheFirstFrameIsDarkAsSoonAsTheModuleIsLoaded) {
    ProcessSurroundings process;
    for (const char* blurDelay : {"1", "50", "100"}) {
        for (Surroundings* surroundings : std::initializer_list<Surroundings*>{&clock, &process}) {
            now = kClockAtLoading;
            const SurroundingsScope within(*surroundings);
            ASSERT_EQ(effect.Configure(40, 30), kSuccess);
            EXPECT_EQ(effect.Set("BlurDelay", blurDelay), kSuccess);
            const TestFrame frame = Process(TestFrame(40, 30).Randomize(3));
            EXPECT_EQ(std::count(frame.plane(0).begin(), frame.plane(0).end(), 0), 40 * 30) << blurDelay;
        }
    }
}

TEST_F(MotionDetector, ADifferenceOf16IsNoMotion) {
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    Process(TestFrame(40, 30).Fill(100, 1, 1));
    now += 40;
    EXPECT_EQ(Process(TestFrame(40, 30).Fill(116, 1, 1)).plane(0)[50], 0);
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    Process(TestFrame(40, 30).Fill(100, 1, 1));
    now += 40;
    EXPECT_EQ(Process(TestFrame(40, 30).Fill(117, 1, 1)).plane(0)[50], 255);
}

TEST_F(MotionDetector, TheOutermostPixelsAreNotSmoothed) {
    // A quarter of a lone bright pixel is left of it inside the frame; at its corner it is unchanged.
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    Process(TestFrame(40, 30).Fill(100, 1, 1));
    now += 40;
    TestFrame frame = TestFrame(40, 30).Fill(100, 1, 1);
    frame.y()[0] = 120;
    frame.y()[10 * 40 + 10] = 120;
    const TestFrame shown = Process(frame);
    EXPECT_EQ(shown.plane(0)[0], 255);
    EXPECT_EQ(shown.plane(0)[10 * 40 + 10], 0);
    EXPECT_EQ(std::count(shown.plane(0).begin(), shown.plane(0).end(), 0), 40 * 30 - 1);
}

TEST_F(MotionDetector, ATrailEndsAfterASecond) {
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    EXPECT_EQ(effect.Set("BlurDelay", "100"), kSuccess);  // fades over 1.9 seconds, if the history lasted
    Process(TestFrame(40, 30).Fill(0, 1, 1));
    // Full white as long as the background lags behind and for 0.9 seconds more, then fading: after one
    // second the history forgets, and the trail breaks off with most of its light.
    int64_t fades = 0, ends = 0;
    int last = 0;
    for (int i = 0; i < 200; ++i) {
        now += 10;
        const int level = Process(TestFrame(40, 30).Fill(255, 1, 1)).plane(0)[50];
        if (level == 255) fades = now;
        if (level == 0) continue;
        ends = now;
        last = level;
    }
    EXPECT_NEAR(static_cast<double>(ends - fades), 100, 20);
    EXPECT_NEAR(last, 0.9 * 255, 4);
}

TEST_F(MotionDetector, ConfigureResetsTheProperties) {
    EXPECT_EQ(effect.Get("BlurDelay"), "50");
    EXPECT_EQ(effect.Get("BlurColor"), "0,0,192");
    EXPECT_EQ(effect.Set("BlurDelay", "70"), kSuccess);
    EXPECT_EQ(effect.Set("BlurColor", "1,2,3"), kSuccess);
    ASSERT_EQ(effect.Configure(40, 30, kFormatPacked), kSuccess);
    EXPECT_EQ(effect.Get("BlurDelay"), "70");
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    EXPECT_EQ(effect.Get("BlurDelay"), "50");
    EXPECT_EQ(effect.Get("BlurColor"), "255,0,0");
    for (const auto& [text, stored] :
         {std::pair{"0", "1"}, {"-7", "1"}, {"101", "100"}, {"100", "100"}, {"x", "1"}}) {
        EXPECT_EQ(effect.Set("BlurDelay", text), kSuccess);
        EXPECT_EQ(effect.Get("BlurDelay"), stored);
    }
    EXPECT_EQ(effect.Set("BlurColor", "12,34"), kSuccess);
    EXPECT_EQ(effect.Get("BlurColor"), "0,0,0");
    EXPECT_EQ(effect.Set("Blur", "12"), kInvalidArgument);
}

}  // namespace
