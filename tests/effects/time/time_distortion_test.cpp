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

TEST(TimeDistortion, ADifferenceOf11ReachesTwoFramesBack) {
    // A long still scene, then one step in brightness. A step of s leaves a difference of about s * 179 /
    // 255.
    for (const auto& [step, reach] : {std::pair{14, 0}, {16, 2}}) {
        EffectDriver effect(kGuid);
        ASSERT_EQ(effect.Configure(8, 8), kSuccess);
        for (int i = 0; i < 40; ++i) {
            // The frames can be told apart by one level only in the last picture but one.
            TestFrame frame(8, 8);
            frame.Fill(static_cast<uint8_t>(i == 37 ? 101 : 100), 128, 128);
            ASSERT_EQ(effect.Process(frame), kSuccess);
        }
        // The average of a still 100 settles a little below it by truncation.
        TestFrame frame(8, 8);
        frame.Fill(static_cast<uint8_t>(100 + step), 128, 128);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        if (reach == 0) {
            EXPECT_EQ(frame.y()[0], 100 + step);
        } else {
            EXPECT_LE(frame.y()[0], 101);
        }
    }
}

}  // namespace
