// Gradient noise against a plain transcription of its definition.
#include "imaging/GradientNoise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

#include "imaging/Cpu.h"
#include "tests/support/LevelLimit.h"

namespace {

struct NoiseModel {
    int p[514];
    double g2[514][2], g3[514][3];

    NoiseModel() {
        const auto draw = [] { return (std::rand() % 512 - 256) / 256.0; };
        for (int i = 0; i < 256; ++i) {
            p[i] = i;
            draw();  // for noise along a line, which nothing uses
            for (double& c : g2[i]) c = draw();
            const double length2 = std::sqrt(g2[i][0] * g2[i][0] + g2[i][1] * g2[i][1]);
            for (double& c : g2[i]) c = length2 == 0 ? 0 : c / length2;
            for (double& c : g3[i]) c = draw();
            const double length3 = std::sqrt(g3[i][0] * g3[i][0] + g3[i][1] * g3[i][1] + g3[i][2] * g3[i][2]);
            for (double& c : g3[i]) c = length3 == 0 ? 0 : c / length3;
        }
        for (int i = 255; i >= 1; --i) std::swap(p[i], p[std::rand() % 256]);
        for (int i = 0; i <= 257; ++i) {
            p[256 + i] = p[i];
            for (int c = 0; c < 2; ++c) g2[256 + i][c] = g2[i][c];
            for (int c = 0; c < 3; ++c) g3[256 + i][c] = g3[i][c];
        }
    }

    static double s(double t) { return t * t * (3 - 2 * t); }

    double Noise2(double x, double y) const {
        const double tx = x + 4096.0, ty = y + 4096.0;
        const auto ix = static_cast<int64_t>(tx), iy = static_cast<int64_t>(ty);
        const auto bx0 = static_cast<int>(ix & 255), by0 = static_cast<int>(iy & 255);
        const int bx1 = (bx0 + 1) & 255, by1 = (by0 + 1) & 255;
        const double rx0 = tx - static_cast<double>(ix), rx1 = rx0 - 1.0;
        const double ry0 = ty - static_cast<double>(iy), ry1 = ry0 - 1.0;
        const int i = p[bx0], j = p[bx1];
        const int b00 = p[i + by0], b10 = p[j + by0], b01 = p[i + by1], b11 = p[j + by1];
        const double sx = s(rx0), sy = s(ry0);
        double u = rx0 * g2[b00][0] + ry0 * g2[b00][1];
        double v = rx1 * g2[b10][0] + ry0 * g2[b10][1];
        const double a = u + sx * (v - u);
        u = rx0 * g2[b01][0] + ry1 * g2[b01][1];
        v = rx1 * g2[b11][0] + ry1 * g2[b11][1];
        const double b = u + sx * (v - u);
        return a + sy * (b - a);
    }

    double Noise3(double x, double y, double z) const {
        const double t[3] = {x + 4096.0, y + 4096.0, z + 4096.0};
        int lattice[3][2];
        double r[3][2];
        for (int k = 0; k < 3; ++k) {
            const auto whole = static_cast<int64_t>(t[k]);
            lattice[k][0] = static_cast<int>(whole & 255);
            lattice[k][1] = (lattice[k][0] + 1) & 255;
            r[k][0] = t[k] - static_cast<double>(whole);
            r[k][1] = r[k][0] - 1.0;
        }
        const auto dot = [&](int i, int j, int k) {
            const double* g = g3[p[p[p[lattice[0][i]] + lattice[1][j]] + lattice[2][k]]];
            return r[0][i] * g[0] + r[1][j] * g[1] + r[2][k] * g[2];
        };
        const auto mix = [](double w, double a, double b) { return a + w * (b - a); };
        double alongY[2];
        for (int k = 0; k < 2; ++k) {
            alongY[k] = mix(s(r[1][0]), mix(s(r[0][0]), dot(0, 0, k), dot(1, 0, k)),
                            mix(s(r[0][0]), dot(0, 1, k), dot(1, 1, k)));
        }
        return mix(s(r[2][0]), alongY[0], alongY[1]);
    }
};

TEST(GradientNoise, MatchesItsDefinition) {
    std::srand(1234);
    const NoiseModel model;
    const int next = std::rand();
    std::srand(1234);
    const GradientNoise noise(std::rand);
    EXPECT_EQ(std::rand(), next) << "as many draws as the model's";
    for (double y = -300; y < 300; y += 7.13) {
        for (double x = -5000; x < 5000; x += 31.7) ASSERT_EQ(noise.Noise2(x, y), model.Noise2(x, y));
    }
    for (double z = -3; z < 300; z += 41.9) {
        for (double y = -300; y < 300; y += 17.13) {
            for (double x = -300; x < 300; x += 13.7) ASSERT_EQ(noise.Noise3(x, y, z), model.Noise3(x, y, z));
        }
    }
    double expected = 0.0, scale = 1.0, x = 0.3, y = 1.7, z = -2.1;
    for (int i = 0; i < 5; ++i) {
        expected += model.Noise3(x, y, z) / scale;
        scale *= 1.9;
        x *= 2.1;
        y *= 2.1;
        z *= 2.1;
    }
    EXPECT_EQ(noise.Turbulence(0.3, 1.7, -2.1, 1.9, 2.1, 5), expected);
}

const GradientNoise noise(std::rand);

TEST(GradientNoise, ARowEqualsItsPointsAtEveryLevel) {
    constexpr size_t kCounts[] = {0, 1, 2, 63, 64, 65, 200};
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kOdd[] = {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN(), 1e300,
                               -9.3e18};
    for (const cpu::Level level : cpu::Levels()) {
        const LevelLimit limit(level);
        for (const size_t count : kCounts) {
            for (const double pitch : {1 / 64.0, 0.37, -1.0, 5.25}) {
                for (const int32_t octaves : {0, 1, 7}) {
                    std::vector<double> row(count);
                    for (size_t i = 0; i < count; ++i) row[i] = 3.1 + pitch * static_cast<double>(i);
                    if (count > 70) std::ranges::copy(kOdd, row.begin() + 60);
                    const std::vector<double> x = row;
                    noise.Turbulence(row, 2.7, -1.3, 1.9, 2.1, octaves);
                    for (size_t i = 0; i < count; ++i) {
                        EXPECT_EQ(row[i], noise.Turbulence(x[i], 2.7, -1.3, 1.9, 2.1, octaves))
                            << cpu::Name(level) << ", point " << i << " of " << count;
                    }
                }
            }
        }
    }
}

TEST(GradientNoise, NoOctaveIsSilence) {
    EXPECT_EQ(noise.Turbulence(1.5, 2.5, 3.5, 2.0, 2.0, 0), 0.0);
    EXPECT_EQ(noise.Turbulence(1.5, 2.5, 3.5, 2.0, 2.0, -5), 0.0);
}

TEST(GradientNoise, IsZeroOnTheLattice) {
    for (int y = -20; y < 20; ++y) {
        for (int x = -20; x < 20; ++x) {
            EXPECT_EQ(noise.Noise2(x, y), 0.0);
            EXPECT_EQ(noise.Noise3(x, y, x - y), 0.0);
        }
    }
}

TEST(GradientNoise, RepeatsEvery256Units) {
    for (double t = 0.125; t < 40; t += 1.125) {
        EXPECT_EQ(noise.Noise2(t, 2 * t), noise.Noise2(t + 256, 2 * t - 256));
        EXPECT_EQ(noise.Noise3(t, 2 * t, -t), noise.Noise3(t + 256, 2 * t, -t + 512));
    }
}

TEST(GradientNoise, SurvivesSenselessCoordinates) {
    const double inf = std::numeric_limits<double>::infinity();
    for (const double x : {inf, -inf, std::nan(""), 1e300, -1e300, 9.3e18, -9.3e18, 1e17}) {
        EXPECT_TRUE(std::isfinite(noise.Noise2(x, 0.5)));
        EXPECT_TRUE(std::isfinite(noise.Noise3(0.5, x, x)));
        EXPECT_TRUE(std::isfinite(noise.Turbulence(x, x, x, 2, 2, 3)));
    }
}

}  // namespace
