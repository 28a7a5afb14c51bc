#include "imaging/GradientNoise.h"

#include <cmath>
#include <utility>

namespace {

constexpr double kOffset = 4096.0;  // keeps coordinates positive, so that truncation equals floor

double DrawComponent(int32_t (*rand)()) {
    return (rand() % 512 - 256) / 256.0;
}

/// A unit vector; the zero vector if the draw has no direction.
template <size_t n>
void DrawUnitVector(std::array<double, n>& vector, int32_t (*rand)()) {
    double squares = 0.0;
    for (double& component : vector) {
        component = DrawComponent(rand);
        squares += component * component;
    }
    const double length = std::sqrt(squares);
    if (length > 0.0) {
        for (double& component : vector) component /= length;
    }
}

/// The position of a coordinate in the lattice: the two lines around it and the distances from them.
struct LatticeSpan {
    size_t line0, line1;
    double distance0, distance1;

    explicit LatticeSpan(double coordinate) {
        constexpr double kLimit = 4611686018427387904.0;  // 2^62
        const double shifted = coordinate + kOffset;
        const double t = std::fabs(shifted) < kLimit ? shifted : kOffset;
        const int64_t whole = static_cast<int64_t>(t);
        line0 = static_cast<size_t>(whole & 255);
        line1 = (line0 + 1) & 255;
        distance0 = t - static_cast<double>(whole);
        distance1 = distance0 - 1.0;
    }

    /// Weight of line 1: a curve from 0 to 1 that is flat at both ends.
    double Weight() const { return distance0 * distance0 * (3.0 - 2.0 * distance0); }
};

double Mix(double weight, double a, double b) {
    return a + weight * (b - a);
}

}  // namespace

GradientNoise::GradientNoise(int32_t (*rand)()) {
    for (size_t i = 0; i < kPeriod; ++i) {
        p[i] = static_cast<int32_t>(i);
        DrawComponent(rand);  // gradient of the unused one-dimensional field; only the draw matters
        DrawUnitVector(g2[i], rand);
        DrawUnitVector(g3[i], rand);
    }
    for (size_t i = kPeriod - 1; i > 0; --i) std::swap(p[i], p[static_cast<size_t>(rand()) % kPeriod]);
    for (size_t i = 0; i < kPeriod + 2; ++i) {
        p[kPeriod + i] = p[i];
        g2[kPeriod + i] = g2[i];
        g3[kPeriod + i] = g3[i];
    }
}

double GradientNoise::Noise2(double x, double y) const {
    const LatticeSpan sx(x), sy(y);
    const auto entry = [&](size_t lineX, size_t lineY) -> const std::array<double, 2>& {
        const auto column = static_cast<size_t>(p[lineX]);
        return g2[static_cast<size_t>(p[column + lineY])];
    };
    const auto dot = [](const std::array<double, 2>& g, double dx, double dy) {
        return dx * g[0] + dy * g[1];
    };
    const auto alongX = [&](size_t lineY, double dy) {
        const double u = dot(entry(sx.line0, lineY), sx.distance0, dy);
        const double v = dot(entry(sx.line1, lineY), sx.distance1, dy);
        return Mix(sx.Weight(), u, v);
    };
    return Mix(sy.Weight(), alongX(sy.line0, sy.distance0), alongX(sy.line1, sy.distance1));
}

double GradientNoise::Noise3(double x, double y, double z) const {
    const LatticeSpan sx(x), sy(y), sz(z);
    const auto entry = [&](size_t lineX, size_t lineY, size_t lineZ) -> const std::array<double, 3>& {
        const auto column = static_cast<size_t>(p[lineX]);
        const auto cell = static_cast<size_t>(p[column + lineY]);
        return g3[static_cast<size_t>(p[cell + lineZ])];
    };
    const auto dot = [](const std::array<double, 3>& g, double dx, double dy, double dz) {
        return dx * g[0] + dy * g[1] + dz * g[2];
    };
    const auto alongX = [&](size_t lineY, double dy, size_t lineZ, double dz) {
        const double u = dot(entry(sx.line0, lineY, lineZ), sx.distance0, dy, dz);
        const double v = dot(entry(sx.line1, lineY, lineZ), sx.distance1, dy, dz);
        return Mix(sx.Weight(), u, v);
    };
    const auto alongY = [&](size_t lineZ, double dz) {
        return Mix(sy.Weight(), alongX(sy.line0, sy.distance0, lineZ, dz),
                   alongX(sy.line1, sy.distance1, lineZ, dz));
    };
    return Mix(sz.Weight(), alongY(sz.line0, sz.distance0), alongY(sz.line1, sz.distance1));
}

double GradientNoise::Turbulence(double x, double y, double z, double alpha, double beta,
                                 int32_t octaves) const {
    double sum = 0.0;
    double scale = 1.0;
    for (int32_t i = 0; i < octaves; ++i) {
        sum += Noise3(x, y, z) / scale;
        scale *= alpha;
        x *= beta;
        y *= beta;
        z *= beta;
    }
    return sum;
}
