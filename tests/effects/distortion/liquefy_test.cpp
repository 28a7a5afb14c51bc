#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "framework/Surroundings.h"
#include "imaging/GradientNoise.h"
#include "tests/support/EffectDriver.h"

namespace {

constexpr const char* kGuids[] = {"{C116304B-F245-4111-855E-5EA4873787FB}",
                                  "{09BBE22C-BF85-445E-8DF0-F90E72B6B8C0}",
                                  "{D77E9CF7-CE38-4ABF-A4BA-525140515CEC}"};

constexpr int kFrames = SE_SANITIZED ? 5 : 40;

using Bytes = std::vector<uint8_t>;

/// The noise from which the effect draws its pictures.
const GradientNoise& Field() {
    return CurrentSurroundings().Shared<GradientNoise>(Rand);
}

struct LiquefyModel {
    int mode, w, h, n;
    std::vector<Bytes> frames;
    Bytes scroll;
    int index = 0, counter = 0, intensity = 16, speed = 1;

    LiquefyModel(int mode_, int w_, int h_)
        : mode(mode_), w(w_), h(h_), n(mode_ == 0 ? 16 : 17), frames(static_cast<size_t>(n)) {
        if (mode == 0) Waves();
        if (mode == 1) Blobs();
        if (mode == 2) Noise();
    }

    size_t At(int x, int y) const { return static_cast<size_t>(y * w + x); }

    void Waves() {
        for (int i = 0; i < n; ++i) {
            const double phase = 100.0 / n * i;
            for (int y = 0; y < h; ++y) {
                for (int x = 0; x < w; ++x) {
                    const double a = sin(2 * ((x + phase) / 100.0) * 3.1415926535) * 30.0;
                    const double b = cos(2 * ((y + phase) / 100.0) * 3.1415926535) * 30.0;
                    frames[static_cast<size_t>(i)].push_back(
                        static_cast<uint8_t>(static_cast<int>(a + b + 60.0)));
                }
            }
        }
    }

    /// 2 * passes box filters on the plane with 3 repeated pixels around it.
    void Smooth(Bytes& plane, int passes) const {
        const int bw = w + 6, bh = h + 6;
        Bytes first(static_cast<size_t>(bw * bh));
        for (int y = 0; y < bh; ++y) {
            for (int x = 0; x < bw; ++x) {
                first[static_cast<size_t>(y * bw + x)] =
                    plane[At(std::clamp(x - 3, 0, w - 1), std::clamp(y - 3, 0, h - 1))];
            }
        }
        for (int pass = 0; pass < 2 * passes; ++pass) {
            const Bytes from = first;
            for (int y = 1; y < bh - 1; ++y) {
                for (int x = 1; x < bw - 1; ++x) {
                    int sum = 0;
                    for (int k = 0; k < 9; ++k) {
                        sum += from[static_cast<size_t>((y + k / 3 - 1) * bw + x + k % 3 - 1)];
                    }
                    first[static_cast<size_t>(y * bw + x)] = static_cast<uint8_t>(((sum + 5) * 455) >> 12);
                }
            }
        }
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) plane[At(x, y)] = first[static_cast<size_t>((y + 3) * bw + x + 3)];
        }
    }

    void Blobs() {
        Bytes& plane0 = frames[0];
        for (int i = 0; i < w * h; ++i) plane0.push_back(static_cast<uint8_t>(rand() % 256));
        Smooth(plane0, 15);
        Bytes L = plane0;
        for (uint8_t& level : L) level = static_cast<uint8_t>(std::clamp(int{level}, 90, 180));
        double ph[256] = {};
        for (int i = 90; i <= 180; ++i) ph[i] = asin((i - 135.0) / 45.0) * n / 6.283185307;
        const double K = 6.283185307 / n;
        for (int k = 0; k < n; ++k) {
            Bytes& plane = frames[static_cast<size_t>(k)];
            plane.resize(L.size());
            for (size_t i = 0; i < L.size(); ++i) {
                plane[i] =
                    static_cast<uint8_t>(static_cast<int>(sin((ph[L[i]] + k + L[i]) * K) * 8.0 + 135.0));
            }
            Smooth(plane, 3);
        }
    }

    void Noise() {
        scroll.resize(static_cast<size_t>(2 * w * h));
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const int value = std::clamp(
                    static_cast<int>((Field().Noise2(x / 20.0, y / 20.0) + 1.0) * 80.0 * 0.5), 0, 255);
                scroll[static_cast<size_t>(y * 2 * w + x)] = static_cast<uint8_t>(value);
                scroll[static_cast<size_t>(y * 2 * w + 2 * w - 1 - x)] = static_cast<uint8_t>(value);
            }
        }
    }

    /// v / 16, half to even, saturated.
    static uint8_t Sixteenths(int v) {
        const int whole = v / 16, rest = v % 16;
        const int rounded = rest > 8 || (rest == 8 && whole % 2 == 1) ? whole + 1 : whole;
        return static_cast<uint8_t>(rounded > 255 ? 255 : rounded);
    }

    void operator()(TestFrame& frame) {
        ++counter;
        Bytes H;
        if (mode < 2) {
            H = frames[static_cast<size_t>(index)];
        } else {
            const int s = (speed + 2) * counter;
            for (int y = 0; y < h; ++y) {
                for (int x = 0; x < w; ++x) {
                    H.push_back(scroll[static_cast<size_t>(y * 2 * w + (s + x) % (2 * w))]);
                }
            }
        }
        if (intensity != 16) {
            for (uint8_t& height : H) height = Sixteenths(height * intensity);
        }
        Displace(H, frame.plane(0));
        if (mode < 2) index = (index + speed) % n;
    }

    /// The last column is never written.
    void Displace(const Bytes& bump, std::span<uint8_t> plane) const {
        if (w < 2 || h < 2) return;
        const Bytes src(plane.begin(), plane.end());
        for (int y = 1; y < h - 1; ++y) {
            for (int x = 1; x < w - 1; ++x) {
                const int gx = bump[At(x - 1, y)] - bump[At(x + 1, y)];
                const int gy = bump[At(x, y - 1)] - bump[At(x, y + 1)];
                const int value = src[At(std::clamp(x + gx, 0, w - 1), std::clamp(y + gy, 0, h - 1))] + gx;
                plane[At(x, y)] = static_cast<uint8_t>(std::clamp(value, 0, 255));
            }
        }
        for (int x = 0; x < w - 1; ++x) {
            plane[At(x, 0)] = plane[At(x, 1)];
            plane[At(x, h - 1)] = plane[At(x, h - 2)];
        }
        for (int y = 0; y < h; ++y) plane[At(0, y)] = plane[At(1, y)];
    }
};

class Liquefy : public testing::TestWithParam<int> {
  protected:
    int mode() const { return GetParam(); }

    /// Configures the effect and makes the model from the same random numbers.
    LiquefyModel Begin(int w, int h) {
        Field();  // its tables are drawn once in a process
        std::srand(99);
        EXPECT_EQ(effect.Configure(w, h), kSuccess);
        const int next = std::rand();
        std::srand(99);
        LiquefyModel model(mode(), w, h);
        EXPECT_EQ(std::rand(), next);
        return model;
    }

    void ExpectFrame(LiquefyModel& model, int index) {
        TestFrame frame(model.w, model.h);
        index % 3 == 2 ? frame.Randomize(static_cast<uint64_t>(index)) : frame.DrawScene(index);
        TestFrame expected = frame;
        model(expected);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        ASSERT_EQ(FirstDifference(frame, expected), "")
            << model.w << " by " << model.h << ", frame " << index << ", intensity " << model.intensity;
        ASSERT_TRUE(frame.GuardsIntact());
    }

    EffectDriver effect{kGuids[GetParam()]};
};
INSTANTIATE_TEST_SUITE_P(Variants, Liquefy, testing::Values(0, 1, 2));

TEST_P(Liquefy, KeepsTheContract) {
    EXPECT_EQ(effect.Name(), "Liquefy");
    ExpectContract(effect);
}

TEST_P(Liquefy, HasTwoProperties) {
    CInternalInfo* const info = effect->GetInternalInfo();
    ASSERT_EQ(info->GetPropCount(), 2);
    char name[32], initial[32], range[32];
    EXPECT_EQ(info->GetPropTypeInfo(0, name, 32, initial, 32, range, 32), PropTypeSet::Integer);
    EXPECT_EQ(std::string(name) + "|" + initial + "|" + range, "ChangeSpeed|1|1,3");
    EXPECT_EQ(info->GetPropTypeInfo(1, name, 32, initial, 32, range, 32), PropTypeSet::Integer);
    EXPECT_EQ(std::string(name) + "|" + initial + "|" + range, "Intensity|16|1,24");

    EXPECT_EQ(effect.Get("ChangeSpeed"), "1");
    EXPECT_EQ(effect.Get("Intensity"), "16");
    for (const auto& [text, value] :
         {std::pair{"100", "24"}, {"24", "24"}, {"0", "1"}, {"x", "1"}, {"7", "7"}}) {
        EXPECT_EQ(effect.Set("INTENSITY", text), kSuccess);
        EXPECT_EQ(effect.Get("intensity"), value) << text;
    }
    for (const auto& [text, value] : {std::pair{"0", "1"}, {"2", "2"}, {"-9", "1"}, {"9", "3"}}) {
        EXPECT_EQ(effect.Set("changespeed", text), kSuccess);
        EXPECT_EQ(effect.Get("CHANGESPEED"), value) << text;
    }
    EXPECT_EQ(effect.Set("Speed", "1"), kInvalidArgument);
    EXPECT_EQ(effect.Get("Speed"), "?80070057");
}

TEST_P(Liquefy, EqualsItsModel) {
    int index = 0;  // Configure does not reset it
    for (const auto& [w, h] : {std::pair{320, 240}, {176, 144}, {640, 480}, {161, 121}, {37, 90}}) {
        LiquefyModel model = Begin(w, h);
        model.index = index;
        for (int i = 0; i < kFrames; ++i) ASSERT_NO_FATAL_FAILURE(ExpectFrame(model, i));
        index = model.index;
    }
}

TEST_P(Liquefy, EqualsItsModelAtTheSmallestSizes) {
    int index = 0;
    for (int w = 1; w <= 6; ++w) {
        for (int h = 1; h <= 6; ++h) {
            LiquefyModel model = Begin(w, h);
            model.index = index;
            for (int i = 0; i < 6; ++i) ASSERT_NO_FATAL_FAILURE(ExpectFrame(model, i));
            index = model.index;
        }
    }
}

TEST_P(Liquefy, FollowsItsPropertiesFromFrameToFrame) {
    LiquefyModel model = Begin(96, 64);
    int i = 0;
    for (const int intensity : {1, 24, 16, 7, 15, 17}) {
        for (const int speed : {3, 2, 1}) {
            model.intensity = intensity;
            model.speed = speed;
            effect.Set("Intensity", std::to_string(intensity));
            effect.Set("ChangeSpeed", std::to_string(speed));
            for (int k = 0; k < 7; ++k) ASSERT_NO_FATAL_FAILURE(ExpectFrame(model, i++));
        }
    }
}

TEST_P(Liquefy, LeavesChromaAndTheLastColumnAlone) {
    Begin(64, 48);
    const TestFrame before = TestFrame(64, 48).Randomize(1);
    TestFrame frame = before;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    EXPECT_TRUE(std::equal(frame.u(), frame.u() + 32 * 24, before.plane(1).data()));
    EXPECT_TRUE(std::equal(frame.v(), frame.v() + 32 * 24, before.plane(2).data()));
    for (size_t y = 0; y < 48; ++y) EXPECT_EQ(frame.y()[64 * y + 63], before.plane(0)[64 * y + 63]);
    EXPECT_NE(frame, before);
}

TEST_P(Liquefy, HardlyMovesAnythingAtTheLowestIntensity) {
    Begin(64, 48);
    effect.Set("Intensity", "1");
    TestFrame frame(64, 48);
    for (int y = 0; y < 48; ++y) std::fill_n(frame.y() + 64 * y, 64, static_cast<uint8_t>(2 * y));
    const TestFrame before = frame;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    // One row of displacement, one level of brightening, and one row more along the border.
    for (size_t i = 0; i < 64 * 48; ++i) EXPECT_NEAR(frame.plane(0)[i], before.plane(0)[i], 2 + 1 + 2);
}

TEST_P(Liquefy, CountsRefusedFrames) {
    LiquefyModel model = Begin(64, 48);
    TestFrame refused(64, 48);
    refused.image().Plane[1] = nullptr;
    EXPECT_EQ(effect.Process(refused), kInvalidArgument);
    ++model.counter;  // the height map scrolls on; the cycle of frames does not
    TestFrame packed(64, 48, kFormatPacked);
    EXPECT_EQ(effect.Process(packed), kFailure);  // not of the stream: not counted
    for (int i = 0; i < 3; ++i) ASSERT_NO_FATAL_FAILURE(ExpectFrame(model, i));
}

TEST_P(Liquefy, ShutsDownAndBeginsAgainAtAnotherSize) {
    LiquefyModel model = Begin(64, 48);
    for (int i = 0; i < 5; ++i) ASSERT_NO_FATAL_FAILURE(ExpectFrame(model, i));
    EXPECT_EQ(effect->Shutdown(), kSuccess);
    TestFrame frame(64, 48);
    EXPECT_EQ(effect.Process(frame), kFailure);
    LiquefyModel other = Begin(50, 70);
    other.index = model.index;
    for (int i = 0; i < 5; ++i) ASSERT_NO_FATAL_FAILURE(ExpectFrame(other, i));
}

TEST(LiquefyWaves, RepeatsEverySixteenFrames) {
    EffectDriver effect(kGuids[0]);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    const TestFrame still = TestFrame(64, 48).DrawScene(1);
    std::vector<TestFrame> results;
    for (int i = 0; i < 32; ++i) {
        results.push_back(still);
        ASSERT_EQ(effect.Process(results.back()), kSuccess);
    }
    for (size_t i = 0; i < 16; ++i) EXPECT_EQ(FirstDifference(results[i], results[i + 16]), "");
    for (size_t i = 1; i < 16; ++i) EXPECT_NE(results[i], results[0]);
}

TEST(LiquefyCycles, SpeedThreeVisitsAllFrames) {
    for (const int mode : {0, 1}) {
        EffectDriver effect(kGuids[mode]);
        effect.Set("ChangeSpeed", "3");
        ASSERT_EQ(effect.Configure(64, 48), kSuccess);
        const TestFrame still = TestFrame(64, 48).Randomize(1);
        std::vector<uint64_t> seen;
        for (int i = 0; i < 34; ++i) {
            TestFrame frame = still;
            ASSERT_EQ(effect.Process(frame), kSuccess);
            if (std::find(seen.begin(), seen.end(), frame.Checksum()) == seen.end()) {
                seen.push_back(frame.Checksum());
            }
        }
        EXPECT_EQ(seen.size(), mode == 0 ? 16U : 17U);
    }
}

}  // namespace
