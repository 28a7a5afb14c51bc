// Radial maps against the formulas that they replace.
#include "effects/distortion/RadialMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "imaging/Cpu.h"
#include "tests/support/LevelLimit.h"

namespace {

/// How a turn depends on the distance as a fraction of the radius.
struct Shape {
    const char* name;
    std::function<RadialTurn(double)> turn;
};

const Shape kShapes[] = {
    {"spiral",
     [](double r) {
         return RadialTurn{std::cos(4 - 4 * r), std::sin(4 - 4 * r)};
     }},
    {"pole in the centre",
     [](double r) {
         return RadialTurn{std::pow(std::sin(1.57 * r), -0.3), 0};
     }},
    {"steep rim",
     [](double r) {
         return RadialTurn{std::acos(r), std::sqrt(1 - r * r)};
     }},
};

struct Size {
    int32_t width, height;
};

class RadialMap : public testing::TestWithParam<cpu::Level> {};

template <class Number>
void ExpectTheFormula(const Shape& shape, Size size, double centerX, double centerY, double radius) {
    const int32_t width = size.width, height = size.height;
    const auto exact = [&](int32_t x, int32_t y) -> SourcePoint<Number> {
        const double dx = x - centerX, dy = y - centerY;
        const double r = std::sqrt(dx * dx + dy * dy) / radius;
        if (r == 0) return {};
        const RadialTurn turn = shape.turn(std::min(r, 1.0));
        return {static_cast<Number>(dx * turn.along - dy * turn.across + centerX),
                static_cast<Number>(dy * turn.along + dx * turn.across + centerY)};
    };
    std::vector<int> visits(static_cast<size_t>(width) * static_cast<size_t>(height));
    const RadialFunction function(radius, [&](double d) { return shape.turn(d / radius); });
    MapRadially<Number>(
        {width, height, centerX, centerY, centerX, centerY}, function, exact,
        [&](int32_t y, int32_t x, std::span<const SourcePoint<Number>> sources) {
            for (const SourcePoint<Number>& source : sources) {
                ASSERT_TRUE(x >= 0 && x < width && y >= 0 && y < height);
                ++visits[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
                if (x != centerX || y != centerY) {
                    const SourcePoint<Number> wanted = exact(x, y);
                    ASSERT_TRUE(source.x == wanted.x && source.y == wanted.y)
                        << shape.name << ", " << width << "x" << height << " at " << x << "," << y;
                }
                ++x;
            }
        });
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const int count =
                visits[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
            const bool inside = std::hypot(x - centerX, y - centerY) <= radius;
            ASSERT_TRUE(count == 1 || (!inside && count == 0))
                << width << "x" << height << ": " << count << " visits of " << x << "," << y;
        }
    }
}

void ExpectTheFormula(Size size) {
    for (const Shape& shape : kShapes) {
        const double wholeX = size.width / 2, wholeY = size.height / 2;
        const double halfX = size.width * 0.5, halfY = size.height * 0.5;
        ExpectTheFormula<int32_t>(shape, size, wholeX, wholeY, wholeY + 1);
        ExpectTheFormula<int32_t>(shape, size, wholeX, wholeY, std::hypot(wholeX, wholeY) + 0.5);
        ExpectTheFormula<float>(shape, size, halfX, halfY, std::max(halfX, halfY));
        ExpectTheFormula<float>(shape, size, halfX, halfY, std::min(halfX, halfY));
    }
}

TEST_P(RadialMap, EqualsTheFormulaAtSmallSizes) {
    const LevelLimit limit(GetParam());
    for (int32_t height = 1; height <= 9; ++height) {
        for (int32_t width = 1; width <= 9; ++width) ExpectTheFormula({width, height});
    }
    ExpectTheFormula({3, 40});
    ExpectTheFormula({40, 2});
}

TEST_P(RadialMap, EqualsTheFormulaAtLargeSizes) {
    const LevelLimit limit(GetParam());
    ExpectTheFormula({641, 363});
    if (!SE_SANITIZED && GetParam() == cpu::Levels().back()) ExpectTheFormula({1280, 720});
}

INSTANTIATE_TEST_SUITE_P(Levels, RadialMap, testing::ValuesIn(cpu::Levels().begin(), cpu::Levels().end()),
                         [](const auto& level) { return std::string(cpu::Name(level.param)); });

/// Wrong polynomials would leave all pixels to the formula, which is right but slow.
TEST(RadialFunction, SmoothTurnsHaveSmallErrors) {
    constexpr double kRadius = 300;
    const std::function<RadialTurn(double)>& turn = kShapes[0].turn;
    const RadialFunction function(kRadius, [&](double d) { return turn(d / kRadius); });
    RadialFunction::Row row(299);
    function.Evaluate(0.5, 0.25, row.along.size(), row);
    for (size_t i = 0; i < row.along.size(); ++i) {
        const RadialTurn wanted = turn(std::hypot(static_cast<double>(i) + 0.5, 0.25) / kRadius);
        ASSERT_LT(row.error[i], 1e-10) << i;
        ASSERT_LE(std::abs(row.along[i] - wanted.along), row.error[i]) << i;
        ASSERT_LE(std::abs(row.across[i] - wanted.across), row.error[i]) << i;
    }
}

TEST(RadialMap, OfNoSizeHasNoRows) {
    const auto count = [](double end, Size size) {
        int rows = 0;
        MapRadially<int32_t>(
            {size.width, size.height, 0, 0, 0, 0},
            RadialFunction(end,
                           [](double) {
                               return RadialTurn{1, 0};
                           }),
            [](int32_t, int32_t) { return SourcePoint<int32_t>{}; },
            [&](int32_t, int32_t, std::span<const SourcePoint<int32_t>>) { ++rows; });
        return rows;
    };
    EXPECT_EQ(count(0, {4, 4}), 0);
    EXPECT_EQ(count(-1, {4, 4}), 0);
    EXPECT_EQ(count(std::nan(""), {4, 4}), 0);
    EXPECT_EQ(count(5, {0, 4}), 0);
    EXPECT_EQ(count(5, {4, 0}), 0);
    EXPECT_EQ(count(5, {4, 4}), 4);
}

}  // namespace
