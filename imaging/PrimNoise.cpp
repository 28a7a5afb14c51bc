// Gaussian noise.
//
// Samples come from the polar method: points of a square are drawn until one lies in the unit circle, and the
// point is stretched to two normal deviates. Drawing is a chain in which each step needs the one before;
// stretching is not, and is done for four points at a time where the processor can.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/Simd.h"

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

/// The value that a sample adds to a pixel: truncated and clamped to -256..256, where every pixel saturates.
/// NaN adds nothing.
int32_t Truncated(double sample) {
    const double below = sample < 256 ? sample : 256.0;
    return static_cast<int32_t>(sample != sample ? 0.0 : below > -256 ? below : -256.0);
}

/// Stretches points to two samples each, first that of u.
void Stretch(const Points& points, ptrdiff_t begin, ptrdiff_t end, const Normal& normal, int32_t* samples) {
    for (ptrdiff_t i = begin; i < end; ++i) {
        const double u = points.u[i];
        const double v = points.v[i];
        const double r = u * u + v * v;
        const double m = std::sqrt(std::log(r) * -2 / r);
        samples[2 * i] = Truncated(normal.stdDev * m * u + normal.mean);
        samples[2 * i + 1] = Truncated(normal.stdDev * m * v + normal.mean);
    }
}

#if SE_AVX2

/// The logarithm of numbers above 0 and below 1, to a relative error of some 10^-15.
SE_TARGET_AVX2 SE_INLINE __m256d Log4(__m256d r) {
    // r = 2^k * z with z from about 0.7 to 1.4, and log z = 2 atanh s with s = (z - 1) / (z + 1), below 0.172
    // in size.
    const __m256i bits = _mm256_castpd_si256(r);
    const __m256i rootHalf = _mm256_set1_epi64x(0x3fe6a09e00000000);
    const __m256i above = _mm256_sub_epi64(bits, rootHalf);
    const __m256i exponent =
        _mm256_and_si256(above, _mm256_set1_epi64x(static_cast<int64_t>(0xfff0000000000000)));
    const __m256d z = _mm256_castsi256_pd(_mm256_sub_epi64(bits, exponent));
    // k lies in the top 12 bits; as the high halves are 32-bit integers, so is k after a shift.
    const __m256i high = _mm256_permutevar8x32_epi32(exponent, _mm256_setr_epi32(1, 3, 5, 7, 1, 3, 5, 7));
    const __m256d k = _mm256_cvtepi32_pd(_mm_srai_epi32(_mm256_castsi256_si128(high), 20));

    const __m256d one = _mm256_set1_pd(1);
    const __m256d s = _mm256_div_pd(_mm256_sub_pd(z, one), _mm256_add_pd(z, one));
    const __m256d q = _mm256_mul_pd(s, s);  // at most 0.0295, so that the first term left out is below 10^-16
    __m256d sum = _mm256_set1_pd(2.0 / 21);
    for (const double divisor : {19.0, 17.0, 15.0, 13.0, 11.0, 9.0, 7.0, 5.0, 3.0, 1.0}) {
        sum = _mm256_fmadd_pd(sum, q, _mm256_set1_pd(2 / divisor));
    }
    return _mm256_fmadd_pd(k, _mm256_set1_pd(0.693147180559945309417), _mm256_mul_pd(s, sum));
}

/// Four samples moved to where they can be truncated, and whether one lies so near a whole number that the
/// error of the logarithm might matter.
SE_TARGET_AVX2 SE_INLINE __m128i Truncate4(__m256d samples, __m256d error, __m256d& doubtful) {
    // The bounds lie between whole numbers, so that what is moved to them is in no doubt.
    const __m256d bounded =
        _mm256_max_pd(_mm256_min_pd(samples, _mm256_set1_pd(256.5)), _mm256_set1_pd(-256.5));
    const __m256d whole = _mm256_round_pd(bounded, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
    const __m256d distance = _mm256_andnot_pd(_mm256_set1_pd(-0.0), _mm256_sub_pd(bounded, whole));
    doubtful = _mm256_or_pd(doubtful, _mm256_cmp_pd(distance, error, _CMP_NGE_UQ));
    return _mm256_cvttpd_epi32(bounded);
}

/// The same, four points at a time. The logarithm is not that of the library to the last bit; where the
/// difference might show, the library's is taken. Returns how many points were done.
SE_TARGET_AVX2 ptrdiff_t StretchAvx2(const Points& points, ptrdiff_t count, const Normal& normal,
                                     int32_t* samples) {
    const __m256d mean = _mm256_set1_pd(normal.mean);
    const __m256d stdDev = _mm256_set1_pd(normal.stdDev);
    // No point is stretched to more than sqrt(-2 log r) < 9.4; a thousand roundings' worth of error.
    const __m256d error = _mm256_set1_pd(1e-13 * (9.4 * std::fabs(normal.stdDev) + std::fabs(normal.mean)));
    ptrdiff_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m256d u = _mm256_loadu_pd(points.u + i);
        const __m256d v = _mm256_loadu_pd(points.v + i);
        const __m256d r = _mm256_add_pd(_mm256_mul_pd(u, u), _mm256_mul_pd(v, v));
        const __m256d m = _mm256_sqrt_pd(_mm256_div_pd(_mm256_mul_pd(Log4(r), _mm256_set1_pd(-2)), r));
        const __m256d stretch = _mm256_mul_pd(stdDev, m);
        __m256d doubtful = _mm256_setzero_pd();
        const __m128i first = Truncate4(_mm256_add_pd(_mm256_mul_pd(stretch, u), mean), error, doubtful);
        const __m128i second = Truncate4(_mm256_add_pd(_mm256_mul_pd(stretch, v), mean), error, doubtful);
        if (_mm256_movemask_pd(doubtful) != 0) [[unlikely]] {
            Stretch(points, i, i + 4, normal, samples);
            continue;
        }
        auto* out = reinterpret_cast<__m128i*>(samples + 2 * i);
        _mm_storeu_si128(out, _mm_unpacklo_epi32(first, second));
        _mm_storeu_si128(out + 1, _mm_unpackhi_epi32(first, second));
    }
    return i;
}

#endif

SE_INLINE void AddSamples(uint8_t* SE_RESTRICT data, const int32_t* SE_RESTRICT samples, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        data[i] = static_cast<uint8_t>(std::clamp(data[i] + samples[i], 0, 255));
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
    int32_t samples[2 * kPoints];
    ptrdiff_t next = 0;  // in `samples`
    ptrdiff_t made = 0;
    int64_t missing = int64_t{width} * height;
    for (; height > 0; --height, data += step) {
        for (ptrdiff_t x = 0; x < width;) {
            if (next == made) {
                // An odd number of samples takes a whole point for the last.
                const auto count = static_cast<ptrdiff_t>(std::min<int64_t>((missing + 1) / 2, kPoints));
                generator.Draw(points, count);
                ptrdiff_t done = 0;
#if SE_AVX2
                if (simd::HasAvx2()) {
                    done = StretchAvx2(points, count, normal, samples);
                }
#endif
                Stretch(points, done, count, normal, samples);
                next = 0;
                made = 2 * count;
                missing -= made;
            }
            const ptrdiff_t count = std::min(made - next, width - x);
            AtLevel<AddSamples>(data + x, samples + next, count);
            x += count;
            next += count;
        }
    }
    *seed = generator.seed();
    return kPrimOk;
}
