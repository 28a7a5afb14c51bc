#include <gtest/gtest.h>

#include <cmath>

#include "effects/distortion/Twirl.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kDiscGuid = "{31C0857C-39B7-47C5-A30D-5E7EA39D66A6}";
constexpr const char* kWholeGuid = "{D4BD349A-13D3-45F2-8C4C-880E9D2E6280}";

constexpr double kAngle = 1.15;  // of both effects in the catalogue

/// The source of each pixel of one plane. `mode` 0 is the disc, 1 the whole frame.
std::vector<int> TwirlMap(int mode, int w, int h, double angle) {
    std::vector<int> map;
    const int hw = w / 2, hh = h / 2;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const int self = y * w + x;
            const double dx = x - hw, dy = y - hh, r = sqrt(dx * dx + dy * dy);
            int index = self;
            if (mode == 0) {
                const double R = hh;
                if (r < R) {
                    const double t = atan2(dy, dx) + (R - r) * angle / R;
                    index = static_cast<int>(trunc(sin(t) * r + R)) * w +
                            static_cast<int>(trunc(cos(t) * r + hw));
                }
            } else {
                const double R = sqrt(static_cast<double>(hw) * hw + static_cast<double>(hh) * hh);
                if (R > 0) {
                    const double t = atan2(dy, dx) + (R - r) * angle / R;
                    index = static_cast<int>(trunc(sin(t) * r + hh)) * w +
                            static_cast<int>(trunc(cos(t) * r + hw));
                }
            }
            map.push_back(index < 0 || index >= w * h ? self : index);
        }
    }
    return map;
}

struct TwirlModel {
    std::vector<int> luma, chroma;

    TwirlModel(int mode, int w, int h, double angle = kAngle)
        : luma(TwirlMap(mode, w, h, angle)), chroma(TwirlMap(mode, w / 2, h / 2, angle)) {}
    void operator()(TestFrame& frame) const {
        const TestFrame before = frame;
        for (int p = 0; p < 3; ++p) {
            const std::vector<int>& map = p == 0 ? luma : chroma;
            for (size_t i = 0; i < map.size(); ++i) {
                frame.plane(p)[i] = before.plane(p)[static_cast<size_t>(map[i])];
            }
        }
    }
};

class Twirl : public testing::TestWithParam<int> {
  protected:
    int mode() const { return GetParam(); }
    EffectDriver effect{GetParam() == 0 ? kDiscGuid : kWholeGuid};
};
INSTANTIATE_TEST_SUITE_P(Variants, Twirl, testing::Values(0, 1));

TEST_P(Twirl, KeepsTheContract) {
    EXPECT_EQ(effect.Name(), "Twirl");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    EXPECT_EQ(effect.Set("Angle", "2"), kSuccess);
    ExpectContract(effect);
}

TEST_P(Twirl, EqualsItsModel) {
    ExpectEqualsModel(effect, [this](int w, int h) { return TwirlModel(mode(), w, h); });
}

TEST_P(Twirl, HoldsNarrowFramesInsideTheirPlanes) {
    for (const auto& [w, h] : {std::pair{1, 60}, {2, 61}, {3, 200}, {16, 480}, {60, 1}, {200, 3}, {1, 2}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame frame = TestFrame(w, h).Randomize(6);
        TestFrame expected = frame;
        TwirlModel(mode(), w, h)(expected);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, expected), "") << w << " by " << h;
        EXPECT_TRUE(frame.GuardsIntact());
    }
}

TEST_P(Twirl, IsAFixedMapping) {
    ASSERT_EQ(effect.Configure(80, 60), kSuccess);
    TestFrame first = TestFrame(80, 60).DrawScene(1), second = first;
    EXPECT_EQ(effect.Process(first), kSuccess);
    EXPECT_EQ(effect.Process(second), kSuccess);
    EXPECT_EQ(FirstDifference(first, second), "");
    TestFrame flat = TestFrame(80, 60).Fill(33, 44, 55);
    EXPECT_EQ(effect.Process(flat), kSuccess);
    EXPECT_EQ(FirstDifference(flat, TestFrame(80, 60).Fill(33, 44, 55)), "");
}

TEST_P(Twirl, RebuildsItsTablesForAnotherSize) {
    for (const auto& [w, h] : {std::pair{80, 60}, {61, 83}, {80, 60}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame frame = TestFrame(w, h).DrawScene(1);
        TestFrame expected = frame;
        TwirlModel(mode(), w, h)(expected);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, expected), "");
        EXPECT_EQ(effect->Shutdown(), kSuccess);
    }
}

TEST(TwirlVariants, AreTheDiscAndAnyOtherWithTheirOwnAngles) {
    for (const auto& [variant, mode] : {std::pair{1, 0}, {2, 1}, {0, 1}, {7, 1}, {-1, 1}}) {
        for (const double angle : {0.0, 0.4, -3.0}) {
            EffectDriver effect = EffectDriver::Of<CTwirlSpecialEffectFilter>(variant, angle);
            ExpectEqualsModel(
                effect, [&, mode = mode](int w, int h) { return TwirlModel(mode, w, h, angle); }, {{64, 48}});
        }
    }
}

TEST(TwirlDisc, LeavesWhatLiesOutside) {
    EffectDriver effect(kDiscGuid);
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    const TestFrame before = TestFrame(320, 240).Randomize(2);
    TestFrame frame = before;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    int moved = 0;
    for (int i = 0; i < 320 * 240; ++i) {
        const int dx = i % 320 - 160, dy = i / 320 - 120;
        const auto at = static_cast<size_t>(i);
        if (dx * dx + dy * dy >= 120 * 120) {
            ASSERT_EQ(frame.plane(0)[at], before.plane(0)[at]) << dx << ", " << dy;
        } else {
            moved += frame.plane(0)[at] != before.plane(0)[at] ? 1 : 0;
        }
    }
    EXPECT_GT(moved, 40000);
    EXPECT_EQ(frame.y()[120 * 320 + 160], before.plane(0)[120 * 320 + 160]);  // the centre
}

TEST(TwirlWhole, HardlyTurnsTheCorners) {
    const std::vector<int> map = TwirlMap(1, 320, 240, kAngle);
    EffectDriver effect(kWholeGuid);
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    const TestFrame before = TestFrame(320, 240).Randomize(2);
    TestFrame frame = before;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_NEAR(map[0], 0, 321);  // the corner itself or its neighbour
    EXPECT_EQ(frame.y()[0], before.plane(0)[static_cast<size_t>(map[0])]);
    EXPECT_EQ(frame.y()[120 * 320 + 160], before.plane(0)[120 * 320 + 160]);
}

}  // namespace
