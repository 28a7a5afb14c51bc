#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{41AAFA6F-B0F3-4759-A799-4E3DF9833D4A}";

struct MovingTwirlModel {
    struct Polar {
        int r = 0, angle = 0, twist = 0;
    };

    int w, h, phase = 5734, direction = 1;
    std::vector<int> sinTable, cosTable;
    std::vector<Polar> luma, chroma;

    MovingTwirlModel(int width, int height)
        : w(width), h(height), luma(PolarTable(width, height)), chroma(PolarTable(width / 2, height / 2)) {
        for (int i = 0; i < 6000; ++i) {
            const double a = (i - 3000.0) / 100.0;
            sinTable.push_back(static_cast<int>(trunc(sin(a) * 4096.0)));
            cosTable.push_back(static_cast<int>(trunc(cos(a) * 4096.0)));
        }
    }

    static std::vector<Polar> PolarTable(int width, int height) {
        std::vector<Polar> table;
        const int hw = width / 2, hh = height / 2;
        for (int dy = -hh; dy < height - hh; ++dy) {
            for (int dx = -hw; dx < width - hw; ++dx) {
                Polar p;
                p.r = static_cast<int>(
                    trunc(sqrt(static_cast<double>(dx) * dx + static_cast<double>(dy) * dy)));
                if (p.r < hh) {
                    p.angle = static_cast<int>(trunc(atan2(dy, dx) * 4096.0));
                    p.twist = static_cast<int>(trunc(4096.0 * (hh - p.r) / hh));
                }
                table.push_back(p);
            }
        }
        return table;
    }

    void Plane(std::span<uint8_t> plane, const std::vector<Polar>& table, int limit, int width, int64_t cx,
               int64_t cy) const {
        const std::vector<uint8_t> before(plane.begin(), plane.end());
        for (size_t i = 0; i < table.size(); ++i) {
            const Polar& p = table[i];
            if (p.r >= limit) continue;
            const int64_t a = (int64_t{p.twist} * phase / 4096 + p.angle) * 100;
            const auto k = static_cast<size_t>(a / 4096 + 3000);
            const int64_t row = (int64_t{sinTable.at(k)} * p.r + cy) / 4096;
            const int64_t column = (int64_t{cosTable.at(k)} * p.r + cx) / 4096;
            const int64_t index = row * width + column;
            if (index >= 0 && index < static_cast<int64_t>(before.size())) {
                plane[i] = before[static_cast<size_t>(index)];
            }
        }
    }

    void operator()(TestFrame& frame) {
        phase += direction * 321;
        if (phase < -12867.963508736 || phase > 12867.963508736) direction = -direction;
        const int hw = w / 2, hh = h / 2;
        Plane(frame.plane(0), luma, hh, w, hw * 4096, hh * 4096);
        Plane(frame.plane(1), chroma, hh / 2, w / 2, hw * 4096 / 2, hh * 4096 / 2);
        Plane(frame.plane(2), chroma, hh / 2, w / 2, hw * 4096 / 2, hh * 4096 / 2);
    }
};

TEST(MovingTwirl, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Moving Twirl");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    ExpectContract(effect);
}

TEST(MovingTwirl, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int w, int h) { return MovingTwirlModel(w, h); });
}

TEST(MovingTwirl, EqualsItsModelThroughAWholeSwing) {
    EffectDriver effect(kGuid);
    // Among them sizes whose chroma centre lies between two pixels, and narrow ones.
    for (const auto& [w, h] : {std::pair{64, 48}, {62, 46}, {61, 47}, {6, 90}, {7, 91}, {2, 64}, {1, 30}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        MovingTwirlModel model(w, h);
        for (int i = 0; i < 180; ++i) {
            TestFrame frame = TestFrame(w, h).Randomize(static_cast<uint64_t>(i));
            TestFrame expected = frame;
            model(expected);
            ASSERT_EQ(effect.Process(frame), kSuccess);
            ASSERT_EQ(FirstDifference(frame, expected), "") << w << " by " << h << ", frame " << i;
            ASSERT_TRUE(frame.GuardsIntact());
        }
    }
}

TEST(MovingTwirl, TurnsBackWhereThePhasePassesPi) {
    MovingTwirlModel model(8, 8);
    TestFrame frame(8, 8);
    model(frame);
    EXPECT_EQ(model.phase, 6055);
    for (int i = 1; i < 23; ++i) model(frame);
    EXPECT_EQ(model.phase, 13117);
    EXPECT_EQ(model.direction, -1);
    model(frame);
    EXPECT_EQ(model.phase, 12796);

    // The effect does the same: frames 22 and 24 have one phase, frame 23 another.
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    const TestFrame scene = TestFrame(64, 48).Randomize(1);
    std::vector<TestFrame> results;
    for (int i = 0; i < 24; ++i) {
        results.push_back(scene);
        ASSERT_EQ(effect.Process(results.back()), kSuccess);
    }
    EXPECT_EQ(FirstDifference(results[21], results[23]), "");
    EXPECT_NE(FirstDifference(results[22], results[23]), "");

    // On its way back, `Configure` makes it swing forward again; one frame alone would not show it.
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    for (size_t i = 0; i < 2; ++i) {
        TestFrame again = scene;
        ASSERT_EQ(effect.Process(again), kSuccess);
        EXPECT_EQ(FirstDifference(again, results[i]), "") << i;
    }
}

TEST(MovingTwirl, LeavesWhatLiesOutsideTheDisc) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    const TestFrame before = TestFrame(160, 120).Randomize(2);
    for (int i = 0; i < 30; ++i) {
        TestFrame frame = before;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        for (int k = 0; k < 160 * 120; ++k) {
            const int dx = k % 160 - 80, dy = k / 160 - 60;
            if (dx * dx + dy * dy >= 60 * 60) {
                ASSERT_EQ(frame.plane(0)[static_cast<size_t>(k)], before.plane(0)[static_cast<size_t>(k)]);
            }
        }
    }
}

TEST(MovingTwirl, HardlyMovesTheRim) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    TestFrame frame(160, 120);
    for (int y = 0; y < 120; ++y) std::fill_n(frame.y() + 160 * y, 160, static_cast<uint8_t>(2 * y));
    ASSERT_EQ(effect.Process(frame), kSuccess);
    EXPECT_NEAR(frame.y()[60 * 160 + 80 + 59], 120, 6);
    EXPECT_NEAR(frame.y()[2 * 160 + 80], 4, 6);
}

/// What still moves at frame 64, whose phase of -44 is the nearest to 0, is what the polar form loses.
TEST(MovingTwirl, HardlyMovesAnythingWhereTheTwistIsNearZero) {
    constexpr int w = 160, h = 120;
    const auto atFrame64 = [](TestFrame frame) {
        EffectDriver effect(kGuid);
        EXPECT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame passing(w, h);
        for (int i = 1; i < 64; ++i) EXPECT_EQ(effect.Process(passing), kSuccess);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        return frame;
    };
    TestFrame columns(w, h), rows(w, h);
    for (int i = 0; i < w * h; ++i) {
        columns.y()[i] = static_cast<uint8_t>(i % w);
        rows.y()[i] = static_cast<uint8_t>(i / w);
    }
    columns = atFrame64(columns);
    rows = atFrame64(rows);
    int moved = 0;
    for (int i = 0; i < w * h; ++i) {
        ASSERT_NEAR(columns.y()[i], i % w, 2) << i;
        ASSERT_NEAR(rows.y()[i], i / w, 2) << i;
        moved += columns.y()[i] != i % w || rows.y()[i] != i / w ? 1 : 0;
    }
    EXPECT_GT(moved, 0);
}

TEST(MovingTwirl, ARefusedFrameMovesNothing) {
    EffectDriver effect(kGuid), other(kGuid);
    TestFrame unready = TestFrame(64, 48).DrawScene(1);
    EXPECT_EQ(effect.Process(unready), kFailure);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    ASSERT_EQ(other.Configure(64, 48), kSuccess);
    TestFrame refused = TestFrame(64, 48).DrawScene(1);
    refused.image().Plane[2] = nullptr;
    EXPECT_EQ(effect.Process(refused), kInvalidArgument);
    TestFrame a = TestFrame(64, 48).DrawScene(1), b = a;
    EXPECT_EQ(effect.Process(a), kSuccess);
    EXPECT_EQ(other.Process(b), kSuccess);
    EXPECT_EQ(FirstDifference(a, b), "");

    // Configure starts the swing again.
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    TestFrame again = TestFrame(64, 48).DrawScene(1);
    EXPECT_EQ(effect.Process(again), kSuccess);
    EXPECT_EQ(FirstDifference(again, b), "");
}

TEST(MovingTwirl, ServesTheLargestFrames) {
    if (SE_SANITIZED) GTEST_SKIP() << "takes long; the other sizes reach the same code";
    EffectDriver effect(kGuid);
    for (const auto& [w, h] : {std::pair{16384, 64}, {64, 16384}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        MovingTwirlModel model(w, h);
        for (int i = 0; i < 2; ++i) {
            TestFrame frame = TestFrame(w, h).DrawScene(i);
            TestFrame expected = frame;
            model(expected);
            ASSERT_EQ(effect.Process(frame), kSuccess);
            ASSERT_EQ(FirstDifference(frame, expected), "");
        }
    }
}

}  // namespace
