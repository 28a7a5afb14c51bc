#include "effects/time/MotionBlur.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kTrails = "{A8DC69D3-3428-4F12-B672-BB58C95BDE25}";
constexpr const char* kGhost = "{8656338E-0410-4832-A7CA-325D902713D2}";

/// Keeps every frame that it put out.
class Model {
  public:
    explicit Model(int mode) : mode_(mode) {}

    void operator()(TestFrame& frame) {
        const size_t c = out_.size();
        if (c >= 4) {
            for (size_t i = 0; i < frame.plane(0).size(); ++i) {
                const int y = frame.y()[i];
                const int a = out_[c - 1][i], d = out_[c - 2][i], b = out_[c - 3][i];
                const int m = std::max({a, b, d});
                const int blended =
                    mode_ == 0 ? (4 * y + 3 * a + 3 * m + 2 * b + d) / 13 : (y + a + 2 * b + 4 * d) / 8;
                frame.y()[i] = static_cast<uint8_t>(blended);
            }
        }
        out_.emplace_back(frame.plane(0).begin(), frame.plane(0).end());
    }

  private:
    int mode_;
    std::vector<std::vector<uint8_t>> out_;
};

class MotionBlur : public testing::TestWithParam<int> {
  protected:
    EffectDriver effect{GetParam() == 0 ? kTrails : kGhost};
};

TEST_P(MotionBlur, KeepsTheContract) {
    EXPECT_EQ(effect.Name(), "Motion Blur - Ghost");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    ExpectContract(effect);
}

TEST_P(MotionBlur, EqualsItsModel) {
    ExpectEqualsModel(effect, [](int, int) { return Model(GetParam()); });
}

TEST_P(MotionBlur, StartsWithTheFifthFrame) {
    ASSERT_EQ(effect.Configure(32, 24), kSuccess);
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 6; ++i) {
            TestFrame frame = TestFrame(32, 24).Randomize(static_cast<uint64_t>(i));
            const TestFrame before = frame;
            ASSERT_EQ(effect.Process(frame), kSuccess);
            EXPECT_EQ(frame == before, i < 4) << i;
        }
        ASSERT_EQ(effect.Configure(32, 24), kSuccess);  // starts over
    }
}

TEST_P(MotionBlur, LeavesAStillPictureAlone) {
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    const TestFrame still = TestFrame(64, 48).Randomize(9);
    for (int i = 0; i < 20; ++i) {
        TestFrame frame = still;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        ASSERT_EQ(FirstDifference(frame, still), "") << i;
    }
}

TEST_P(MotionBlur, KeepsChromaSharp) {
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    for (int i = 0; i < 8; ++i) {
        TestFrame frame = TestFrame(64, 48).Randomize(static_cast<uint64_t>(i));
        const TestFrame before = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_TRUE(std::equal(frame.plane(1).begin(), frame.plane(1).end(), before.plane(1).begin()));
        EXPECT_TRUE(std::equal(frame.plane(2).begin(), frame.plane(2).end(), before.plane(2).begin()));
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, MotionBlur, testing::Values(0, 1));

TEST(MotionBlurModes, AnotherModeChangesNothing) {
    for (const int32_t mode : {-1, 2}) {
        auto effect = EffectDriver::Of<CMotionBlurSpecialEffectFilter>(mode);
        ASSERT_EQ(effect.Configure(32, 24), kSuccess);
        for (int i = 0; i < 8; ++i) {
            TestFrame frame = TestFrame(32, 24).Randomize(static_cast<uint64_t>(i));
            const TestFrame before = frame;
            EXPECT_EQ(effect.Process(frame), kSuccess);
            EXPECT_EQ(FirstDifference(frame, before), "");
        }
    }
}

TEST(MotionBlurTrails, ABrightSpotStaysLit) {
    // A flash of one frame: 4 parts of it, then 3 + 3 parts of what came out, then 3 of the frame before and
    // 3 + 1 of the flash, which is brightest still. It lasts half as long again as without the brightest.
    EffectDriver effect(kTrails);
    ASSERT_EQ(effect.Configure(4, 4), kSuccess);
    std::vector<int> shown;
    for (int i = 0; i < 40; ++i) {
        TestFrame frame(4, 4);
        frame.Fill(i == 6 ? 255 : 0, 128, 128);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        shown.push_back(frame.y()[0]);
    }
    EXPECT_EQ(shown[6], 4 * 255 / 13);
    EXPECT_EQ(shown[7], 6 * 78 / 13);
    EXPECT_EQ(shown[8], (3 * 36 + 4 * 78) / 13);
    EXPECT_EQ(shown[9], (3 * 32 + 5 * 78 + 36) / 13);
    EXPECT_GT(shown[27], 0);
    EXPECT_EQ(shown[28], 0);
}

}  // namespace
