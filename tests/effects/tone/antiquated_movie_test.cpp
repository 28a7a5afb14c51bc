#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <vector>

#include "tests/effects/tone/ToneModels.h"
#include "tests/imaging/models/PointModels.h"
#include "tests/support/EffectDriver.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{83548554-BA11-4C26-9403-442DFA1C2BFE}";

uint8_t Clamped(int value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

/// The effect as a list of its steps, each done in the plainest way.
class MovieModel {
  public:
    MovieModel(int w, int h, bool sepia = true, bool vignetting = true)
        : w_(w), h_(h), sepia_(sepia), vignetting_(vignetting), grain_(w, h + 1) {
        uint32_t seed = 544;
        model::PrimAddGaussNoise8uC1(grain_.pixels.data(), w, w, h + 1, 20, 17, &seed);
    }

    void operator()(TestFrame& frame) {
        std::ranges::fill(frame.plane(1), uint8_t{128});
        std::ranges::fill(frame.plane(2), uint8_t{128});
        PlainPlane y(w_, h_, frame.plane(0));
        Damage(y);
        Equalize(y);

        const int r = std::rand() % w_;
        for (int i = 0; i < w_ * h_; ++i) {
            uint8_t& pixel = y.pixels[static_cast<size_t>(i)];
            pixel = Clamped(pixel + grain_.pixels[static_cast<size_t>(i + r)]);
        }
        y = Masked5(y, model::PrimFilterGauss8uC1);
        if (vignetting_) Vignette(y);

        jitter = std::clamp(jitter + std::rand() % 3 - 1, 0, 10);
        for (int row = 0; jitter > 0 && row + jitter < h_; ++row) {
            for (int x = 0; x < w_; ++x) y(x, row) = y(x, row + jitter);
        }
        if (sepia_) Tint(y, frame);
        y.WriteTo(frame.plane(0));
    }

    int jitter = 1;

  private:
    void Damage(PlainPlane& y) {
        for (int hair = 0; hair < 2 && w_ > 64 && h_ > 64; ++hair) Hair(y);
        for (int speck = 0; speck < 50; ++speck) {
            const int x = std::rand() % w_;
            const int y0 = std::rand() % h_;
            const int n = std::rand() % (h_ - y0);
            for (int i = 0; i < n; ++i) {
                const int change = std::rand() % 30 + 10;
                y(x, y0 + i) = Clamped(y(x, y0 + i) + change);
            }
        }
        drift_ = (drift_ + 1) % w_;
        std::vector<int> columns;
        for (const int fixed : {w_ * 8 / 100, w_ * 25 / 100, w_ * 80 / 100, w_ - 10, w_ - 13}) {
            columns.push_back(std::rand() % 2 + fixed);
        }
        columns.insert(columns.end(), {drift_, (drift_ + 200) % w_, (drift_ + 379) % w_});
        for (const int column : columns) {
            for (int row = 0; row < h_ && column >= 0 && column < w_; ++row) y(column, row) = 200;
        }
    }

    static void Hair(PlainPlane& y) {
        const int left = std::rand() % (y.width - 64) + 5;
        const int top = std::rand() % (y.height - 64) + 5;
        PlainPlane hair(32, 32, uint8_t{255});
        double px[4], py[4];
        for (int i = 0; i < 4; ++i) {
            px[i] = std::rand() % 32;
            py[i] = std::rand() % 32;
        }
        const auto curve = [](const double* p, double t) {
            const double c = 3 * (p[1] - p[0]), b = 3 * (p[2] - 2 * p[1] + p[0]);
            const double a = 3 * (p[1] - p[2]) - p[0] + p[3];
            return b * (t * t) + a * (t * t * t) + c * t + p[0];
        };
        for (int k = 0; k <= 100; ++k) {
            const double t = k / 100.0;
            hair(static_cast<int>(curve(px, t) + 0.5), static_cast<int>(curve(py, t) + 0.5)) = 0;
        }
        for (int row = 0; row < 32; ++row) {
            for (int x = 0; x < 32; ++x) y(left + x, top + row) &= hair(x, row);
        }
    }

    void Equalize(PlainPlane& y) const {
        int64_t cumulated[256] = {};
        for (const uint8_t p : y.pixels) ++cumulated[p];
        std::partial_sum(std::begin(cumulated), std::end(cumulated), std::begin(cumulated));
        for (uint8_t& p : y.pixels) p = static_cast<uint8_t>(cumulated[p] * 255 / (w_ * h_));
    }

    void Vignette(PlainPlane& y) const {
        const double cx = w_ / 2, cy = h_ / 2, d = std::sqrt(double{1} * w_ * w_ + double{1} * h_ * h_);
        for (int row = 0; row < h_; ++row) {
            for (int x = 0; x < w_; ++x) {
                double dx = x - cx, dy = row - cy, c = cx * cx - cy * cy;
                if (h_ > w_) {
                    std::swap(dx, dy);
                    c = -c;
                }
                c = std::sqrt(c);
                const double r1 = std::sqrt((dx + c) * (dx + c) + dy * dy);
                const double r2 = std::sqrt((dx - c) * (dx - c) + dy * dy);
                const int m = Clamped(static_cast<int>(365.0 - 255.0 * (r1 + r2) / d));
                const int product = m * y(x, row);
                y(x, row) = static_cast<uint8_t>((product + (product >> 8) + 1) >> 8);
            }
        }
    }

    static void Tint(PlainPlane& y, TestFrame& frame) {
        PlainPlane half(y.width / 2, y.height / 2);
        ModelResize(y, 0, half);
        for (uint8_t& p : y.pixels) p = Clamped(static_cast<int>(p * 1.216 - 11.0));
        for (size_t i = 0; i < half.pixels.size(); ++i) {
            frame.plane(1)[i] = Clamped(static_cast<int>(131.0 - half.pixels[i] * 0.161));
        }
    }

    int w_, h_;
    bool sepia_, vignetting_;
    int drift_ = 0;
    PlainPlane grain_;
};

TEST(AntiquatedMovie, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Antiquated Movie");
    ExpectContract(effect);
}

TEST(AntiquatedMovie, HasTwoBooleanProperties) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 2);
    ExpectBooleanProperty(effect, "Sepia", true);
    ExpectBooleanProperty(effect, "Vignetting", true);
    EXPECT_EQ(effect.Set("sEPIA", "FALSE"), kSuccess);
    EXPECT_EQ(effect.Get("SEPIA"), "FALSE");
    EXPECT_EQ(effect.Set("Grain", "TRUE"), kInvalidArgument);
    const char* const names[] = {"Sepia", "Vignetting"};
    for (int i = 0; i < 2; ++i) {
        char name[32], initial[32], range[32];
        EXPECT_EQ(effect->GetInternalInfo()->GetPropTypeInfo(i, name, 32, initial, 32, range, 32),
                  PropTypeSet::Boolean);
        EXPECT_STREQ(name, names[i]);
        EXPECT_STREQ(initial, "TRUE");
        EXPECT_STREQ(range, "");
    }
}

class AntiquatedMovieLook : public testing::TestWithParam<std::pair<bool, bool>> {};

TEST_P(AntiquatedMovieLook, EqualsItsModel) {
    const bool sepia = GetParam().first, vignetting = GetParam().second;
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Set("Sepia", sepia ? "TRUE" : "FALSE"), kSuccess);
    EXPECT_EQ(effect.Set("Vignetting", vignetting ? "TRUE" : "FALSE"), kSuccess);
    ExpectEqualsModel(effect, [=](int32_t w, int32_t h) { return MovieModel(w, h, sepia, vignetting); });
}

INSTANTIATE_TEST_SUITE_P(Properties, AntiquatedMovieLook,
                         testing::Values(std::pair{true, true}, std::pair{false, true},
                                         std::pair{true, false}, std::pair{false, false}));

/// A frame of one luma through the effect, as its first frame.
TestFrame FirstFrame(EffectDriver& effect, int w, int h, uint8_t luma) {
    EXPECT_EQ(effect.Configure(w, h), kSuccess);
    TestFrame frame = TestFrame(w, h).Fill(luma, 10, 20);
    std::srand(1);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    return frame;
}

TEST(AntiquatedMovie, SizesAroundTheHairLimitEqualTheModel) {
    EffectDriver effect(kGuid);
    for (const auto& [w, h] :
         {std::pair{64, 64}, {65, 64}, {64, 65}, {65, 65}, {66, 66}, {200, 64}, {12, 90}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame frame = TestFrame(w, h).DrawScene(1);
        TestFrame expected = frame;
        std::srand(5);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        const int next = std::rand();
        std::srand(5);
        MovieModel model(w, h);
        model(expected);
        EXPECT_EQ(FirstDifference(frame, expected), "") << w << " by " << h;
        EXPECT_EQ(next, std::rand()) << w << " by " << h;
    }
}

TEST(AntiquatedMovie, WithoutTintTheChromaIsNeutral) {
    EffectDriver effect(kGuid);
    effect.Set("Sepia", "FALSE");
    effect.Set("Vignetting", "FALSE");
    TestFrame frame = FirstFrame(effect, 160, 120, 77);
    for (const int p : {1, 2}) {
        for (const uint8_t chroma : frame.plane(p)) ASSERT_EQ(chroma, 128);
    }
}

TEST(AntiquatedMovie, TheTintKeepsToItsRange) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    TestFrame frame = TestFrame(160, 120).Randomize(8);
    std::srand(1);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    for (const uint8_t v : frame.plane(2)) ASSERT_EQ(v, 128);
    EXPECT_GE(std::ranges::min(frame.plane(1)), 89);
    EXPECT_LE(std::ranges::max(frame.plane(1)), 131);
    EXPECT_LT(std::ranges::min(frame.plane(1)), 120);
}

TEST(AntiquatedMovie, PropertiesTakeHoldWithTheNextFrame) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    const TestFrame scene = TestFrame(160, 120).DrawScene(2);
    TestFrame frame = scene;
    std::srand(1);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_NE(frame.u()[60 * 40], 128);
    EXPECT_EQ(effect.Set("sepia", "faLSE"), kSuccess);
    frame = scene;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    for (const uint8_t u : frame.plane(1)) ASSERT_EQ(u, 128);
}

TEST(AntiquatedMovie, TheBottomRowsRepeatThePictureFromBeforeTheJump) {
    EffectDriver effect(kGuid);
    effect.Set("Sepia", "FALSE");
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    MovieModel model(160, 120, false);
    bool jumped = false;
    for (int i = 0; i < 12; ++i) {
        TestFrame frame = TestFrame(160, 120).DrawScene(i), expected = frame;
        std::srand(static_cast<unsigned>(i));
        EXPECT_EQ(effect.Process(frame), kSuccess);
        std::srand(static_cast<unsigned>(i));
        model(expected);
        EXPECT_LE(model.jitter, 2 + i);
        // Row 119 - jitter has taken the last row, which is still there.
        const uint8_t* const last = frame.y() + 119 * 160;
        EXPECT_TRUE(std::equal(last, last + 160, last - model.jitter * 160));
        jumped = jumped || model.jitter > 0;
    }
    EXPECT_TRUE(jumped);
}

TEST(AntiquatedMovie, BlackComesOutNearlyWhite) {
    EffectDriver effect(kGuid);
    effect.Set("Sepia", "FALSE");
    effect.Set("Vignetting", "FALSE");
    const TestFrame frame = FirstFrame(effect, 320, 240, 0);
    int64_t sum = 0;
    for (const uint8_t luma : frame.plane(0)) sum += luma;
    EXPECT_GT(sum / (320 * 240), 225);
}

TEST(AntiquatedMovie, TheVignetteDarkensTheCornersOfUprightFramesToo) {
    for (const auto& [w, h] : {std::pair{320, 180}, {180, 320}}) {
        EffectDriver effect(kGuid);
        effect.Set("Sepia", "FALSE");
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame lit = TestFrame(w, h).DrawScene(0), plain = lit;
        std::srand(9);
        EXPECT_EQ(effect.Process(lit), kSuccess);
        effect.Set("Vignetting", "FALSE");
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        std::srand(9);
        EXPECT_EQ(effect.Process(plain), kSuccess);
        const auto corner = static_cast<ptrdiff_t>(20 * w + 20),
                   centre = static_cast<ptrdiff_t>(h / 2 * w + w / 2);
        EXPECT_LT(lit.y()[corner] * 100 / plain.y()[corner], 60);
        EXPECT_GT(lit.y()[centre] * 100 / plain.y()[centre], 65);
    }
}

TEST(AntiquatedMovie, ConfigureStartsTheReelAnew) {
    EffectDriver effect(kGuid);
    const TestFrame scene = TestFrame(100, 80).DrawScene(4);
    TestFrame runs[2] = {scene, scene};
    for (TestFrame& run : runs) {
        ASSERT_EQ(effect.Configure(100, 80), kSuccess);
        std::srand(3);
        for (int i = 0; i < 7; ++i) {
            run = scene;
            EXPECT_EQ(effect.Process(run), kSuccess);
        }
    }
    EXPECT_EQ(FirstDifference(runs[0], runs[1]), "");
}

TEST(AntiquatedMovie, RefusedFramesDrawNoRandomNumbers) {
    EffectDriver effect(kGuid);
    TestFrame frame = TestFrame(100, 80).DrawScene(4);
    std::srand(11);
    const int first = std::rand();
    std::srand(11);
    EXPECT_EQ(effect.Process(frame), kFailure);
    EXPECT_EQ(effect.Configure(100, 80, kFormatPacked), kSuccess);
    TestFrame packed(100, 80, kFormatPacked);
    EXPECT_EQ(effect.Process(packed), kNotImplemented);
    EXPECT_EQ(effect.Configure(100, 80), kSuccess);
    for (int plane = 0; plane < 3; ++plane) {
        TestFrame incomplete = frame;
        incomplete.image().Plane[plane] = nullptr;
        EXPECT_EQ(effect.Process(incomplete), kInvalidArgument);
    }
    EXPECT_EQ(std::rand(), first);
}

}  // namespace
