#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "tests/effects/tone/ToneModels.h"
#include "tests/support/EffectDriver.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{E13ED2C0-8ABF-424D-95DD-AB390B236072}";

class Kernel {
  public:
    explicit Kernel(double sigma) {
        int n = static_cast<int>(sigma * 6 + 1);
        if (n % 2 == 0) ++n;
        half_ = n / 2;
        const double c = std::sqrt(6.2831852) * sigma, d = sigma * (sigma + sigma);
        divisor_ = static_cast<int>(2.0 / (std::exp(-(half_ * half_ / d)) / c));
        for (int x = -half_; x <= half_; ++x) {
            taps_.push_back(static_cast<int>((std::exp(-(x * x / d)) / c) * divisor_));
        }
    }

    /// One pass along (stepX, stepY); pixels whose neighbours are missing stay as they are.
    PlainPlane Filtered(const PlainPlane& src, int stepX, int stepY) const {
        PlainPlane dst = src;
        for (int y = stepY * half_; y < src.height - stepY * half_; ++y) {
            for (int x = stepX * half_; x < src.width - stepX * half_; ++x) {
                int sum = 0;
                for (int k = 0; k <= 2 * half_; ++k) {
                    const int back = half_ - k;
                    sum += taps_[static_cast<size_t>(k)] * src(x + stepX * back, y + stepY * back);
                }
                dst(x, y) = Scaled(sum);
            }
        }
        return dst;
    }

  private:
    uint8_t Scaled(int sum) const {
        double value = sum;
        if (divisor_ != 1) {
            const bool powerOfTwo = (divisor_ & (divisor_ - 1)) == 0;
            const float reciprocal = 1.0F / static_cast<float>(divisor_);
            value = powerOfTwo ? std::floor((sum + divisor_ / 2) / double{1} / divisor_)
                               : std::trunc(sum * double{reciprocal} + 0.5);
        }
        return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0));
    }

    int half_ = 0, divisor_ = 0;
    std::vector<int> taps_;
};

using EdgeLevel = std::function<int(int dx, int dy)>;

/// Smooths the plane and replaces each pixel by what `level` makes of its two gradients.
void DrawEdges(PlainPlane& plane, const EdgeLevel& level) {
    const Kernel kernel(plane.width < 320 ? 0.8 : 1.5);
    const PlainPlane p = kernel.Filtered(kernel.Filtered(plane, 1, 0), 0, 1);
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            int dx = 0, dy = 0;
            if (x > 0 && y > 0 && x < plane.width - 1 && y < plane.height - 1) {
                dx = (p(x - 1, y + 1) + 2 * p(x, y + 1) + p(x + 1, y + 1)) -
                     (p(x - 1, y - 1) + 2 * p(x, y - 1) + p(x + 1, y - 1));
                dy = (p(x - 1, y - 1) + 2 * p(x - 1, y) + p(x - 1, y + 1)) -
                     (p(x + 1, y - 1) + 2 * p(x + 1, y) + p(x + 1, y + 1));
            }
            plane(x, y) = static_cast<uint8_t>(level(dx, dy));
        }
    }
}

int LumaLevel(int dx, int dy) {
    const int m = std::abs(dx) + std::abs(dy);
    if (m >= 512) return 255;
    return m <= 20 ? m : std::min(4 * m - 60, 255);
}

int ChromaLevel(int dx, int dy) {
    const int m = std::abs(dx) + std::abs(dy);
    return std::clamp(dx + dy < 0 ? 128 - 2 * m : 128 + 2 * m, 0, 255);
}

void NeonizeModel(TestFrame& frame) {
    int w = frame.width(), h = frame.height();
    PlainPlane luma(w, h, frame.plane(0));
    const int halfW = w / 2, halfH = h / 2;
    if (w > 512) {
        w /= 2;
        h /= 2;
    }
    PlainPlane work(w, h);
    ModelResize(luma, 0, work);
    DrawEdges(work, LumaLevel);
    ModelResize(work, 6, luma);
    luma.WriteTo(frame.plane(0));
    for (int p = 1; p < 3; ++p) {
        PlainPlane chroma(halfW, halfH, frame.plane(p)), small(w / 2, h / 2);
        if (chroma.pixels.empty()) continue;
        ModelResize(chroma, 0, small);
        DrawEdges(small, ChromaLevel);
        ModelResize(Masked5(small, model::PrimFilterGauss8uC1), 3, chroma);
        chroma.WriteTo(frame.plane(p));
    }
}

TEST(Neonize, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Neonize");
    ExpectContract(effect);
}

TEST(Neonize, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int32_t, int32_t) { return NeonizeModel; });
}

TEST(Neonize, WidthsAroundTheHalvingEqualTheModel) {
    EffectDriver effect(kGuid);
    for (const int w : {256, 318, 320, 511, 512, 513, 514, 638, 1284}) {
        ASSERT_EQ(effect.Configure(w, 40), kSuccess);
        TestFrame frame = TestFrame(w, 40).DrawScene(w);
        TestFrame expected = frame;
        NeonizeModel(expected);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        ASSERT_EQ(FirstDifference(frame, expected), "") << w;
    }
}

TEST(Neonize, AFlatFrameIsBlackWithNeutralChroma) {
    EffectDriver effect(kGuid);
    for (const auto& [w, h] : {std::pair{64, 48}, {640, 480}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame frame = TestFrame(w, h).Fill(180, 90, 200);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(std::ranges::max(frame.plane(0)), 0);
        // Smoothing does not reach the outermost chroma samples, and leaves a faint line there.
        const int margin = w / 16;
        for (int p = 1; p < 3; ++p) {
            for (int y = margin; y < h / 2 - margin; ++y) {
                const uint8_t* row = frame.plane(p).data() + y * (w / 2);
                for (int x = margin; x < w / 2 - margin; ++x) {
                    ASSERT_EQ(row[x], 128) << w << ": " << x << ", " << y;
                }
            }
        }
    }
}

/// The frame that the effect makes of a vertical step in luma and in both chroma planes.
TestFrame StepEdge(int w, int h, uint8_t left, uint8_t right) {
    TestFrame frame(w, h);
    for (int p = 0; p < 3; ++p) {
        const int columns = p == 0 ? w : w / 2;
        uint8_t* pixel = frame.plane(p).data();
        for (size_t i = 0; i < frame.plane(p).size(); ++i) {
            pixel[i] = static_cast<int>(i) % columns < columns / 2 ? left : right;
        }
    }
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Configure(w, h), kSuccess);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    return frame;
}

TEST(Neonize, AStepIsAWhiteLineWhateverItsSignAndChromaFollowsTheSign) {
    TestFrame falling = StepEdge(128, 96, 220, 40), rising = StepEdge(128, 96, 40, 220);
    EXPECT_TRUE(std::ranges::equal(falling.plane(0), rising.plane(0)));
    // The middle row without its ends.
    const auto row = [](TestFrame& frame, int plane) {
        const size_t columns = plane == 0 ? 128 : 64, first = columns * (plane == 0 ? 48 : 24);
        return frame.plane(plane).subspan(first + 6, columns - 12);
    };
    EXPECT_EQ(std::ranges::max(row(falling, 0)), 255);
    EXPECT_EQ(row(falling, 0)[0], 0);
    EXPECT_EQ(row(falling, 0)[115], 0);
    // Left minus right: a fall to the right is positive.
    EXPECT_GT(std::ranges::max(row(falling, 1)), 240);
    EXPECT_EQ(std::ranges::min(row(falling, 1)), 128);
    EXPECT_EQ(std::ranges::max(row(rising, 2)), 128);
    EXPECT_LT(std::ranges::min(row(rising, 2)), 16);
}

/// How wide a white line a step makes, in pixels of a row.
int LineWidth(int w, int h) {
    TestFrame frame = StepEdge(w, h, 0, 255);
    const uint8_t* row = frame.y() + h / 2 * w;
    return static_cast<int>(std::count_if(row, row + w, [](uint8_t luma) { return luma > 0; }));
}

TEST(Neonize, FramesAbove512WideAreDrawnAtHalfSizeWithDoubledLines) {
    EXPECT_NEAR(LineWidth(514, 400), 2 * LineWidth(250, 400), 4);
    EXPECT_LT(LineWidth(512, 400), LineWidth(640, 400));
}

TEST(Neonize, LargeGradientsSaturate) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(96, 96), kSuccess);
    TestFrame frame(96, 96);
    for (int p = 0; p < 3; ++p) {
        const int columns = p == 0 ? 96 : 48;
        for (int i = 0; i < static_cast<int>(frame.plane(p).size()); ++i) {
            const bool bright = (i % columns / 24 + i / columns / 24) % 2 != 0;
            frame.plane(p)[static_cast<size_t>(i)] = bright ? 255 : 0;
        }
    }
    TestFrame expected = frame;
    NeonizeModel(expected);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, expected), "");
    EXPECT_EQ(std::ranges::max(frame.plane(0)), 255);
    EXPECT_LT(std::ranges::min(frame.plane(1)), 16);
    EXPECT_GT(std::ranges::max(frame.plane(1)), 240);
}

TEST(Neonize, HasNoProperties) {
    ExpectNoProperties(kGuid);
}

}  // namespace
