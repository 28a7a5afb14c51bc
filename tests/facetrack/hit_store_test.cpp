// Clusters of hits: each hit goes where the walk over all members would put it, and fast.
#include "facetrack/HitStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/TestFrame.h"

namespace {

constexpr float kRadius = 5.0F, kRatio = 1.3F;

/// The definition: rows in order, and in each row its members in order; the first that fits takes the hit.
class PlainStore {
  public:
    explicit PlainStore(float radius = kRadius, float ratio = kRatio) : radius_(radius), ratio_(ratio) {}

    size_t Add(const Hit& hit) {
        size_t r = 0;
        while (r < rows_.size() &&
               std::none_of(rows_[r].begin(), rows_[r].end(), [&](const Hit& m) { return Fits(m, hit); })) {
            ++r;
        }
        if (r == rows_.size()) rows_.emplace_back();
        rows_[r].push_back(hit);
        return r;
    }

  private:
    bool Fits(const Hit& m, const Hit& hit) const {
        const double dx = hit.x - m.x, dy = hit.y - m.y;
        return dx * dx + dy * dy <= double{radius_} * radius_ &&
               static_cast<float>(m.size) * ratio_ >= static_cast<float>(hit.size);
    }

    float radius_, ratio_;
    std::vector<std::vector<Hit>> rows_;
};

struct Scene {
    std::string name;
    std::vector<Hit> hits;
};

/// The hits of a cascade that accepts the windows for which `accepts(x, y, pass)` holds, at scales that grow
/// by 1.12 from `first` on.
template <class Accepts>
std::vector<Hit> Passes(int width, int height, float first, int window, int passes, Accepts accepts) {
    std::vector<Hit> hits;
    float scale = first;
    for (int pass = 0; pass < passes; ++pass, scale *= 1.12F) {
        const auto size = static_cast<int32_t>(static_cast<float>(window) * scale);
        const auto frame = [&](int i) {
            return static_cast<int32_t>(static_cast<float>(window / 2 + i) * scale);
        };
        for (int y = 0; static_cast<float>(y) < static_cast<float>(height) / scale; ++y) {
            for (int x = 0; static_cast<float>(x) < static_cast<float>(width) / scale; ++x) {
                if (accepts(x, y, pass)) hits.push_back({frame(x), frame(y), size});
            }
        }
    }
    return hits;
}

std::vector<Scene> Scenes(int side) {
    TestRandom random(4);
    std::vector<Scene> scenes;
    const auto all = [](int, int, int) { return true; };
    const auto some = [&](int one) {
        return [&random, one](int, int, int) { return random.Below(one) == 0; };
    };
    scenes.push_back({"all windows, enlarged", Passes(side, side, 0.4F, 30, 8, all)});
    scenes.push_back({"all windows, one for one", Passes(side, side, 1.0F, 30, 8, all)});
    scenes.push_back({"all windows, apart", Passes(4 * side, 4 * side, 5.5F, 20, 8, all)});
    scenes.push_back({"some windows, enlarged", Passes(side, side, 0.4F, 30, 8, some(5))});
    scenes.push_back({"some windows", Passes(2 * side, 2 * side, 1.5F, 24, 8, some(9))});
    // The smaller sizes stay too small for the later ones, and come first in every square.
    scenes.push_back({"a gap between the sizes", Passes(side, side, 0.7F, 30, 8, [](int, int, int pass) {
                          return pass < 2 || pass > 5;
                      })});
    scenes.push_back(
        {"columns", Passes(side, side, 0.5F, 30, 8, [](int x, int, int) { return x % 13 == 0; })});

    Scene place{"one place", {}}, growing{"one place, growing", {}}, shrinking{"one place, shrinking", {}};
    for (int i = 0; i < side * side; ++i) {
        place.hits.push_back({100, 100, 50});
        growing.hits.push_back({100, 100, 1 + i});
        shrinking.hits.push_back({100 + i % 3, 100, side * side - i});
    }
    scenes.insert(scenes.end(), {place, growing, shrinking});

    // Random places, on both sides of the origin too; and hits further apart than the radius, with later ones
    // between them, which fit two rows.
    Scene chance{"chance", {}}, negative{"around the origin", {}}, bridges{"bridges", {}};
    for (int i = 0; i < 2 * side * side; ++i) {
        chance.hits.push_back({random.Below(side), random.Below(side), 20 + random.Below(60)});
        negative.hits.push_back({random.Below(60) - 30, random.Below(60) - 30, 20 + random.Below(30)});
        bridges.hits.push_back({(i * 6) % (2 * side) + i / (2 * side) % 6, i / side * 3 % side, 40 + i % 30});
    }
    scenes.insert(scenes.end(), {chance, negative, bridges});
    return scenes;
}

TEST(HitStore, GivesEachHitToTheRowOfTheFirstMemberNearIt) {
    for (const auto& [name, hits] : Scenes(28)) {
        SCOPED_TRACE(name);
        CHitStore store(kRadius, kRatio);
        for (int life = 0; life < 2; ++life) {
            PlainStore plain;
            std::vector<CHitStore::Row> sums;
            for (const Hit& hit : hits) {
                const size_t row = plain.Add(hit);
                ASSERT_EQ(store.Add(hit), row) << hit.x << ", " << hit.y << ", " << hit.size;
                sums.resize(std::max(sums.size(), row + 1));
                sums[row] = {sums[row].x + hit.x, sums[row].y + hit.y, sums[row].size + hit.size,
                             sums[row].count + 1};
            }
            ASSERT_EQ(store.Rows().size(), sums.size());
            for (size_t i = 0; i < sums.size(); ++i) {
                EXPECT_EQ(store.Rows()[i].x, sums[i].x);
                EXPECT_EQ(store.Rows()[i].y, sums[i].y);
                EXPECT_EQ(store.Rows()[i].size, sums[i].size);
                EXPECT_EQ(store.Rows()[i].count, sums[i].count);
            }
            store.Clear();
            EXPECT_TRUE(store.Rows().empty());
        }
    }
}

TEST(HitStore, HoldsForOtherRadiiAndRatios) {
    TestRandom random(8);
    for (const float radius : {0.0F, 0.5F, 1.0F, 2.5F, 7.1F}) {
        for (const float ratio : {0.0F, 0.9F, 1.0F, 2.0F}) {
            CHitStore store(radius, ratio);
            PlainStore plain(radius, ratio);
            for (int i = 0; i < 2000; ++i) {
                const Hit hit{random.Below(50) - 9, random.Below(50) - 9, random.Below(40)};
                ASSERT_EQ(store.Add(hit), plain.Add(hit)) << radius << ", " << ratio;
            }
        }
    }
    CHitStore store(1.0F, kRatio);
    for (const int32_t x : {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1}) {
        EXPECT_EQ(store.Add({x, x, 5}), x < 0 ? (x == INT32_MIN ? 0U : 1U) : (x == INT32_MAX ? 2U : 3U));
    }
}

TEST(HitStore, LooksAtFewMembersForEachHit) {
    // Four times the hits on four times the area, or all in one place.
    for (const int side : {50, 100, 200}) {
        for (const auto& [name, hits] : Scenes(side)) {
            CHitStore store(kRadius, kRatio);
            for (const Hit& hit : hits) store.Add(hit);
            EXPECT_LT(store.Looks(), 80 * hits.size()) << name << ", " << hits.size() << " hits";
        }
    }
}

}  // namespace
