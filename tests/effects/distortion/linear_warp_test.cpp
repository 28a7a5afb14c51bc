#include "effects/distortion/LinearWarp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "imaging/Prim.h"
#include "tests/support/TestFrame.h"

namespace {

/// Coordinates of all kinds: whole, between, just below and just above whole ones, outside, not a number.
float WildCoordinate(TestRandom& random, int32_t size, int32_t own) {
    const auto whole = static_cast<float>(random.Below(size + 2) - 1);
    switch (random.Below(9)) {
        case 0:
            return whole;
        case 1:
            return whole + 1e-7F;
        case 2:
            return std::nextafter(whole, -1.0F);
        case 3:
            return std::nextafter(whole, 1e9F);
        case 4:
            return random.Below(10) == 0 ? std::nanf("") : -0.0F;
        case 5:
            return static_cast<float>(own);
        case 6:
            return whole + 0.5F;
        default:
            return whole + static_cast<float>(random.Below(1 << 24)) / static_cast<float>(1 << 24);
    }
}

TEST(LinearWarp, EqualsThePrimitive) {
    for (const auto& [w, h] : {std::pair{2, 2}, {2, 5}, {5, 2}, {31, 17}, {64, 48}, {333, 5}}) {
        for (uint64_t seed = 0; seed < 20; ++seed) {
            TestRandom random(seed);
            const auto count = static_cast<size_t>(w * h);
            std::vector<float> x(count), y(count);
            for (size_t i = 0; i < count; ++i) {
                const auto at = static_cast<int32_t>(i);
                x[i] = WildCoordinate(random, w, at % w);
                y[i] = WildCoordinate(random, h, at / w);
                if (seed % 3 == 1 && random.Below(8) != 0) {  // mostly at rest
                    x[i] = static_cast<float>(at % w);
                    y[i] = static_cast<float>(at / w);
                }
            }
            const TestFrame source = TestFrame(w, h).Randomize(seed + 1);
            TestFrame expected = source, result = source;
            PrimRemap8uC1(source.plane(0).data(), w, h, w, 0, 0, w, h, x.data(), 4 * w, y.data(), 4 * w,
                          expected.y(), w, w, h, kPrimLinear);
            LinearWarp({x.data(), y.data(), w, h}).Apply(source.plane(0).data(), result.y());
            ASSERT_EQ(FirstDifference(result, expected), "") << w << " by " << h << ", seed " << seed;
            ASSERT_TRUE(result.GuardsIntact());
        }
    }
}

/// Mixtures as close to whole numbers as coordinates allow, on either side: single precision cannot
/// distinguish them. One in each row, so that no neighbour reveals it.
TEST(LinearWarp, EqualsThePrimitiveNextToWholeNumbers) {
    constexpr int32_t w = 64, h = 2048;
    for (uint64_t seed = 0; seed < 20; ++seed) {
        TestRandom random(seed);
        const TestFrame source = TestFrame(w, h).Randomize(seed + 1);
        const uint8_t* const upper = source.plane(0).data();
        const uint8_t* const lower = upper + w;
        std::vector<float> x, y;
        for (int32_t i = 0; i < w * h; ++i) {
            x.push_back(static_cast<float>(i % w));
            y.push_back(static_cast<float>(i / w));
            if (i % w != w / 2) continue;
            const int32_t left = random.Below(w - 1);
            x.back() = static_cast<float>(left) + static_cast<float>(random.Below(1 << 24)) * 0x1p-24F;
            const double fx = double{x.back()} - left;
            const double top = upper[left] + (upper[left + 1] - upper[left]) * fx;
            const double bottom = lower[left] + (lower[left + 1] - lower[left]) * fx;
            const double fy = (std::round((top + bottom) / 2) + 0.5 - top) / (bottom - top);
            y.back() = fy > 0 && fy < 1 ? static_cast<float>(fy) : 0.5F;
        }
        TestFrame expected = source, result = source;
        PrimRemap8uC1(upper, w, h, w, 0, 0, w, h, x.data(), 4 * w, y.data(), 4 * w, expected.y(), w, w, h,
                      kPrimLinear);
        LinearWarp({x.data(), y.data(), w, h}).Apply(upper, result.y());
        ASSERT_EQ(FirstDifference(result, expected), "") << "seed " << seed;
    }
}

}  // namespace
