// Gaussian noise.
//
// Samples come from the polar method: points of a square are drawn until one lies in the unit circle, and the
// point is stretched to two normal deviates. Drawing is a chain in which each step needs the one before;
// stretching is not: its loops are turned into vector code.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"

using prim::CheckPointers;
using prim::CheckSize;
using prim::CheckStep;
using prim::FirstError;

namespace {

/// Points that are processed together.
constexpr ptrdiff_t kPoints = 256;

/// Points of the unit circle, without its middle.
struct Points {
    // One extra entry: the next point overwrites a rejected one.
    double u[kPoints + 1];
    double v[kPoints + 1];
};

/// The sum of a subtractive and a congruential generator. All arithmetic wraps at 32 bits.
class Generator {
  public:
    explicit Generator(uint32_t seed)
        : a_(seed), b_(a_ * 69069u + 1013904243u), c_(b_ * 69069u + 1013904243u) {}

    /// Draws `count` points. Rejection is random, so it takes no branch.
    void Draw(Points& points, ptrdiff_t count) {
        Generator self = *this;  // in registers
        for (ptrdiff_t i = 0; i < count;) {
            self.Step(points.u[i], points.v[i]);
            const double r = points.u[i] * points.u[i] + points.v[i] * points.v[i];
            i += static_cast<ptrdiff_t>(r < 1) & static_cast<ptrdiff_t>(r != 0);
        }
        *this = self;
    }

    uint32_t seed() const { return a_; }

  private:
    /// Two uniform numbers in -1..1.
    SE_INLINE void Step(double& u, double& v) {
        const uint32_t e = b_ - c_ + borrow_;
        const uint32_t eNegative = 0 - (e >> 31);  // all bits, or none
        c_ = a_;
        const uint32_t f = a_ - b_ + eNegative;
        b_ = e - (eNegative & 18);
        const uint32_t g = b_ + d_ * 69069u + 1013904243u;
        d_ = d_ * 475559465u + 924302730u;
        borrow_ = 0 - (f >> 31);
        a_ = f - (borrow_ & 18);
        u = static_cast<int32_t>(g) * 4.656612873077e-10;
        v = static_cast<int32_t>(a_ + d_) * 4.656612873077e-10;
    }

    uint32_t a_;
    uint32_t b_;
    uint32_t c_;
    uint32_t d_ = 1131199209u;
    uint32_t borrow_ = ~0u;  // 0 or all bits
};

/// The distribution of the samples.
struct Normal {
    double mean;
    double stdDev;
};

/// The values that samples add to pixels: truncated and clamped to -256..256, where every pixel saturates.
struct Samples {
    int16_t values[2 * kPoints];
};

/// NaN adds nothing.
int16_t Truncated(double sample) {
    const double below = sample < 256 ? sample : 256.0;
    return static_cast<int16_t>(sample != sample ? 0.0 : below > -256 ? below : -256.0);
}

/// Stretches points to two samples each, first that of u.
void StretchExactly(const Points& points, ptrdiff_t count, const Normal& normal, Samples& samples) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        const double u = points.u[i];
        const double v = points.v[i];
        const double r = u * u + v * v;
        const double m = std::sqrt(std::log(r) * -2 / r);
        samples.values[2 * i] = Truncated(normal.stdDev * m * u + normal.mean);
        samples.values[2 * i + 1] = Truncated(normal.stdDev * m * v + normal.mean);
    }
}

/// The logarithm of a number above 0 and below 1, to a relative error of some 10^-15.
SE_INLINE double Log(double r) {
    // r = 2^k * z with z from about 0.7 to 1.4, and log z = 2 atanh s with s = (z - 1) / (z + 1), below 0.172
    // in size. The exponent is raised by 1024, so that it stays above 0.
    constexpr uint64_t kRootHalf = 0x3fe6a09e00000000;
    const auto bits = std::bit_cast<uint64_t>(r);
    const uint64_t raised = (bits - kRootHalf + (uint64_t{1024} << 52)) >> 52;
    const auto z = std::bit_cast<double>(bits - (raised << 52) + (uint64_t{1024} << 52));
    const double k = std::bit_cast<double>(raised | 0x4330000000000000) - (0x1p52 + 1024);
    const double s = (z - 1) / (z + 1);
    const double q = s * s;  // at most 0.0295, so that the first term left out is below 10^-15
    const double q2 = q * q;
    const double q4 = q2 * q2;
    const double low = (2.0 + 2.0 / 3 * q) + (2.0 / 5 + 2.0 / 7 * q) * q2;
    const double high = (2.0 / 9 + 2.0 / 11 * q) + (2.0 / 13 + 2.0 / 15 * q) * q2;
    const double sum = low + (high + 2.0 / 17 * q4) * q4;
    return k * 0.693147180559945309417 + s * sum;
}

/// A sample moved to where it can be truncated.
SE_INLINE double Bounded(double sample) {
    // The bounds lie between whole numbers, so that what is moved to them is in no doubt.
    const double below = sample < 256.5 ? sample : 256.5;
    return below > -256.5 ? below : -256.5;
}

/// How far a small number lies from the nearest whole one.
SE_INLINE float Distance(double v) {
    constexpr double kRounder = 0x1.8p52;  // added to a small number, it leaves no bits below 1
    return static_cast<float>(std::fabs(v - (v + kRounder - kRounder)));
}

/// The same with a logarithm that is not that of the library to the last bit. False where the difference
/// might show in a sample.
SE_INLINE bool StretchRoughly(const Points& points, ptrdiff_t count, const Normal& normal, Samples& samples) {
    const double mean = normal.mean;
    const double stdDev = normal.stdDev;
    // No point is stretched to more than sqrt(-2 log r) < 9.4; a thousand roundings' worth of error.
    const double error = 1e-13 * (9.4 * std::fabs(stdDev) + std::fabs(mean));
    if (!(error < 0.25)) {
        return false;
    }
    // Short loops: processors work on several steps of one at a time.
    double stretch[kPoints];
    for (ptrdiff_t i = 0; i < count; ++i) {
        const double r = points.u[i] * points.u[i] + points.v[i] * points.v[i];
        stretch[i] = Log(r) * -2 / r;
    }
    double u[kPoints];
    double v[kPoints];
    for (ptrdiff_t i = 0; i < count; ++i) {
        const double m = stdDev * std::sqrt(stretch[i]);
        u[i] = Bounded(m * points.u[i] + mean);
        v[i] = Bounded(m * points.v[i] + mean);
    }
    const auto nearest = static_cast<float>(error);
    int32_t doubtful = 0;
    for (ptrdiff_t i = 0; i < count; ++i) {
        doubtful |=
            static_cast<int32_t>(Distance(u[i]) <= nearest) | static_cast<int32_t>(Distance(v[i]) <= nearest);
    }
    for (ptrdiff_t i = 0; i < count; ++i) {
        samples.values[2 * i] = static_cast<int16_t>(static_cast<int32_t>(u[i]));
        samples.values[2 * i + 1] = static_cast<int16_t>(static_cast<int32_t>(v[i]));
    }
    return doubtful == 0;
}

SE_INLINE void AddSamples(uint8_t* SE_RESTRICT data, const int16_t* SE_RESTRICT samples, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        data[i] =
            static_cast<uint8_t>(std::clamp<int16_t>(static_cast<int16_t>(data[i] + samples[i]), 0, 255));
    }
}

}  // namespace

PrimStatus PrimAddGaussNoise8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, double mean,
                                 double stdDev, uint32_t* seed) {
    if (const PrimStatus error = CheckPointers(data, seed)) {
        return error;
    }
    if (width < 1) {
        *seed = 0;
    }
    if (const PrimStatus error = FirstError(CheckSize(width, height), CheckStep(step, width))) {
        return error;
    }
    const Normal normal{mean, stdDev};
    Generator generator(*seed);
    Points points;
    Samples samples;
    ptrdiff_t next = 0;  // of `samples`
    ptrdiff_t made = 0;
    int64_t missing = int64_t{width} * height;
    for (; height > 0; --height, data += step) {
        for (ptrdiff_t x = 0; x < width;) {
            if (next == made) {
                // An odd number of samples takes a whole point for the last.
                const auto count = static_cast<ptrdiff_t>(std::min<int64_t>((missing + 1) / 2, kPoints));
                generator.Draw(points, count);
                if (!AtLevel<StretchRoughly>(points, count, normal, samples)) [[unlikely]] {
                    StretchExactly(points, count, normal, samples);
                }
                next = 0;
                made = 2 * count;
                missing -= made;
            }
            const ptrdiff_t count = std::min(made - next, width - x);
            AtLevel<AddSamples>(data + x, samples.values + next, count);
            x += count;
            next += count;
        }
    }
    *seed = generator.seed();
    return kPrimOk;
}
