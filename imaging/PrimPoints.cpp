// Point operations: the result of a pixel depends on that pixel alone.
//
// Each operation is one frame-sized loop, a few integer steps a pixel in 8 or 16 bits that the compiler turns
// into vector code.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "imaging/ByteSum.h"
#include "imaging/Lookup.h"
#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRow.h"
#include "imaging/Simd.h"

using prim::CheckAlignment;
using prim::CheckImage;
using prim::CheckImages;
using prim::CheckPointers;
using prim::CheckSize;
using prim::CheckStep;
using prim::FirstError;

namespace {

/// dst(x, y) = op(src(x, y), dst(x, y)). The two images may be one and the same.
template <typename Op>
SE_INLINE void ForPixels(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                         ptrdiff_t width, ptrdiff_t height, Op op) {
    if (srcStep == width && dstStep == width) {
        width *= height;
        height = 1;
    }
    for (; height > 0; --height, src += srcStep, dst += dstStep) {
        for (ptrdiff_t x = 0; x < width; ++x) {
            dst[x] = op(src[x], dst[x]);
        }
    }
}

/// data(x, y) = op(data(x, y)).
template <typename Op>
SE_INLINE void ForPixels(uint8_t* data, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height, Op op) {
    if (step == width) {
        width *= height;
        height = 1;
    }
    for (; height > 0; --height, data += step) {
#pragma GCC unroll 4
        for (ptrdiff_t x = 0; x < width; ++x) {
            data[x] = op(data[x]);
        }
    }
}

/// The same for operations that need 16 bits: op takes and returns bytes as uint16_t. Pixels are taken in
/// pairs, as one 16-bit number whose halves are worked on by themselves, so that vector code never changes
/// its width.
template <typename Op>
SE_INLINE void ForPixelsWide(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                             ptrdiff_t width, ptrdiff_t height, Op op) {
    if (srcStep == width && dstStep == width) {
        width *= height;
        height = 1;
    }
    const ptrdiff_t pairs = width / 2;
    for (; height > 0; --height, src += srcStep, dst += dstStep) {
        for (ptrdiff_t i = 0; i < pairs; ++i) {
            uint16_t a = 0;
            uint16_t b = 0;
            std::memcpy(&a, src + 2 * i, 2);
            std::memcpy(&b, dst + 2 * i, 2);
            const uint16_t low = op(static_cast<uint16_t>(a & 255), static_cast<uint16_t>(b & 255));
            const uint16_t high = op(static_cast<uint16_t>(a >> 8), static_cast<uint16_t>(b >> 8));
            const auto both = static_cast<uint16_t>(low | high << 8);
            std::memcpy(dst + 2 * i, &both, 2);
        }
        if (width % 2 != 0) {
            dst[width - 1] = static_cast<uint8_t>(op(src[width - 1], dst[width - 1]));
        }
    }
}

/// v / 2^shift to the nearest, ties to even, for the shifts 1 to 16 and values up to 65535 - 2^(shift-1). A
/// right shift is the high half of a product, which stays in 16 bits when a loop is turned into vector code.
/// Loops take the object by reference: where the compiler can see how the factor is made it falls back to 32
/// bits.
class EvenShift {
  public:
    explicit EvenShift(int32_t shift)
        : factor_(static_cast<uint16_t>(1u << (16 - shift))),
          belowHalf_(static_cast<uint16_t>((1u << (shift - 1)) - 1)),
          saturation_(static_cast<uint16_t>(std::min(255u << shift, 65535u))) {}

    SE_INLINE uint16_t operator()(uint16_t v) const {
        const uint16_t odd = ShiftRight(v) & 1;
        return ShiftRight(static_cast<uint16_t>(v + belowHalf_ + odd));
    }

    /// Values above it give at least 255, if there are any.
    uint16_t saturation() const { return saturation_; }

  private:
    SE_INLINE uint16_t ShiftRight(uint16_t v) const {
        return static_cast<uint16_t>((uint32_t{v} * factor_) >> 16);
    }

    uint16_t factor_;
    uint16_t belowHalf_;
    uint16_t saturation_;
};

SE_INLINE uint16_t Saturate(uint16_t v) {
    return std::min<uint16_t>(v, 255);
}

/// sat8(v * 2^-scale) for scales of 0 and below. -8 takes all that is not 0 to 255, as any lower scale does.
class SaturatingScale {
  public:
    explicit SaturatingScale(int32_t scale) : factor_(static_cast<uint16_t>(1u << -std::max(scale, -8))) {}

    SE_INLINE uint16_t operator()(uint16_t v) const {
        return Saturate(static_cast<uint16_t>(Saturate(v) * factor_));
    }

  private:
    uint16_t factor_;
};

SE_INLINE uint16_t Sum(uint16_t a, uint16_t b) {
    return static_cast<uint16_t>(a + b);
}
SE_INLINE uint16_t Product(uint16_t a, uint16_t b) {
    return static_cast<uint16_t>(a * b);
}

/// max(a - b, 0)
template <typename T>
SE_INLINE T DifferenceDownTo0(T a, T b) {
    return static_cast<T>(std::max(a, b) - b);
}

SE_INLINE void AddSaturated(const uint8_t* src, ptrdiff_t srcStep, uint8_t* srcDst, ptrdiff_t srcDstStep,
                            ptrdiff_t width, ptrdiff_t height) {
    ForPixels(src, srcStep, srcDst, srcDstStep, width, height, [](uint8_t a, uint8_t b) {
        const auto sum = static_cast<uint8_t>(a + b);
        return sum < a ? uint8_t{255} : sum;  // wrapped around
    });
}

SE_INLINE void AddUp(const uint8_t* src, ptrdiff_t srcStep, uint8_t* srcDst, ptrdiff_t srcDstStep,
                     ptrdiff_t width, ptrdiff_t height, const SaturatingScale& scaled) {
    ForPixelsWide(src, srcStep, srcDst, srcDstStep, width, height,
                  [=](uint16_t a, uint16_t b) { return scaled(Sum(a, b)); });
}

SE_INLINE void AddDown(const uint8_t* src, ptrdiff_t srcStep, uint8_t* srcDst, ptrdiff_t srcDstStep,
                       ptrdiff_t width, ptrdiff_t height, const EvenShift& shifted) {
    ForPixelsWide(src, srcStep, srcDst, srcDstStep, width, height,
                  [=](uint16_t a, uint16_t b) { return shifted(Sum(a, b)); });
}

SE_INLINE void SubSaturated(const uint8_t* src, ptrdiff_t srcStep, uint8_t* srcDst, ptrdiff_t srcDstStep,
                            ptrdiff_t width, ptrdiff_t height) {
    ForPixels(src, srcStep, srcDst, srcDstStep, width, height,
              [](uint8_t a, uint8_t b) { return DifferenceDownTo0(b, a); });
}

SE_INLINE void SubUp(const uint8_t* src, ptrdiff_t srcStep, uint8_t* srcDst, ptrdiff_t srcDstStep,
                     ptrdiff_t width, ptrdiff_t height, const SaturatingScale& scaled) {
    ForPixelsWide(src, srcStep, srcDst, srcDstStep, width, height,
                  [=](uint16_t a, uint16_t b) { return scaled(DifferenceDownTo0(b, a)); });
}

SE_INLINE void SubDown(const uint8_t* src, ptrdiff_t srcStep, uint8_t* srcDst, ptrdiff_t srcDstStep,
                       ptrdiff_t width, ptrdiff_t height, const EvenShift& shifted) {
    ForPixelsWide(src, srcStep, srcDst, srcDstStep, width, height,
                  [=](uint16_t a, uint16_t b) { return shifted(DifferenceDownTo0(b, a)); });
}

SE_INLINE void MulUp(uint16_t value, uint8_t* data, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height,
                     const SaturatingScale& scaled) {
    ForPixelsWide(data, step, data, step, width, height,
                  [=](uint16_t a, uint16_t) { return scaled(Product(a, value)); });
}

SE_INLINE void MulDown(uint16_t value, uint8_t* data, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height,
                       const EvenShift& shifted) {
    ForPixelsWide(data, step, data, step, width, height,
                  [=, limit = shifted.saturation()](uint16_t a, uint16_t) {
                      return shifted(std::min(Product(a, value), limit));
                  });
}

/// The same for shifts above 9, where a rounding term would leave the 16 bits: one bit is shifted out first,
/// and kept in the bit above it, which lies far below the half. `shifted` does the rest.
SE_INLINE void MulFarDown(uint16_t value, uint8_t* data, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height,
                          const EvenShift& shifted) {
    ForPixelsWide(data, step, data, step, width, height, [=](uint16_t a, uint16_t) {
        const uint16_t product = Product(a, value);
        return shifted(static_cast<uint16_t>((product >> 1) | (product & 1)));
    });
}

SE_INLINE void MulScale(const uint8_t* src, ptrdiff_t srcStep, uint8_t* srcDst, ptrdiff_t srcDstStep,
                        ptrdiff_t width, ptrdiff_t height) {
    ForPixelsWide(src, srcStep, srcDst, srcDstStep, width, height, [](uint16_t a, uint16_t b) {
        const uint16_t product = Product(a, b);  // at most 65025: the sum below stays in 16 bits
        return static_cast<uint16_t>(static_cast<uint16_t>(product + (product >> 8) + 1) >> 8);
    });
}

SE_INLINE void And(const uint8_t* src, ptrdiff_t srcStep, uint8_t* srcDst, ptrdiff_t srcDstStep,
                   ptrdiff_t width, ptrdiff_t height) {
    ForPixels(src, srcStep, srcDst, srcDstStep, width, height,
              [](uint8_t a, uint8_t b) { return static_cast<uint8_t>(a & b); });
}

SE_INLINE void Not(uint8_t* data, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height) {
    ForPixels(data, step, width, height, [](uint8_t a) { return static_cast<uint8_t>(a ^ 255); });
}

SE_INLINE void ThresholdLT(uint8_t* data, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height,
                           uint8_t threshold) {
    ForPixels(data, step, width, height, [=](uint8_t a) { return std::max(a, threshold); });
}

SE_INLINE void ThresholdGT(uint8_t* data, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height,
                           uint8_t threshold, uint8_t value) {
    ForPixels(data, step, width, height, [=](uint8_t a) { return a > threshold ? value : a; });
}

SE_INLINE void ThresholdBoth(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                             ptrdiff_t width, ptrdiff_t height, uint8_t lo, uint8_t loValue, uint8_t hi,
                             uint8_t hiValue) {
    ForPixels(src, srcStep, dst, dstStep, width, height, [=](uint8_t a, uint8_t) {
        const uint8_t above = a < lo ? loValue : a;
        return a > hi ? hiValue : above;
    });
}

void Fill(uint8_t value, uint8_t* dst, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height) {
    if (step == width) {
        width *= height;
        height = 1;
    }
    for (; height > 0; --height, dst += step) {
        std::memset(dst, value, static_cast<size_t>(width));
    }
}

}  // namespace

PrimStatus PrimSet8uC1(uint8_t value, uint8_t* dst, int32_t step, int32_t width, int32_t height) {
    if (const PrimStatus error = CheckImage(dst, step, width, height)) {
        return error;
    }
    Fill(value, dst, step, width, height);
    return kPrimOk;
}

PrimStatus PrimCopy8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                        int32_t height) {
    if (const PrimStatus error = CheckImages(src, srcStep, dst, dstStep, width, height)) {
        return error;
    }
    if (src == dst && srcStep == dstStep) {
        return kPrimOk;
    }
    size_t rowBytes = static_cast<size_t>(width);
    ptrdiff_t rows = height;
    if (srcStep == width && dstStep == width) {
        rowBytes *= static_cast<size_t>(height);
        rows = 1;
    }
    for (; rows > 0; --rows, src += srcStep, dst += dstStep) {
        std::memcpy(dst, src, rowBytes);  // NOLINT(clang-analyzer-core.NonNullParamChecker): checked above
    }
    return kPrimOk;
}

PrimStatus PrimMean8uC1(const uint8_t* src, int32_t step, int32_t width, int32_t height, double* mean) {
    if (const PrimStatus error =
            FirstError(CheckPointers(src, mean), CheckSize(width, height), CheckStep(step, width))) {
        return error;
    }
    uint64_t sum = 0;
    for (ptrdiff_t y = 0; y < height; ++y) {
        sum += SumBytes(prim::Row(src, step, y), static_cast<size_t>(width));
    }
    *mean = static_cast<double>(sum) / static_cast<double>(int64_t{width} * height);
    return kPrimOk;
}

PrimStatus PrimAddSfs8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                          int32_t width, int32_t height, int32_t scale) {
    if (const PrimStatus error = CheckImages(src, srcStep, srcDst, srcDstStep, width, height)) {
        return error;
    }
    if (scale > 9) {
        Fill(0, srcDst, srcDstStep, width, height);
    } else if (scale > 0) {
        AtLevel<AddDown>(src, srcStep, srcDst, srcDstStep, width, height, EvenShift(scale));
    } else if (scale == 0) {
        AtLevel<AddSaturated>(src, srcStep, srcDst, srcDstStep, width, height);
    } else {
        AtLevel<AddUp>(src, srcStep, srcDst, srcDstStep, width, height, SaturatingScale(scale));
    }
    return kPrimOk;
}

PrimStatus PrimSubSfs8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                          int32_t width, int32_t height, int32_t scale) {
    if (const PrimStatus error = CheckImages(src, srcStep, srcDst, srcDstStep, width, height)) {
        return error;
    }
    if (scale > 8) {
        Fill(0, srcDst, srcDstStep, width, height);
    } else if (scale > 0) {
        AtLevel<SubDown>(src, srcStep, srcDst, srcDstStep, width, height, EvenShift(scale));
    } else if (scale == 0) {
        AtLevel<SubSaturated>(src, srcStep, srcDst, srcDstStep, width, height);
    } else {
        AtLevel<SubUp>(src, srcStep, srcDst, srcDstStep, width, height, SaturatingScale(scale));
    }
    return kPrimOk;
}

PrimStatus PrimMulCSfs8uC1(uint8_t value, uint8_t* data, int32_t step, int32_t width, int32_t height,
                           int32_t scale) {
    if (const PrimStatus error = CheckImage(data, step, width, height)) {
        return error;
    }
    if (value == 0 || scale > 16) {
        Fill(0, data, step, width, height);
    } else if (scale > 9) {
        AtLevel<MulFarDown>(value, data, step, width, height, EvenShift(scale - 1));
    } else if (scale > 0) {
        AtLevel<MulDown>(value, data, step, width, height, EvenShift(scale));
    } else if (value != 1 || scale != 0) {
        AtLevel<MulUp>(value, data, step, width, height, SaturatingScale(scale));
    }
    return kPrimOk;
}

PrimStatus PrimMulScale8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                            int32_t width, int32_t height) {
    if (const PrimStatus error = CheckImages(src, srcStep, srcDst, srcDstStep, width, height)) {
        return error;
    }
    AtLevel<MulScale>(src, srcStep, srcDst, srcDstStep, width, height);
    return kPrimOk;
}

PrimStatus PrimAnd8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                       int32_t width, int32_t height) {
    if (const PrimStatus error = CheckImages(src, srcStep, srcDst, srcDstStep, width, height)) {
        return error;
    }
    AtLevel<And>(src, srcStep, srcDst, srcDstStep, width, height);
    return kPrimOk;
}

PrimStatus PrimNot8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height) {
    if (const PrimStatus error = CheckImage(data, step, width, height)) {
        return error;
    }
    AtLevel<Not>(data, step, width, height);
    return kPrimOk;
}

PrimStatus PrimThresholdLT8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                               uint8_t threshold) {
    if (const PrimStatus error = CheckImage(data, step, width, height)) {
        return error;
    }
    AtLevel<ThresholdLT>(data, step, width, height, threshold);
    return kPrimOk;
}

PrimStatus PrimThresholdGTVal8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                  uint8_t threshold, uint8_t value) {
    if (const PrimStatus error = CheckImage(data, step, width, height)) {
        return error;
    }
    AtLevel<ThresholdGT>(data, step, width, height, threshold, value);
    return kPrimOk;
}

PrimStatus PrimThresholdLTValGTVal8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                       int32_t width, int32_t height, uint8_t lo, uint8_t loValue, uint8_t hi,
                                       uint8_t hiValue) {
    if (const PrimStatus error = FirstError(CheckImages(src, srcStep, dst, dstStep, width, height),
                                            hi < lo ? kPrimThresholdError : kPrimOk)) {
        return error;
    }
    AtLevel<ThresholdBoth>(src, srcStep, dst, dstStep, width, height, lo, loValue, hi, hiValue);
    return kPrimOk;
}

PrimStatus PrimThresholdLTValGTValInPlace8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                              uint8_t lo, uint8_t loValue, uint8_t hi, uint8_t hiValue) {
    return PrimThresholdLTValGTVal8uC1(data, step, data, step, width, height, lo, loValue, hi, hiValue);
}

// ---- bit reduction ------------------------------------------------------------------------------

PrimStatus PrimReduceBits8uC3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                              int32_t width, int32_t height, int32_t noise, int32_t /*ditherType*/,
                              int32_t levels) {
    if (const PrimStatus error =
            FirstError(CheckPointers(src, dst), CheckSize(width, height), CheckStep(srcStep, width, 3),
                       CheckStep(dstStep, width, 3), noise < 0 || noise > 100 ? kPrimNoiseError : kPrimOk,
                       levels < 2 || levels > 256 ? kPrimLevelsError : kPrimOk)) {
        return error;
    }
    uint8_t table[256];
    const double steps = levels - 1;
    for (int32_t i = 0; i < 256; ++i) {
        const double q = i / 255.0;
        double k = std::trunc(steps * q) / steps;
        if (q - k >= 0.5 / steps) {
            k += 1 / steps;
        }
        table[i] = static_cast<uint8_t>(std::min(255, static_cast<int32_t>(k * 255)));
    }
    for (int32_t y = 0; y < height; ++y, src += srcStep, dst += dstStep) {
        LookupBytes(table, src, dst, static_cast<size_t>(width) * 3);
    }
    return kPrimOk;
}

// ---- float to bytes -----------------------------------------------------------------------------

namespace {

/// The mapping of a range of floats to bytes.
struct ByteRange {
    float lo;
    float hi;
    double factor;
    double offset;
};

/// Rounds by adding 1.5 * 2^52, which leaves the nearest whole number, ties to even, in the low bits. That
/// does for all values: at lo the sum below is 0.5 and at hi 255.5, give or take a rounding error, and both
/// come out whole.
SE_INLINE void ScaleRow(const float* src, uint8_t* SE_RESTRICT dst, ptrdiff_t width, const ByteRange& range) {
    constexpr double kRound = 0x1.8p52;
    const auto [lo, hi, factor, offset] = range;
    for (ptrdiff_t x = 0; x < width; ++x) {
        const float above = src[x] > lo ? src[x] : lo;  // also if src[x] is NaN
        const float value = above < hi ? above : hi;
        const double raised = double{value} * factor + offset;
        dst[x] = static_cast<uint8_t>(std::bit_cast<uint64_t>(raised - 0.5 + kRound));
    }
}

#if SE_AVX2

SE_TARGET_AVX2 SE_INLINE __m128i ScaleFour(__m128 values, __m256d factor, __m256d offset) {
    const __m256d raised = _mm256_add_pd(_mm256_mul_pd(_mm256_cvtps_pd(values), factor), offset);
    return _mm256_cvtpd_epi32(_mm256_sub_pd(raised, _mm256_set1_pd(0.5)));  // to nearest, ties to even
}

SE_TARGET_AVX2 SE_INLINE __m128i ScaleEight(const float* src, const ByteRange& range) {
    // The second operand of a maximum stands where the first is not a number.
    const __m256 above = _mm256_max_ps(_mm256_loadu_ps(src), _mm256_set1_ps(range.lo));
    const __m256 values = _mm256_min_ps(above, _mm256_set1_ps(range.hi));
    const __m256d factor = _mm256_set1_pd(range.factor);
    const __m256d offset = _mm256_set1_pd(range.offset);
    return _mm_packs_epi32(ScaleFour(_mm256_castps256_ps128(values), factor, offset),
                           ScaleFour(_mm256_extractf128_ps(values, 1), factor, offset));
}

/// Returns how many pixels were done. (Single precision with a second look at doubtful pixels is no help:
/// history planes hold few different values, and many of those fall on halves.)
SE_TARGET_AVX2 ptrdiff_t ScaleRowAvx2(const float* src, uint8_t* dst, ptrdiff_t width,
                                      const ByteRange& range) {
    ptrdiff_t x = 0;
    for (; x + 16 <= width; x += 16) {
        const __m128i bytes = _mm_packus_epi16(ScaleEight(src + x, range), ScaleEight(src + x + 8, range));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + x), bytes);
    }
    return x;
}

#endif

/// No value lies inside an infinite range.
void ScaleRowInfinite(const float* src, uint8_t* dst, ptrdiff_t width, float hi) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        dst[x] = src[x] >= hi ? 255 : 0;
    }
}

}  // namespace

PrimStatus PrimScale32f8u(const float* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                          int32_t height, float lo, float hi) {
    if (const PrimStatus error = FirstError(
            CheckPointers(src, dst), CheckSize(width, height), CheckStep(srcStep, width, 4),
            CheckStep(dstStep, width), CheckAlignment(srcStep, 4), hi > lo ? kPrimOk : kPrimRangeError)) {
        return error;
    }
    const double factor = 255 / (double{hi} - double{lo});
    const ByteRange range{lo, hi, factor, 0.5 - factor * double{lo}};
    for (ptrdiff_t y = 0; y < height; ++y, dst += dstStep) {
        const float* row = prim::Row(src, srcStep, y);
        if (!(factor > 0)) {
            ScaleRowInfinite(row, dst, width, hi);
            continue;
        }
        ptrdiff_t done = 0;
#if SE_AVX2
        if (simd::HasAvx2()) {
            done = ScaleRowAvx2(row, dst, width, range);
        }
#endif
        AtLevel<ScaleRow>(row + done, dst + done, width - done, range);
    }
    return kPrimOk;
}

// ---- motion history -----------------------------------------------------------------------------

namespace {

/// The bit pattern of a float as an integer that orders like the float.
SE_INLINE int32_t OrderedBits(float value) {
    const auto bits = std::bit_cast<int32_t>(value);
    return bits ^ ((bits >> 31) & 0x7fffffff);
}

SE_INLINE void UpdateHistoryRow(const uint8_t* SE_RESTRICT silhouette, float* SE_RESTRICT history,
                                ptrdiff_t width, float timestamp, float oldest) {
    const int32_t oldestBits = OrderedBits(oldest);
    for (ptrdiff_t x = 0; x < width; ++x) {
        const float kept = OrderedBits(history[x]) < oldestBits ? 0.0f : history[x];
        history[x] = silhouette[x] != 0 ? timestamp : kept;
    }
}

}  // namespace

PrimStatus PrimUpdateMotionHistory8u32f(const uint8_t* silhouette, int32_t silhouetteStep, float* mhi,
                                        int32_t mhiStep, int32_t width, int32_t height, float timestamp,
                                        float duration) {
    if (const PrimStatus error =
            FirstError(CheckPointers(silhouette, mhi), CheckSize(width, height),
                       CheckStep(silhouetteStep, width), CheckStep(mhiStep, width, 4),
                       CheckAlignment(mhiStep, 4), duration < 0 ? kPrimNegativeError : kPrimOk)) {
        return error;
    }
    const float oldest = timestamp - duration;
    for (ptrdiff_t y = 0; y < height; ++y, silhouette += silhouetteStep) {
        AtLevel<UpdateHistoryRow>(silhouette, prim::Row(mhi, mhiStep, y), width, timestamp, oldest);
    }
    return kPrimOk;
}
