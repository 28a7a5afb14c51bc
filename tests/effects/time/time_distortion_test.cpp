#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{4CD53514-D1F8-41FD-BE48-24EF98AD69D3}";

class Model {
  public:
    void operator()(TestFrame& frame) {
        PlainPlane y = LumaOf(frame), u = ChromaOf(frame, 1), v = ChromaOf(frame, 2);
        const size_t k = static_cast<size_t>(count_ % 32);
        ys_[k] = y;
        us_[k] = u;
        vs_[k] = v;
        if (count_ == 0) average_ = y;
        for (size_t i = 0; i < y.pixels.size(); ++i) {
            average_.pixels[i] = static_cast<uint8_t>((76 * y.pixels[i] + 179 * average_.pixels[i]) / 255);
        }
        if (warmingUp_) {
            if (count_++ >= 32) warmingUp_ = false;
            return;
        }
        PlainPlane first(u.width, u.height), second(u.width, u.height);
        PlainResize(y, first);
        PlainResize(average_, second);
        const auto past = [&](int difference) {
            return static_cast<size_t>(((count_ - difference / 4) % 32 + 32) % 32);
        };
        for (size_t i = 0; i < y.pixels.size(); ++i) {
            const int d = std::abs(average_.pixels[i] - y.pixels[i]);
            if (d > 10) y.pixels[i] = ys_[past(d)].pixels[i];
        }
        for (size_t i = 0; i < u.pixels.size(); ++i) {
            const int d = std::abs(second.pixels[i] - first.pixels[i]);
            if (d > 10) {
                u.pixels[i] = us_[past(d)].pixels[i];
                v.pixels[i] = vs_[past(d)].pixels[i];
            }
        }
        ++count_;
        y.WriteTo(frame.plane(0));
        u.WriteTo(frame.plane(1));
        v.WriteTo(frame.plane(2));
    }

  private:
    bool warmingUp_ = true;
    int count_ = 0;
    PlainPlane average_;
    PlainPlane ys_[32], us_[32], vs_[32];
};

TEST(TimeDistortion, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Time Distortion");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    ExpectContract(effect);
}

TEST(TimeDistortion, EqualsItsModelFarPastItsWarmUp) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(90, 71), kSuccess);
    Model model;
    for (int i = 0; i < 140; ++i) {
        TestFrame frame = StreamPicture(90, 71, i), expected = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        model(expected);
        ASSERT_EQ(FirstDifference(frame, expected), "") << i;
    }
}

TEST(TimeDistortion, EqualsItsModelAtManySizes) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(
        effect, [](int, int) { return Model(); }, [] {}, 33 + kModelFrames);
}

TEST(TimeDistortion, TheFirst33FramesPass) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    for (int i = 0; i < 34; ++i) {
        TestFrame frame = TestFrame(40, 30).Randomize(static_cast<uint64_t>(i));
        const TestFrame before = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame == before, i < 33) << i;
    }
}

TEST(TimeDistortion, AStaticSceneStaysAsItIs) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(40, 30), kSuccess);
    const TestFrame still = TestFrame(40, 30).Randomize(4);
    for (int i = 0; i < 80; ++i) {
        TestFrame frame = still;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        ASSERT_EQ(FirstDifference(frame, still), "") << i;
    }
}

/// A nearly still scene whose frames differ by their level, 100 to 103, and then a frame that is
/// `difference` above the average that it leaves: what comes out of that frame, number 41.
int LumaAfterAStep(int difference) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Configure(8, 8), kSuccess);
    const auto level = [](int i) { return 100 + i % 4; };
    int average = level(0);
    const auto update = [&](int y) { return (76 * y + 179 * average) / 255; };
    for (int i = 0; i < 41; ++i) {
        TestFrame frame(8, 8);
        frame.Fill(static_cast<uint8_t>(level(i)), 128, 128);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame.y()[0], level(i));
        average = update(level(i));
    }
    for (int y = average; y < 256; ++y) {
        if (y - update(y) != difference) continue;
        TestFrame frame(8, 8);
        frame.Fill(static_cast<uint8_t>(y), 128, 128);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        return frame.y()[0] == y ? 41 : frame.y()[0];
    }
    return -1;
}

TEST(TimeDistortion, ADifferenceOf11ReachesTwoFramesBack) {
    EXPECT_EQ(LumaAfterAStep(10), 41);  // stays as it is
    EXPECT_EQ(LumaAfterAStep(11), 100 + 39 % 4);
    EXPECT_EQ(LumaAfterAStep(12), 100 + 38 % 4);
    EXPECT_EQ(LumaAfterAStep(15), 100 + 38 % 4);
    EXPECT_EQ(LumaAfterAStep(16), 100 + 37 % 4);
    EXPECT_EQ(LumaAfterAStep(100), 100 + 16 % 4);
}

TEST(TimeDistortion, DelaysWrapRoundTheRing) {
    // Dark for 40 frames, a first glimmer, then a flash. A delay of 32 shows the flash itself, 33 the glimmer
    // before it; 44 would come from before the first frame, and comes from frame 29.
    for (const auto& [flash, delay, shown] : {std::tuple{185, 32, 185}, {190, 33, 1}, {255, 44, 0}}) {
        EffectDriver effect(kGuid);
        ASSERT_EQ(effect.Configure(8, 8), kSuccess);
        for (int i = 0; i < 41; ++i) {
            TestFrame frame(8, 8);
            frame.Fill(i == 40 ? 1 : 0, 128, 128);
            ASSERT_EQ(effect.Process(frame), kSuccess);
        }
        ASSERT_EQ((flash - 76 * flash / 255) / 4, delay);
        TestFrame frame(8, 8);
        frame.Fill(static_cast<uint8_t>(flash), 128, 128);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame.y()[0], shown) << flash;
    }
}

}  // namespace
