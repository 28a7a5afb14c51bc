#include <gtest/gtest.h>

#include <cmath>

#include "effects/distortion/HallwayVision.h"
#include "imaging/Prim.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kMapGuid = "{F342D1F4-4E9C-475C-82CF-1CC347562DBC}";
constexpr const char* kIndexGuid = "{2F8530C5-96DA-4BCD-9CCA-B536EAFB08BB}";

std::vector<int> IndexTable(int W, int H) {
    std::vector<int> table;
    const int R2 = (H / 2) * (H / 2);
    for (int y = 0; y < H; ++y) {
        for (int x = 0; x < W; ++x) {
            const int dx = x - W / 2, dy = y - H / 2, d2 = dx * dx + dy * dy;
            int entry = y * W + x;
            if (d2 != 0 && d2 <= R2) {
                const double r = sqrt(static_cast<double>(d2) / R2);
                const double s = pow(sin(r * 3.1415926535 * 0.5), -0.3);
                const int row = static_cast<int>(trunc(dy * s)) + H / 2;
                const int column = static_cast<int>(trunc(dx * s)) + W / 2;
                if (row * W + column >= 0 && row * W + column < W * H) entry = row * W + column;
            }
            table.push_back(entry);
        }
    }
    return table;
}

struct FloatMaps {
    std::vector<float> x, y;

    FloatMaps(int W, int H) {
        for (int row = 0; row < H; ++row) {
            for (int column = 0; column < W; ++column) {
                x.push_back(static_cast<float>(column));
                y.push_back(static_cast<float>(row));
                const double dx = column - 0.5 * W, dy = row - 0.5 * H;
                const double d2 = dx * dx + dy * dy, R2 = (0.5 * H) * (0.5 * H);
                if (d2 == 0 || d2 > R2) continue;
                const double r = sqrt(d2 / R2);
                const double s = pow(sin(r * 3.1415926535 * 0.5), -0.3);
                const float mapY = static_cast<float>(0.5 * H + dy * s);
                const float mapX = static_cast<float>(0.5 * W + dx * s);
                const double index = trunc(W * static_cast<double>(mapY) + static_cast<double>(mapX));
                if (index < 0 || index > static_cast<double>(W) * H - 1) continue;
                x.back() = mapX;
                y.back() = mapY;
            }
        }
    }
};

struct HallwayModel {
    bool useIndexTable;
    int W, H;
    std::vector<int> full, half;
    FloatMaps maps, halfMaps;

    HallwayModel(bool useIndexTable_, int W_, int H_)
        : useIndexTable(useIndexTable_),
          W(W_),
          H(H_),
          full(IndexTable(W, H)),
          half(IndexTable(W / 2, H / 2)),
          maps(W, H),
          halfMaps(W / 2, H / 2) {}

    void Plane(std::span<uint8_t> plane, const std::vector<int>& table) const {
        const std::vector<uint8_t> before(plane.begin(), plane.end());
        for (size_t i = 0; i < table.size(); ++i) plane[i] = before[static_cast<size_t>(table[i])];
    }
    void Plane(std::span<uint8_t> plane, const FloatMaps& m, int w, int h, int interpolation) const {
        const std::vector<uint8_t> before(plane.begin(), plane.end());
        PrimRemap8uC1(before.data(), w, h, w, 0, 0, w, h, m.x.data(), 4 * w, m.y.data(), 4 * w, plane.data(),
                      w, w, h, interpolation);
    }
    void operator()(TestFrame& frame) const {
        if (useIndexTable) {
            Plane(frame.plane(0), full);
            Plane(frame.plane(1), half);
            Plane(frame.plane(2), half);
        } else {
            Plane(frame.plane(0), maps, W, H, kPrimLinear);
            Plane(frame.plane(1), halfMaps, W / 2, H / 2, kPrimNearest);
            Plane(frame.plane(2), halfMaps, W / 2, H / 2, kPrimNearest);
        }
    }
};

class HallwayVision : public testing::TestWithParam<bool> {
  protected:
    EffectDriver effect{GetParam() ? kIndexGuid : kMapGuid};
};
INSTANTIATE_TEST_SUITE_P(IndexTable, HallwayVision, testing::Bool());

TEST_P(HallwayVision, KeepsTheContract) {
    EXPECT_EQ(effect.Name(), "Hallway Vision");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    ExpectContract(effect);
}

TEST_P(HallwayVision, EqualsItsModel) {
    ExpectEqualsModel(effect, [](int w, int h) { return HallwayModel(GetParam(), w, h); });
}

TEST_P(HallwayVision, EqualsItsModelAtTheSmallestSizes) {
    for (int w = 1; w <= 20; ++w) {
        for (int h = 1; h <= 20; ++h) {
            ASSERT_EQ(effect.Configure(w, h), kSuccess);
            TestFrame frame = TestFrame(w, h).Randomize(static_cast<uint64_t>(w * 100 + h));
            TestFrame expected = frame;
            HallwayModel(GetParam(), w, h)(expected);
            EXPECT_EQ(effect.Process(frame), kSuccess);
            ASSERT_EQ(FirstDifference(frame, expected), "") << w << " by " << h;
            ASSERT_TRUE(frame.GuardsIntact());
        }
    }
}

TEST_P(HallwayVision, LeavesTheSidesAndTheCentreAlone) {
    ASSERT_EQ(effect.Configure(640, 480), kSuccess);
    const TestFrame before = TestFrame(640, 480).Randomize(3);
    TestFrame frame = before;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    const auto same = [&](int x, int y) {
        const auto at = static_cast<size_t>(y * 640 + x);
        return frame.plane(0)[at] == before.plane(0)[at];
    };
    EXPECT_TRUE(same(600, 240));
    EXPECT_TRUE(same(320, 240));
    for (int y = 0; y < 480; ++y) {
        for (int x = 0; x < 640; ++x) {
            if ((x - 320) * (x - 320) + (y - 240) * (y - 240) > 240 * 240) {
                ASSERT_TRUE(same(x, y)) << x << ", " << y;
            }
        }
    }
}

TEST_P(HallwayVision, StretchesMostAtTheCentreAndNotAtTheRim) {
    ASSERT_EQ(effect.Configure(640, 480), kSuccess);
    TestFrame frame(640, 480);
    for (int y = 0; y < 480; ++y) {
        for (int x = 0; x < 640; ++x) {
            frame.y()[640 * y + x] = static_cast<uint8_t>(std::clamp(x - 200, 0, 255));
        }
    }
    ASSERT_EQ(effect.Process(frame), kSuccess);
    EXPECT_GE(frame.y()[640 * 240 + 321], 120 + 4);  // one pixel out samples several
    EXPECT_NEAR(frame.y()[640 * 240 + 320 + 60], 120 + 60 * std::pow(std::sin(3.1415926535 / 8), -0.3), 1);
    EXPECT_NEAR(frame.y()[640 * 240 + 320 - 119], 1, 25);
    EXPECT_EQ(frame.y()[640 * 1 + 320], 120);
}

TEST_P(HallwayVision, KeepsAFlatPictureFlat) {
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    TestFrame frame = TestFrame(64, 48).Fill(77, 88, 99);
    ASSERT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, TestFrame(64, 48).Fill(77, 88, 99)), "");
}

TEST(HallwayVisionVariants, AreTheSmoothOneAndAnyOther) {
    for (const int variant : {1, 2, 0, 7, -1}) {
        EffectDriver effect = EffectDriver::Of<CHallwayVisionSpecialEffectFilter>(variant);
        ExpectEqualsModel(effect, [=](int w, int h) { return HallwayModel(variant != 1, w, h); }, {{64, 48}});
    }
}

TEST_P(HallwayVision, RebuildsItsTablesForAnotherSize) {
    for (const auto& [w, h] : {std::pair{80, 60}, {61, 83}, {80, 60}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame frame = TestFrame(w, h).DrawScene(1);
        TestFrame expected = frame;
        HallwayModel(GetParam(), w, h)(expected);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, expected), "");
        EXPECT_EQ(effect->Shutdown(), kSuccess);
    }
}

}  // namespace
