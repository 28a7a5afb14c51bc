// Fixed maps: the compiled form against the plain loop.
#include "imaging/IndexGather.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include "tests/imaging/TestPlanes.h"
#include "tests/imaging/models/GeometryModels.h"

namespace {

using Index = std::vector<uint32_t>;

/// Builds and applies the map; expects what the plain loop gives.
void ExpectLikePlain(const Index& index, int32_t width, size_t srcPixels, int32_t pixelBytes = 1) {
    const auto bytes = static_cast<size_t>(pixelBytes);
    const Bytes source = RandomBytes(srcPixels * bytes, 1);
    Bytes fast = RandomBytes(index.size() * bytes, 2), plain = fast;
    GatherMap map;
    map.Build(index, width, srcPixels, pixelBytes);
    map.Apply(source.data(), fast.data());
    model::GatherPixels(source.data(), srcPixels, index.data(), plain.data(), index.size(), bytes);
    ASSERT_EQ(fast, plain) << width << " wide, " << index.size() << " pixels from " << srcPixels;
}

Index MakeIndex(int32_t width, int32_t height, const std::function<int64_t(int32_t, int32_t)>& source) {
    Index index;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) index.push_back(static_cast<uint32_t>(source(x, y)));
    }
    return index;
}

TEST(GatherMap, MatchesThePlainLoopAtAllSmallSizes) {
    TestRandom random(7);
    for (int32_t height = 1; height <= 40; height += 1 + height / 10) {
        for (int32_t width = 1; width <= 40; ++width) {
            const int32_t count = width * height;
            ExpectLikePlain(MakeIndex(width, height, [&](int32_t x, int32_t y) { return y * width + x; }),
                            width, static_cast<size_t>(count));
            ExpectLikePlain(MakeIndex(width, height, [&](int32_t, int32_t) { return random.Below(count); }),
                            width, static_cast<size_t>(count));
            ExpectLikePlain(
                MakeIndex(width, height, [&](int32_t x, int32_t y) { return (x * height + y) % count; }),
                width, static_cast<size_t>(count));
        }
    }
}

TEST(GatherMap, TurnsAndScalesAtManyAngles) {
    constexpr int32_t kWidth = 301, kHeight = 83;
    for (double angle = 0; angle < 6.3; angle += 0.37) {
        for (const double scale : {0.3, 1.0, 2.2}) {
            const double c = scale * std::cos(angle), s = scale * std::sin(angle);
            ExpectLikePlain(MakeIndex(kWidth, kHeight,
                                      [&](int32_t x, int32_t y) -> int64_t {
                                          const auto sx = std::lround((x - 150) * c - (y - 40) * s + 150);
                                          const auto sy = std::lround((x - 150) * s + (y - 40) * c + 40);
                                          const bool inside =
                                              sx >= 0 && sx < kWidth && sy >= 0 && sy < kHeight;
                                          return inside ? sy * kWidth + sx : GatherMap::kKeep;
                                      }),
                            kWidth, kWidth * kHeight);
        }
    }
}

TEST(GatherMap, SourceAndDestinationMayDiffer) {
    for (const size_t source : {size_t{1}, size_t{7}, size_t{8}, size_t{9}, size_t{1000}, size_t{70000}}) {
        TestRandom random(source);
        ExpectLikePlain(MakeIndex(48, 20,
                                  [&](int32_t x, int32_t) {
                                      return (x + random.Below(3)) % static_cast<int64_t>(source);
                                  }),
                        48, source);
    }
}

TEST(GatherMap, KeepsWhatHasNoSource) {
    const Index index = MakeIndex(32, 8, [](int32_t x, int32_t y) -> int64_t {
        if (x < 16 && y < 4) return GatherMap::kKeep;
        return x == 20 ? 256 : y * 32 + x;  // 256 is one past the source
    });
    ExpectLikePlain(index, 32, 256);
    const Bytes source(256, 9);
    Bytes target(256, 5);
    GatherMap map;
    map.Build(index, 32, 256);
    map.Apply(source.data(), target.data());
    EXPECT_EQ(target[0], 5);
    EXPECT_EQ(target[20], 5);
    EXPECT_EQ(target[21], 9);
}

TEST(GatherMap, PackedPixels) {
    TestRandom random(3);
    ExpectLikePlain(MakeIndex(37, 11,
                              [&](int32_t, int32_t) -> int64_t {
                                  return random.Below(9) == 0 ? 407 : random.Below(407);
                              }),
                    37, 407, 3);
}

TEST(GatherMap, RowsThatDoNotDivideTheMap) {
    ExpectLikePlain(Index(101, 3), 20, 101);
}

TEST(GatherMap, EmptyMapsDoNothing) {
    GatherMap map;
    EXPECT_TRUE(map.Empty());
    map.Apply(nullptr, nullptr);
    map.Build({}, 16, 0);
    EXPECT_TRUE(map.Empty());
    map.Build(Index(64, 0), 0, 64);
    EXPECT_TRUE(map.Empty());
    map.Build(Index(64, 0), 16, 0);  // no pixel has a source
    EXPECT_TRUE(map.Empty());
    map.Build(Index(64, 0), 16, 64);
    EXPECT_FALSE(map.Empty());
    map.Release();
    EXPECT_TRUE(map.Empty());
    map.Apply(nullptr, nullptr);
}

TEST(GatherMap, BuildingAnewReplacesTheMap) {
    const Bytes source = RandomBytes(64, 1);
    Bytes target(64);
    GatherMap map;
    map.Build(Index(4096, 0), 64, 64);
    Index backwards(64);
    for (uint32_t i = 0; i < 64; ++i) backwards[i] = 63 - i;
    map.Build(backwards, 16, 64);
    const GatherMap copy = map;
    copy.Apply(source.data(), target.data());
    EXPECT_TRUE(std::equal(target.begin(), target.end(), source.rbegin()));
}

}  // namespace
