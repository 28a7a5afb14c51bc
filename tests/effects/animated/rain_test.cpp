#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{27E3D176-FB78-4F57-A94F-37EB05CA30F8}";

/// What outlives `Configure`: the stamp.
struct Stamp {
    bool ready = false;
    int16_t heights[256] = {};
};

class Model {
  public:
    Model(int width, int height, int period, int size, Stamp* stamp)
        : w_(width), h_(height), period_(period), size_(size), stamp_(stamp) {
        target_.assign(static_cast<size_t>(w_ * h_), 0);
        source_ = target_;
        output_.assign(target_.size(), 0);
    }

    void operator()(TestFrame& frame) {
        if (w_ < 3 || h_ < 3) return;
        PlainPlane y = LumaOf(frame);
        const int k = counter_ % period_;
        if (counter_ == 0) output_ = y.pixels;
        ++counter_;
        if (k == 0) Drop();
        for (int r = 2; r <= h_ - 3; ++r) {
            for (int c = 2; c <= w_ - 3; ++c) {
                int sum = 0;
                for (int j = -1; j <= 1; ++j) {
                    for (int i = -1; i <= 1; ++i) sum += i == 0 && j == 0 ? 0 : source_[At(c + i, r + j)];
                }
                const auto v = static_cast<int16_t>(sum / 4 - target_[At(c, r)]);
                target_[At(c, r)] = static_cast<int16_t>(v - (v >> 4));
            }
        }
        for (int r = 1; r <= h_ - 2; ++r) {
            for (int c = 1; c <= w_ - 2; ++c) {
                const int dx = target_[At(c - 1, r)] - target_[At(c + 1, r)];
                const int dy = target_[At(c, r - 1)] - target_[At(c, r + 1)];
                const int sx = c + dx, sy = r + dy;
                if (sx < 0 || sx > w_ || sy < 0 || sy > h_) continue;
                const int sample = y.pixels[static_cast<size_t>(std::min(sy * w_ + sx, w_ * h_ - 1))];
                output_[At(c, r)] = static_cast<uint8_t>(std::clamp(sample + dx, 0, 255));
            }
        }
        std::swap(target_, source_);
        y.pixels = output_;
        for (int r = 0; r < h_; ++r) {
            for (int c = 0; c < w_; ++c) {
                y(c, r) = output_[At(std::clamp(c, 1, w_ - 2), std::clamp(r, 1, h_ - 2))];
            }
        }
        y.WriteTo(frame.plane(0));
    }

    void SetSize(int size) {
        size_ = size;
        stamp_->ready = false;
    }

  private:
    size_t At(int x, int y) const { return static_cast<size_t>(y * w_ + x); }

    void Drop() {
        const int s = size_, half = s / 2, margin = s - 1;
        if (w_ - 2 * margin <= 0 || h_ - 2 * margin <= 0) return;
        if (!stamp_->ready) {
            for (int y = -half; y <= half - 1; ++y) {
                for (int x = -half; x <= half - 1; ++x) {
                    const int d2 = x * x + y * y, row = y + half, column = x + half;
                    if (d2 > s * s || row >= s || column >= s) continue;
                    const double a = std::sqrt(d2) / (2 * s);
                    const int v = static_cast<int>(std::cos((a + a) * 3.1415926535) * -64.0);
                    stamp_->heights[row * s + column] = static_cast<int16_t>(128 - v);
                }
            }
            stamp_->ready = true;
        }
        const int cx = std::rand() % (w_ - 2 * margin) + margin;
        const int cy = std::rand() % (h_ - 2 * margin) + margin;
        for (int y = -half; y <= half - 1; ++y) {
            for (int x = -half; x <= half - 1; ++x) {
                if (cx + x < 0 || cx + x >= w_ || cy + y < 0 || cy + y >= h_) continue;
                target_[At(cx + x, cy + y)] = stamp_->heights[(y + half) * s + x + half];
            }
        }
    }

    int w_, h_, period_, size_, counter_ = 0;
    Stamp* stamp_;
    std::vector<int16_t> target_, source_;
    std::vector<uint8_t> output_;
};

TEST(Rain, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Rain");
    ExpectContract(effect);
}

TEST(Rain, EqualsItsModel) {
    EffectDriver effect(kGuid);
    Stamp stamp;
    ExpectEqualsModel(effect, [&](int w, int h) { return Model(w, h, 1, 3, &stamp); });
}

TEST(Rain, EqualsItsModelWithOtherDrops) {
    for (const auto& [period, size] : {std::pair{1, 16}, {20, 16}, {3, 2}, {2, 7}}) {
        EffectDriver effect(kGuid);
        // Setting a size clears the stamp; one that is already built for the same size stays.
        Stamp stamp;
        ExpectEqualsModel(
            effect,
            [&, p = period, s = size](int w, int h) {
                stamp.ready = false;
                return Model(w, h, p, s, &stamp);
            },
            [&, p = period, s = size] {
                EXPECT_EQ(effect.Set("DROPPERIOD", std::to_string(p)), kSuccess);
                EXPECT_EQ(effect.Set("DropSize", std::to_string(s)), kSuccess);
            });
    }
}

TEST(Rain, EqualsItsModelOverAHundredFrames) {
    for (const int period : {1, 20}) {
        EffectDriver effect(kGuid);
        Stamp stamp;
        std::srand(11);
        ASSERT_EQ(effect.Configure(80, 60), kSuccess);
        ASSERT_EQ(effect.Set("DropPeriod", std::to_string(period)), kSuccess);
        std::vector<TestFrame> results;
        for (int i = 0; i < 120; ++i) {
            results.push_back(StreamPicture(80, 60, i));
            ASSERT_EQ(effect.Process(results.back()), kSuccess);
        }
        std::srand(11);
        Model model(80, 60, period, 3, &stamp);
        for (int i = 0; i < 120; ++i) {
            TestFrame expected = StreamPicture(80, 60, i);
            model(expected);
            ASSERT_EQ(FirstDifference(results[static_cast<size_t>(i)], expected), "")
                << period << ", frame " << i;
        }
    }
}

TEST(Rain, ANewSizeTakesHoldWithTheNextDrop) {
    EffectDriver effect(kGuid);
    Stamp stamp;
    std::srand(1);
    ASSERT_EQ(effect.Configure(64, 64), kSuccess);
    std::vector<TestFrame> results;
    for (int i = 0; i < 9; ++i) {
        if (i % 3 == 0) effect.Set("DropSize", i == 0 ? "3" : i == 3 ? "9" : "5");
        results.push_back(StreamPicture(64, 64, i));
        ASSERT_EQ(effect.Process(results.back()), kSuccess);
    }
    std::srand(1);
    Model model(64, 64, 1, 3, &stamp);
    for (int i = 0; i < 9; ++i) {
        if (i % 3 == 0) model.SetSize(i == 0 ? 3 : i == 3 ? 9 : 5);
        TestFrame expected = StreamPicture(64, 64, i);
        model(expected);
        ASSERT_EQ(FirstDifference(results[static_cast<size_t>(i)], expected), "") << i;
    }
}

TEST(Rain, AStampOutlivesConfigure) {
    // Built for 16, used for 3.
    EffectDriver effect(kGuid);
    Stamp stamp;
    std::srand(1);
    ASSERT_EQ(effect.Configure(64, 64), kSuccess);
    ASSERT_EQ(effect.Set("DropSize", "16"), kSuccess);
    ASSERT_EQ(effect.Set("DropPeriod", "9"), kSuccess);
    TestFrame frame(64, 64);
    ASSERT_EQ(effect.Process(frame), kSuccess);
    ASSERT_EQ(effect.Configure(64, 64), kSuccess);
    EXPECT_EQ(effect.Get("DropSize"), "3");
    EXPECT_EQ(effect.Get("DropPeriod"), "1");

    std::srand(1);
    Model big(64, 64, 1, 16, &stamp);
    TestFrame ignored(64, 64);
    big(ignored);
    Model model(64, 64, 1, 3, &stamp);
    std::vector<TestFrame> expected;
    for (int i = 0; i < 10; ++i) {
        expected.push_back(StreamPicture(64, 64, i));
        model(expected.back());
    }
    std::srand(1);
    std::rand();
    std::rand();
    for (int i = 0; i < 10; ++i) {
        frame = StreamPicture(64, 64, i);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        ASSERT_EQ(FirstDifference(frame, expected[static_cast<size_t>(i)]), "") << i;
    }
}

TEST(Rain, StonesFallEveryPeriod) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(64, 64), kSuccess);
    ASSERT_EQ(effect.Set("DropPeriod", "20"), kSuccess);
    for (int i = 0; i < 60; ++i) {
        TestFrame frame(64, 64);
        std::srand(4);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        const int next = std::rand();
        std::srand(4);
        if (i % 20 == 0) {
            std::rand();
            std::rand();
        }
        EXPECT_EQ(next, std::rand()) << i;
    }
}

TEST(Rain, LevelWaterShowsThePicture) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(200, 150), kSuccess);
    ASSERT_EQ(effect.Set("DropPeriod", "20"), kSuccess);
    TestFrame frame = TestFrame(200, 150).DrawScene(1);
    const TestFrame before = frame;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    size_t changed = 0;
    for (size_t y = 1; y < 149; ++y) {
        for (size_t x = 1; x < 199; ++x) {
            changed += frame.plane(0)[y * 200 + x] != before.plane(0)[y * 200 + x] ? 1 : 0;
        }
    }
    EXPECT_GT(changed, 0U);
    EXPECT_LT(changed, 100U);
    EXPECT_TRUE(std::equal(frame.plane(1).begin(), frame.plane(1).end(), before.plane(1).begin()));
}

TEST(Rain, ClampsItsProperties) {
    EffectDriver effect(kGuid);
    for (const auto& [text, period, size] :
         {std::tuple{"0", "1", "2"}, {"21", "20", "16"}, {"8", "8", "8"}, {"-1", "1", "2"}}) {
        EXPECT_EQ(effect.Set("DropPeriod", text), kSuccess);
        EXPECT_EQ(effect.Set("DropSize", text), kSuccess);
        EXPECT_EQ(effect.Get("DropPeriod"), period);
        EXPECT_EQ(effect.Get("DropSize"), size);
    }
}

}  // namespace
