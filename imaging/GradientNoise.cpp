#include "imaging/GradientNoise.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "imaging/PerLevel.h"

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

    SE_INLINE explicit LatticeSpan(double coordinate) {
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
    SE_INLINE double Weight() const { return distance0 * distance0 * (3.0 - 2.0 * distance0); }
};

SE_INLINE double Mix(double weight, double a, double b) {
    return a + weight * (b - a);
}

/// The tables of a field in space.
struct Field {
    const int32_t* p;
    const std::array<double, 3>* gradients;
};

using Pair = double __attribute__((vector_size(16)));

/// The gradients where a lattice line across a row meets those along it at one y and both z: their x, and the
/// products of the rest with the row's distances.
struct Crossing {
    Pair x, y, z;

    SE_INLINE Crossing(const Field& field, size_t line, size_t lineY, double distanceY,
                       const LatticeSpan& sz) {
        const size_t cell = static_cast<size_t>(field.p[static_cast<size_t>(field.p[line]) + lineY]);
        const auto& g0 = field.gradients[static_cast<size_t>(field.p[cell + sz.line0])];
        const auto& g1 = field.gradients[static_cast<size_t>(field.p[cell + sz.line1])];
        x = Pair{g0[0], g1[0]};
        y = Pair{g0[1], g1[1]} * distanceY;
        z = Pair{g0[2], g1[2]} * Pair{sz.distance0, sz.distance1};
    }
};

/// Adds the noise at each x of a row, divided by `scale`, to its sum.
SE_INLINE void AddNoises(Field field, const double* SE_RESTRICT x, size_t count, LatticeSpan sy,
                         LatticeSpan sz, double scale, double* SE_RESTRICT sums) {
    const double weightY = sy.Weight(), weightZ = sz.Weight();
    size_t i = 0;
    while (i < count) {
        LatticeSpan sx(x[i]);
        const size_t line = sx.line0;
        const Crossing c00(field, sx.line0, sy.line0, sy.distance0, sz);
        const Crossing c10(field, sx.line1, sy.line0, sy.distance0, sz);
        const Crossing c01(field, sx.line0, sy.line1, sy.distance1, sz);
        const Crossing c11(field, sx.line1, sy.line1, sy.distance1, sz);
        do {
            const double weightX = sx.Weight();
            const auto alongX = [&](const Crossing& c0, const Crossing& c1) {
                const Pair u = sx.distance0 * c0.x + c0.y + c0.z;
                const Pair v = sx.distance1 * c1.x + c1.y + c1.z;
                return u + weightX * (v - u);
            };
            const Pair a = alongX(c00, c10), b = alongX(c01, c11);
            const Pair along = a + weightY * (b - a);
            sums[i] += Mix(weightZ, along[0], along[1]) / scale;
            ++i;
            if (i < count) sx = LatticeSpan(x[i]);
        } while (i < count && sx.line0 == line);
    }
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

void GradientNoise::Turbulence(std::span<double> row, double y, double z, double alpha, double beta,
                               int32_t octaves) const {
    constexpr size_t kBlock = 64;
    std::array<double, kBlock> block;
    for (size_t begin = 0; begin < row.size(); begin += kBlock) {
        const std::span<double> sums = row.subspan(begin, std::min(kBlock, row.size() - begin));
        const std::span<double> x = std::span(block).first(sums.size());
        std::ranges::copy(sums, x.begin());
        std::ranges::fill(sums, 0.0);
        double scale = 1.0, octaveY = y, octaveZ = z;
        for (int32_t i = 0; i < octaves; ++i) {
            AtLevel<AddNoises>(Field{p.data(), g3.data()}, x.data(), x.size(), LatticeSpan(octaveY),
                               LatticeSpan(octaveZ), scale, sums.data());
            scale *= alpha;
            octaveY *= beta;
            octaveZ *= beta;
            for (double& coordinate : x) coordinate *= beta;
        }
    }
}
