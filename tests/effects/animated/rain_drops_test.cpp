#include "effects/animated/RainDrops.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <list>
#include <vector>

#include "tests/imaging/models/GeometryModels.h"
#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{9E680B79-DC8E-4CA2-B3AE-731A26C57EAE}";

class Model {
  public:
    Model(int width, int height, int rate)
        : w_(width), h_(height), rate_(rate), gw_(width / 12), gh_(height / 12) {
        for (int i = 0; i < gw_ * gh_; ++i) cells_.push_back({std::rand() % 1000 / 1000.0, 0});
        for (int i = 0; i < gw_ * gh_; ++i) {
            const int x = std::rand() % 5 - 2;
            const int y = std::rand() % 5 - 2;
            jitter_.push_back({x, y});
        }
    }

    void operator()(TestFrame& frame) {
        PlainPlane bump(w_, h_, 100);
        for (int cy = 0; cy < gh_; ++cy) {
            for (int cx = 0; cx < gw_; ++cx) {
                const auto [jx, jy] = jitter_[static_cast<size_t>(cy * gw_ + cx)];
                const double water = At(cx, cy).water;
                const double radius = water < 0.05 ? 0 : std::pow(water, 0.3333333333333333) * 4.0;
                if (radius >= 1.0 && radius < 17.0) {
                    Dome(bump, jx + 12 * cx + 6, jy + 12 * cy + 6, static_cast<int>(radius));
                }
            }
        }
        PlainBox(bump, 3);
        PlainBox(bump, 3);
        const PlainPlane source = LumaOf(frame);
        model::DisplaceByGradient(bump.pixels.data(), source.pixels.data(), frame.y(), w_, h_);
        const double share = w_ * h_ / 307200.0;
        for (int i = 0; i < rate_; ++i) {
            if (share >= 1.0 || share * 10000 > std::rand() % 10000) AddRain();
        }
        Run();
    }

    double mostWater() const {
        double most = 0;
        for (const Cell& cell : cells_) most = std::max(most, cell.water);
        return most;
    }
    size_t runners() const { return runners_.size(); }

  private:
    struct Cell {
        double stickiness, water;
    };
    struct Runner {
        int x, y;
        double progress, speed;
    };

    Cell& At(int x, int y) { return cells_[static_cast<size_t>(y * gw_ + x)]; }

    static void Dome(PlainPlane& bump, int px, int py, int r) {
        if (r > 16) return;
        for (int dy = -r; dy <= r; ++dy) {
            for (int dx = -r; dx <= r; ++dx) {
                const int d = r * r - dx * dx - dy * dy, x = px + dx, y = py + dy;
                if (d < 1 || x < 0 || x >= bump.width || y < 0 || y >= bump.height) continue;
                bump(x, y) = static_cast<uint8_t>(bump.At(x, y) +
                                                  static_cast<int>(8.0 * std::sqrt(static_cast<float>(d))));
            }
        }
    }

    bool Occupied(int x, int y) const {
        for (const Runner& runner : runners_) {
            if (runner.x == x && runner.y == y) return true;
        }
        return false;
    }

    void AddRain() {
        if (cells_.empty()) return;
        const int x = std::rand() % gw_, y = std::rand() % gh_;
        At(x, y).water += std::rand() % 100 / 10.0;
        if (At(x, y).water > 1.5 && !Occupied(x, y)) runners_.push_back({x, y, 0, 1});
    }

    void Run() {
        for (Runner& runner : runners_) Step(runner);
        runners_.remove_if([&](const Runner& runner) { return runner.y >= gh_; });
        for (int y = 0; y < gh_; ++y) {
            for (int x = 0; x < gw_; ++x) {
                if (At(x, y).water > 1.5 && !Occupied(x, y)) {
                    runners_.push_back({x, y, 0, 1});
                } else {
                    At(x, y).water -= At(x, y).water / 100;
                }
            }
        }
    }

    void Step(Runner& runner) {
        runner.progress += runner.speed;
        if (runner.progress < 1.0) return;
        runner.progress -= 1.0;
        Cell& cell = At(runner.x, runner.y);
        const double water = cell.water, m = 0.2 * cell.stickiness;
        double kept = (water - m) * (cell.stickiness * 0.8) + m;
        if (water < m) kept = water;
        if (water > m + 5.999999999999999) kept = 5.0 * cell.stickiness;
        cell.water = kept;
        if (runner.y + 1 >= gh_) {
            runner.y = gh_;
            return;
        }
        runner.x += Direction(runner.x, runner.y);
        ++runner.y;
        At(runner.x, runner.y).water += water - kept;
    }

    int Direction(int x, int y) {
        const bool hasLeft = x > 0, hasRight = x + 1 < gw_;
        const auto wet = [&](int at) { return At(at, y + 1).water > 0.5; };
        const bool left = hasLeft && wet(x - 1), middle = wet(x), right = hasRight && wet(x + 1);
        if (middle) return 0;
        if (!left && right) return 1;
        if (left && !right) return -1;
        if (left && right) return At(x + 1, y + 1).water < At(x - 1, y + 1).water ? -1 : 1;
        double best = 0;
        int result = 0;
        const double scores[3] = {hasLeft ? At(x - 1, y + 1).stickiness * 0.7 : 0,
                                  At(x, y + 1).stickiness * 0.8,
                                  hasRight ? At(x + 1, y + 1).stickiness * 0.7 : 0};
        for (int i = 0; i < 3; ++i) {
            if (scores[i] > best) {
                best = scores[i];
                result = i - 1;
            }
        }
        return result;
    }

    int w_, h_, rate_, gw_, gh_;
    std::vector<Cell> cells_;
    std::vector<std::pair<int, int>> jitter_;
    std::list<Runner> runners_;
};

TEST(RainDrops, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Rain Drops");
    ExpectContract(effect);
}

TEST(RainDrops, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int w, int h) { return Model(w, h, 5); });
}

TEST(RainDrops, StaysEqualOverSixHundredFrames) {
    constexpr int32_t kWidth = 156, kHeight = 120;  // whole cells: domes reach all edges
    EffectDriver effect(kGuid);
    std::srand(31);
    ASSERT_EQ(effect.Configure(kWidth, kHeight), kSuccess);
    ASSERT_EQ(effect.Set("rainrate", "99"), kSuccess);
    EXPECT_EQ(effect.Get("RainRate"), "10");
    std::vector<uint64_t> checksums;
    for (int i = 0; i < 600; ++i) {
        TestFrame frame = StreamPicture(kWidth, kHeight, i % 16);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        checksums.push_back(frame.Checksum());
    }
    const int next = std::rand();
    std::srand(31);
    Model model(kWidth, kHeight, 10);
    size_t runners = 0;
    double water = 0;
    for (int i = 0; i < 600; ++i) {
        TestFrame expected = StreamPicture(kWidth, kHeight, i % 16);
        model(expected);
        ASSERT_EQ(checksums[static_cast<size_t>(i)], expected.Checksum()) << i;
        runners = std::max(runners, model.runners());
        water = std::max(water, model.mostWater());
    }
    EXPECT_EQ(next, std::rand());
    EXPECT_GT(runners, 3U);  // it did rain
    EXPECT_GT(water, 6.0);
}

TEST(RainDrops, StartsDry) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(120, 96), kSuccess);
    TestFrame frame = TestFrame(120, 96).Randomize(1);
    const TestFrame before = frame;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    for (size_t y = 1; y < 95; ++y) {
        for (size_t x = 1; x < 119; ++x) ASSERT_EQ(frame.plane(0)[y * 120 + x], before.plane(0)[y * 120 + x]);
    }
    EXPECT_EQ(frame.plane(0)[0], frame.plane(0)[121]);
    EXPECT_EQ(frame.plane(0)[119 + 120], before.plane(0)[119 + 120]);
}

TEST(RainDrops, ConfigureDrawsForPackedStreamsToo) {
    EffectDriver effect(kGuid);
    int next[2] = {};
    for (const int32_t format : {kFormatPlanar, kFormatPacked}) {
        std::srand(17);
        ASSERT_EQ(effect.Configure(48, 36, format), kSuccess);
        next[format / 2] = std::rand();
    }
    EXPECT_EQ(next[0], next[1]);
    std::srand(17);
    for (int i = 0; i < 3 * 4 * 3; ++i) std::rand();
    EXPECT_EQ(next[0], std::rand());
}

TEST(RainDrops, DomesGrowWithTheWaterUpToSixteen) {
    for (const auto& [water, radius] : {std::pair{0.0, 0},
                                        {0.04, 0},
                                        {0.05, 1},
                                        {1.0, 4},
                                        {1.5, 4},
                                        {64.0, 15},  // the exponent is a little less than a third
                                        {64.1, 16},
                                        {76.7, 16},
                                        {76.8, 0},
                                        {1e9, 0}}) {
        EXPECT_EQ(DomeRadius(water), radius) << water;
    }
}

TEST(RainDrops, ARunnerThatLeavesTheGlassTakesItsWaterAlong) {
    // The only cell is the last row too: it keeps five times its stickiness.
    for (unsigned seed = 1; seed < 20; ++seed) {
        std::srand(seed);
        const double stickiness = std::rand() % 1000 / 1000.0;
        std::srand(seed);
        WaterGrid grid;
        grid.Prepare(1, 1);
        while (grid.water(0, 0) < 10.0) grid.AddRain();
        grid.Run();
        const double kept = 5.0 * stickiness;
        // Heavy as it is, it starts to run again; otherwise it dries.
        EXPECT_EQ(grid.water(0, 0), kept > 1.5 ? kept : kept - kept / 100) << seed;
    }
}

TEST(RainDrops, BetweenEqualsARunnerGoesRightToWaterAndLeftToDryGlass) {
    // A runner in the middle of the upper row of two, above water on either side.
    WaterGrid grid;
    int attempts = 0;
    std::srand(1);
    do {
        ASSERT_LT(++attempts, 5000000);
        grid.Prepare(3, 2);
        for (int i = 0; i < 3; ++i) grid.AddRain();
    } while (!(grid.water(1, 0) > 1.5 && grid.water(0, 1) > 0.5 && grid.water(0, 1) == grid.water(2, 1) &&
               grid.water(0, 1) <= 1.5));
    double left = grid.water(0, 1);
    left -= left / 100;
    grid.Run();
    EXPECT_EQ(grid.water(0, 1), left);
    EXPECT_GT(grid.water(2, 1), left);

    // The same above dry cells, of which the outer two are equally sticky and the middle one less.
    double stickiness[6];
    unsigned seed = 0;
    do {
        ASSERT_LT(++seed, 500000U);
        std::srand(seed);
        for (double& s : stickiness) s = std::rand() % 1000 / 1000.0;
        if (stickiness[3] != stickiness[5] || stickiness[3] * 0.7 <= stickiness[4] * 0.8) continue;
        std::srand(seed);
        grid.Prepare(3, 2);
        grid.AddRain();
        if (grid.water(1, 0) > 1.5) break;
    } while (true);
    grid.Run();
    EXPECT_GT(grid.water(0, 1), 0.0);
    EXPECT_EQ(grid.water(1, 1), 0.0);
    EXPECT_EQ(grid.water(2, 1), 0.0);
}

TEST(RainDrops, AGridWithoutCellsGetsNoRain) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(11, 40), kSuccess);
    for (int i = 0; i < 50; ++i) {
        TestFrame frame(11, 40);
        EXPECT_EQ(effect.Process(frame), kSuccess);
    }
}

TEST(RainDrops, ClampsItsRate) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Get("RainRate"), "5");
    for (const auto& [text, rate] : {std::pair{"0", "1"}, {"11", "10"}, {"7", "7"}}) {
        EXPECT_EQ(effect.Set("RainRate", text), kSuccess);
        EXPECT_EQ(effect.Get("RainRate"), rate);
    }
}

}  // namespace
