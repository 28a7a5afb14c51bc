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
            CLinearWarp({x.data(), y.data(), w, h}).Apply(source.plane(0).data(), result.y());
            ASSERT_EQ(FirstDifference(result, expected), "") << w << " by " << h << ", seed " << seed;
            ASSERT_TRUE(result.GuardsIntact());
        }
    }
}

/// Mixtures as close to whole numbers as coordinates allow, on either side: single precision cannot tell them
/// apart.
TEST(LinearWarp, EqualsThePrimitiveNextToWholeNumbers) {
    constexpr int32_t w = 256, h = 64;
    for (uint64_t seed = 0; seed < 10; ++seed) {
        TestRandom random(seed);
        const TestFrame source = TestFrame(w, h).Randomize(seed + 1);
        std::vector<float> x, y;
        for (int32_t i = 0; i < w * h; ++i) {
            const int32_t left = random.Below(w - 1);
            const auto at = [&](int32_t row, int32_t column) {
                return double{1} * source.plane(0)[static_cast<size_t>(row * w + column)];
            };
            const float sx = static_cast<float>(left) + static_cast<float>(random.Below(1 << 16)) * 0x1p-16F;
            const double fx = double{sx} - left;
            const double top = at(0, left) + (at(0, left + 1) - at(0, left)) * fx;
            const double bottom = at(1, left) + (at(1, left + 1) - at(1, left)) * fx;
            const double fy = (std::round((top + bottom) / 2) + 0.5 - top) / (bottom - top);
            x.push_back(sx);
            y.push_back(fy > 0 && fy < 1 ? static_cast<float>(fy) : 0.5F);
        }
        TestFrame expected = source, result = source;
        PrimRemap8uC1(source.plane(0).data(), w, h, w, 0, 0, w, h, x.data(), 4 * w, y.data(), 4 * w,
                      expected.y(), w, w, h, kPrimLinear);
        CLinearWarp({x.data(), y.data(), w, h}).Apply(source.plane(0).data(), result.y());
        ASSERT_EQ(FirstDifference(result, expected), "") << "seed " << seed;
    }
}

}  // namespace
