// Colour twist and the conversions between packed pixels and planar YUV 4:2:0.
//
// Each operation has a plain form for odd columns and short rows, one over blocks of pixels that the compiler
// turns into vector code of the baseline, and one in AVX2; all give the same bytes. The vector forms of the
// conversions keep the arithmetic in 16 bits: x * c >> 16 is the high half of a product, and a factor too
// large for one splits off whole multiples of 2^16.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/Simd.h"
#include "imaging/Vector128.h"

using prim::CheckPointers;
using prim::CheckSize;
using prim::CheckStep;
using prim::FirstError;

namespace {

SE_INLINE uint8_t Saturate(int32_t v) {
    return static_cast<uint8_t>(std::clamp(v, 0, 255));
}

#if SE_AVX2

/// The lanes of 16 bytes at `low` and at `high`.
SE_TARGET_AVX2 SE_INLINE __m256i LoadLanes(const uint8_t* low, const uint8_t* high) {
    return _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
}

SE_TARGET_AVX2 SE_INLINE __m256i Load32(const uint8_t* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

SE_TARGET_AVX2 SE_INLINE void Store32(uint8_t* p, __m256i v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}

SE_TARGET_AVX2 SE_INLINE void Store16(uint8_t* p, __m128i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}

#endif

// ---- colour twist -------------------------------------------------------------------------------

/// The matrix, and what can be said of sums of its terms in single precision.
struct Twist {
    std::array<double, 12> exact;
    std::array<float, 12> rough;
    /// Whether single-precision sums serve at all.
    bool single;
    /// They round as the double sums do when they lie less than this from the whole number that they round
    /// to.
    float limit;
};

/// Whether every sum of bytes weighted by the row is exact in single precision: all terms are multiples of
/// one power of two, and no sum, `bound` at most, has more than 24 bits above it.
bool SumsAreExact(const float* row, double bound) {
    for (int exponent = 0; exponent <= 23 && std::ldexp(bound, exponent) <= 0x1p24; ++exponent) {
        if (std::all_of(row, row + 4, [=](float m) {
                const double scaled = std::ldexp(double{m}, exponent);
                return scaled == std::trunc(scaled);
            })) {
            return true;
        }
    }
    return false;
}

Twist MakeTwist(const float* matrix) {
    Twist twist{};
    std::copy_n(matrix, twist.exact.size(), twist.exact.begin());
    std::copy_n(matrix, twist.rough.size(), twist.rough.begin());
    double error = -1;  // even a tie will do when all sums are exact
    for (const float* row = matrix; row != matrix + 12; row += 4) {
        // No sum or partial sum of this row is larger.
        const double bound =
            255 * (std::fabs(double{row[0]}) + std::fabs(double{row[1]}) + std::fabs(double{row[2]})) +
            std::fabs(double{row[3]});
        if (!(bound < 32000)) {  // does not fit 16 bits, or is not a number
            return twist;
        }
        if (!SumsAreExact(row, bound)) {
            // Six roundings, by 2^-24 of the bound at most each; the rest is room for the roundings of the
            // double sum, of the bound and of the limit.
            error = std::max(error, 8 * 0x1p-24 * bound);
        }
    }
    twist.single = true;
    twist.limit = static_cast<float>(0.5 - error);
    return twist;
}

/// out at or above 255 gives 255, at or below 0 gives 0, otherwise half to even.
SE_INLINE uint8_t RoundHalfToEven(double out) {
    const double bounded = out > 0 ? std::min(out, 255.0) : 0.0;
    const double raised = bounded + 0.5;
    const auto whole = static_cast<int32_t>(raised);
    return static_cast<uint8_t>(whole - (static_cast<double>(whole) == raised ? whole & 1 : 0));
}

void TwistPixels(uint8_t* row, ptrdiff_t count, const Twist& twist) {
    const auto& m = twist.exact;
    for (; count > 0; --count, row += 3) {
        const double p0 = row[0];
        const double p1 = row[1];
        const double p2 = row[2];
        row[0] = RoundHalfToEven(m[0] * p0 + m[1] * p1 + m[2] * p2 + m[3]);
        row[1] = RoundHalfToEven(m[4] * p0 + m[5] * p1 + m[6] * p2 + m[7]);
        row[2] = RoundHalfToEven(m[8] * p0 + m[9] * p1 + m[10] * p2 + m[11]);
    }
}

/// One output of four pixels in single precision. Sets a number of `doubtful` to all bits where a sum lies so
/// near a half that its error could tip it.
SE_INLINE vector128::Ints TwistFour(const float* m, const vector128::Floats* p, float limit,
                                    vector128::Ints& doubtful) {
    // Added to a sum, it leaves no bits below 1: the number is rounded to even, and is what the float's bits
    // are above those of the rounder.
    constexpr float kRounder = 0x1.8p23f;
    const vector128::Floats sum = m[0] * p[0] + (m[1] * p[1] + (m[2] * p[2] + m[3]));
    const vector128::Floats raised = sum + kRounder;
    const auto distance = reinterpret_cast<vector128::Ints>(sum - (raised - kRounder)) & 0x7fffffff;
    doubtful |= reinterpret_cast<vector128::Floats>(distance) >= limit;
    return reinterpret_cast<vector128::Ints>(raised) - std::bit_cast<int32_t>(kRounder);
}

/// 16 pixels at a time in single precision; those with a sum in doubt are done again in double.
void TwistRow(uint8_t* row, ptrdiff_t width, const Twist& twist) {
    using namespace vector128;
    ptrdiff_t x = 0;
    for (; x + 16 <= width; x += 16, row += 48) {
        alignas(16) uint8_t bytes[3][16];
        SplitPixels(row, bytes[0], bytes[1], bytes[2]);
        Shorts words[3][2];
        Ints doubtful{};
        for (int half = 0; half < 2; ++half) {
            Floats first[3];
            Floats second[3];
            for (int channel = 0; channel < 3; ++channel) {
                const Bytes eight = LoadHalf(bytes[channel] + 8 * half);
                const auto wide = reinterpret_cast<Words>(InterleaveLow(eight, Bytes{}));
                first[channel] = LowToFloats(wide);
                second[channel] = HighToFloats(wide);
            }
            for (int channel = 0; channel < 3; ++channel) {
                const float* const m = twist.rough.data() + 4 * channel;
                const Ints low = TwistFour(m, first, twist.limit, doubtful);
                const Ints high = TwistFour(m, second, twist.limit, doubtful);
                words[channel][half] = Pack(low, high);
            }
        }
        const auto halves = reinterpret_cast<Longs>(doubtful);
        if ((halves[0] | halves[1]) != 0) [[unlikely]] {
            TwistPixels(row, 16, twist);
            continue;
        }
        for (int channel = 0; channel < 3; ++channel) {
            Store(bytes[channel], Pack(words[channel][0], words[channel][1]));
        }
        JoinPixels(bytes[0], bytes[1], bytes[2], row);
    }
    TwistPixels(row, width - x, twist);
}

#if SE_AVX2

/// One output of eight pixels: rounded, and how far from it the sum lies.
struct RoundedSum {
    __m256 whole;
    __m256 distance;
};

SE_TARGET_AVX2 SE_INLINE RoundedSum TwistSum(const __m256* m, __m256 p0, __m256 p1, __m256 p2) {
    const __m256 sum = _mm256_fmadd_ps(m[0], p0, _mm256_fmadd_ps(m[1], p1, _mm256_fmadd_ps(m[2], p2, m[3])));
    const __m256 whole = _mm256_round_ps(sum, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
    const __m256 magnitude = _mm256_castsi256_ps(_mm256_set1_epi32(0x7fffffff));
    return {whole, _mm256_and_ps(_mm256_sub_ps(sum, whole), magnitude)};
}

/// Eight pixels at a time in single precision. Where a sum lies so near a half that its error could tip it,
/// the eight are done again in double.
SE_TARGET_AVX2 void TwistRowAvx2(uint8_t* row, ptrdiff_t width, const Twist& twist) {
    __m256 m[12];
    for (int i = 0; i < 12; ++i) {
        m[i] = _mm256_set1_ps(twist.rough[static_cast<size_t>(i)]);
    }
    const __m256 limit = _mm256_set1_ps(twist.limit);
    // From the lanes of bytes 0..15 and 8..23 a channel of four pixels each, widened.
    const __m256i channel0 = _mm256_setr_epi8(0, -1, -1, -1, 3, -1, -1, -1, 6, -1, -1, -1, 9, -1, -1, -1,  //
                                              4, -1, -1, -1, 7, -1, -1, -1, 10, -1, -1, -1, 13, -1, -1, -1);
    const __m256i one =
        _mm256_and_si256(_mm256_set1_epi32(1), _mm256_cmpgt_epi8(channel0, _mm256_set1_epi8(-1)));
    const __m256i channel1 = _mm256_add_epi8(channel0, one);
    const __m256i channel2 = _mm256_add_epi8(channel1, one);
    // Four bytes of each channel to four pixels.
    const __m256i interleave = _mm256_setr_epi8(0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, -1, -1, -1, -1,  //
                                                0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, -1, -1, -1, -1);
    const __m256i join = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    ptrdiff_t x = 0;
    for (; x + 8 <= width; x += 8, row += 24) {
        const __m256i bytes = LoadLanes(row, row + 8);
        const __m256 p0 = _mm256_cvtepi32_ps(_mm256_shuffle_epi8(bytes, channel0));
        const __m256 p1 = _mm256_cvtepi32_ps(_mm256_shuffle_epi8(bytes, channel1));
        const __m256 p2 = _mm256_cvtepi32_ps(_mm256_shuffle_epi8(bytes, channel2));
        const RoundedSum out0 = TwistSum(m, p0, p1, p2);
        const RoundedSum out1 = TwistSum(m + 4, p0, p1, p2);
        const RoundedSum out2 = TwistSum(m + 8, p0, p1, p2);
        const __m256 farthest = _mm256_max_ps(_mm256_max_ps(out0.distance, out1.distance), out2.distance);
        if (_mm256_movemask_ps(_mm256_cmp_ps(farthest, limit, _CMP_GE_OQ)) != 0) [[unlikely]] {
            TwistPixels(row, 8, twist);
            continue;
        }
        const __m256i words01 =
            _mm256_packs_epi32(_mm256_cvtps_epi32(out0.whole), _mm256_cvtps_epi32(out1.whole));
        const __m256i words2 = _mm256_packs_epi32(_mm256_cvtps_epi32(out2.whole), _mm256_setzero_si256());
        const __m256i pixels = _mm256_shuffle_epi8(_mm256_packus_epi16(words01, words2), interleave);
        const __m256i joined = _mm256_permutevar8x32_epi32(pixels, join);
        Store16(row, _mm256_castsi256_si128(joined));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(row + 16), _mm256_extracti128_si256(joined, 1));
    }
    TwistPixels(row, width - x, twist);
}

#endif

}  // namespace

PrimStatus PrimColorTwist8uC3(uint8_t* data, int32_t step, int32_t width, int32_t height,
                              const float* matrix) {
    if (const PrimStatus error =
            FirstError(CheckPointers(data, matrix), CheckSize(width, height), CheckStep(step, width, 3))) {
        return error;
    }
    const Twist twist = MakeTwist(matrix);
#if SE_AVX2
    if (simd::HasAvx2() && twist.single) {
        for (int32_t y = 0; y < height; ++y, data += step) {
            TwistRowAvx2(data, width, twist);
        }
        return kPrimOk;
    }
#endif
    for (int32_t y = 0; y < height; ++y, data += step) {
        (twist.single ? TwistRow : TwistPixels)(data, width, twist);
    }
    return kPrimOk;
}

// ---- packed pixels to planes --------------------------------------------------------------------

namespace {

/// A pixel, or the sum of several: its bytes, and its luma times 2^16.
struct LumaSum {
    int32_t p0 = 0;
    int32_t p2 = 0;
    int32_t luma = 0;
};

/// Converts the luma of a pixel and adds the pixel up.
SE_INLINE void TakePixel(const uint8_t* p, uint8_t* y, LumaSum& sum) {
    const int32_t luma = 19595 * p[0] + 38470 * p[1] + 7471 * p[2];
    *y = static_cast<uint8_t>(luma >> 16);
    sum.p0 += p[0];
    sum.p2 += p[2];
    sum.luma += luma;
}

/// Chroma of a block, from the sums of four, two or one pixels for the shifts 18, 17 and 16.
SE_INLINE void StoreChroma(const LumaSum& sum, int32_t bias, int32_t shift, uint8_t* u, uint8_t* v) {
    const int32_t difference2 = ((sum.p2 << 16) - sum.luma + bias) >> 16;
    const int32_t difference0 = ((sum.p0 << 16) - sum.luma + bias) >> 16;
    *u = static_cast<uint8_t>(((difference2 * 32244) >> shift) - 128);
    *v = Saturate(((difference0 * 57475) >> shift) + 128);
}

/// Two rows of the picture, or its last one, from an even column on; rows[1] and luma[1] are null for a lone
/// row.
struct PackedRows {
    const uint8_t* rows[2];
    uint8_t* luma[2];
    uint8_t* u;
    uint8_t* v;
};

void RgbToYuvBlocks(const PackedRows& p, ptrdiff_t begin, ptrdiff_t width) {
    const bool twoRows = p.rows[1] != nullptr;
    for (ptrdiff_t x = begin; x < width; x += 2) {
        const bool twoColumns = x + 1 < width;
        LumaSum sum;
        for (size_t row = 0; row < (twoRows ? 2 : 1); ++row) {
            TakePixel(p.rows[row] + 3 * x, p.luma[row] + x, sum);
            if (twoColumns) {
                TakePixel(p.rows[row] + 3 * x + 3, p.luma[row] + x + 1, sum);
            }
        }
        if (twoRows && twoColumns) {
            StoreChroma(sum, 0x1ffff, 18, p.u + x / 2, p.v + x / 2);
        } else {
            StoreChroma(sum, 0, twoRows || twoColumns ? 17 : 16, p.u + x / 2, p.v + x / 2);
        }
    }
}

/// (19595 * d0 + 7471 * d2 + bias) >> 16 for the differences of a first and a third channel to the second,
/// which luma consists of: 19595 + 38470 + 7471 = 2^16.
SE_INLINE int16_t LumaPart(int16_t d0, int16_t d2, int32_t bias) {
    return static_cast<int16_t>((d0 * int16_t{19595} + d2 * int16_t{7471} + bias) >> 16);
}

/// The same for eight pixels.
SE_INLINE vector128::Shorts LumaParts(vector128::Shorts d0, vector128::Shorts d2) {
    using namespace vector128;
    const auto weights = reinterpret_cast<Shorts>(Ints{} + (19595 | 7471 << 16));
    const auto a = reinterpret_cast<Words>(d0);
    const auto b = reinterpret_cast<Words>(d2);
    return Pack(DotPairs(reinterpret_cast<Shorts>(InterleaveLow(a, b)), weights) >> 16,
                DotPairs(reinterpret_cast<Shorts>(InterleaveHigh(a, b)), weights) >> 16);
}

/// The luma of 16 pixels, from their channels.
SE_INLINE vector128::Bytes Luma16(vector128::Bytes c0, vector128::Bytes c1, vector128::Bytes c2) {
    using namespace vector128;
    const Bytes zero{};
    const auto low0 = reinterpret_cast<Shorts>(InterleaveLow(c0, zero));
    const auto low1 = reinterpret_cast<Shorts>(InterleaveLow(c1, zero));
    const auto low2 = reinterpret_cast<Shorts>(InterleaveLow(c2, zero));
    const auto high0 = reinterpret_cast<Shorts>(InterleaveHigh(c0, zero));
    const auto high1 = reinterpret_cast<Shorts>(InterleaveHigh(c1, zero));
    const auto high2 = reinterpret_cast<Shorts>(InterleaveHigh(c2, zero));
    return Pack(low1 + LumaParts(low0 - low1, low2 - low1), high1 + LumaParts(high0 - high1, high2 - high1));
}

/// v * factor >> 16.
SE_INLINE int16_t HighProduct(int16_t v, int16_t factor) {
    return static_cast<int16_t>((v * factor) >> 16);
}

/// The sums of the horizontal pairs of 32 bytes.
SE_INLINE void AddPairs(const uint8_t* bytes, uint16_t* sums) {
    for (int i = 0; i < 16; ++i) {
        uint16_t pair = 0;
        std::memcpy(&pair, bytes + 2 * i, 2);
        sums[i] = static_cast<uint16_t>(sums[i] + (pair & 255) + (pair >> 8));
    }
}

/// 32 columns of two rows.
SE_INLINE void RgbToYuv32Plain(const PackedRows& p, ptrdiff_t x) {
    uint16_t sums[3][16] = {};
    for (int row = 0; row < 2; ++row) {
        const uint8_t* const src = p.rows[row] + 3 * x;
        alignas(16) uint8_t c[3][32];
        vector128::SplitPixels(src, c[0], c[1], c[2]);
        vector128::SplitPixels(src + 48, c[0] + 16, c[1] + 16, c[2] + 16);
        for (int i = 0; i < 32; i += 16) {
            vector128::Store(p.luma[row] + x + i, Luma16(vector128::Load(c[0] + i), vector128::Load(c[1] + i),
                                                         vector128::Load(c[2] + i)));
        }
        for (int channel = 0; channel < 3; ++channel) {
            AddPairs(c[channel], sums[channel]);
        }
    }
    alignas(16) uint8_t u[16];
    alignas(16) uint8_t v[16];
    for (int i = 0; i < 16; ++i) {
        const auto d0 = static_cast<int16_t>(sums[0][i] - sums[1][i]);
        const auto d2 = static_cast<int16_t>(sums[2][i] - sums[1][i]);
        // With the sign of both terms turned, the shift rounds as it does in the plain form.
        const int16_t part = LumaPart(static_cast<int16_t>(-d0), static_cast<int16_t>(-d2), 0x1ffff);
        const auto difference0 = static_cast<int16_t>(d0 + part);
        const auto difference2 = static_cast<int16_t>(d2 + part);
        // 57475 = 2^16 - 8061.
        const auto scaled0 =
            static_cast<int16_t>(static_cast<int16_t>(difference0 + HighProduct(difference0, -8061)) >> 2);
        u[i] = static_cast<uint8_t>((HighProduct(difference2, 32244) >> 2) - 128);
        v[i] = static_cast<uint8_t>(std::clamp<int16_t>(static_cast<int16_t>(scaled0 + 128), 0, 255));
    }
    std::memcpy(p.u + x / 2, u, 16);
    std::memcpy(p.v + x / 2, v, 16);
}

/// Both rows must be there. Returns how many columns were done.
ptrdiff_t RgbToYuvRows(const PackedRows& p, ptrdiff_t width) {
    if (width < 32) {
        return 0;
    }
    const ptrdiff_t evenWidth = width & ~ptrdiff_t{1};
    for (ptrdiff_t begin = 0; begin < evenWidth; begin += 32) {
        RgbToYuv32Plain(p, std::min(begin, evenWidth - 32));  // the last piece may overlap the one before
    }
    return evenWidth;
}

#if SE_AVX2

/// Repeats a row of 16 bytes in both lanes.
SE_TARGET_AVX2 SE_INLINE __m256i BothLanes(__m128i v) {
    return _mm256_broadcastsi128_si256(v);
}

/// Eight pixels, four in each lane from its byte 0 on.
SE_TARGET_AVX2 SE_INLINE __m256i LoadPixels(const uint8_t* p) {
    // The second lane is loaded from byte 8, so that nothing past the pixels is read.
    const __m256i bytes = LoadLanes(p, p + 8);
    const __m256i align = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, -1, -1, -1, -1,  //
                                           4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, -1, -1, -1, -1);
    return _mm256_shuffle_epi8(bytes, align);
}

/// Luma of eight pixels, one to a 32-bit number: pairs (p0, p1) and (p2, p1) share the weight of p1 between
/// them.
SE_TARGET_AVX2 SE_INLINE __m256i Luma8(__m256i pixels) {
    const __m256i pairs01 = _mm256_shuffle_epi8(
        pixels, BothLanes(_mm_setr_epi8(0, -1, 1, -1, 3, -1, 4, -1, 6, -1, 7, -1, 9, -1, 10, -1)));
    const __m256i pairs21 = _mm256_shuffle_epi8(
        pixels, BothLanes(_mm_setr_epi8(2, -1, 1, -1, 5, -1, 4, -1, 8, -1, 7, -1, 11, -1, 10, -1)));
    const __m256i weights01 = _mm256_set1_epi32(19595 | 19235 << 16);
    const __m256i weights21 = _mm256_set1_epi32(7471 | 19235 << 16);
    return _mm256_srli_epi32(
        _mm256_add_epi32(_mm256_madd_epi16(pairs01, weights01), _mm256_madd_epi16(pairs21, weights21)), 16);
}

/// Sums of horizontal pairs of eight pixels, in each lane p0, p0, p1, p1, p2, p2 of its two pairs, 16 bits
/// each.
SE_TARGET_AVX2 SE_INLINE __m256i PairSums(__m256i pixels) {
    const __m256i pairs = _mm256_shuffle_epi8(
        pixels, BothLanes(_mm_setr_epi8(0, 3, 6, 9, 1, 4, 7, 10, 2, 5, 8, 11, -1, -1, -1, -1)));
    return _mm256_maddubs_epi16(pairs, _mm256_set1_epi8(1));
}

/// Chroma of 32 by 2 pixels from their block sums, four blocks a vector: `u` and `v` get 16 bytes each.
SE_TARGET_AVX2 SE_INLINE void Chroma16(const __m256i* sums, uint8_t* u, uint8_t* v) {
    // Gather channels: each lane of s0 holds the p0 sums of the lane's blocks in all four vectors.
    const __m256i low01 = _mm256_unpacklo_epi32(sums[0], sums[1]);
    const __m256i low23 = _mm256_unpacklo_epi32(sums[2], sums[3]);
    const __m256i high01 = _mm256_unpackhi_epi32(sums[0], sums[1]);
    const __m256i high23 = _mm256_unpackhi_epi32(sums[2], sums[3]);
    const __m256i s0 = _mm256_unpacklo_epi64(low01, low23);
    const __m256i s1 = _mm256_unpackhi_epi64(low01, low23);
    const __m256i s2 = _mm256_unpacklo_epi64(high01, high23);

    // (s << 16) - luma + 0x1ffff, shifted right by 16, for s = s0 and s2. With luma = 2^16 s1 + rest that is
    // s - s1 + ((0x1ffff - rest) >> 16), and rest = 19595 s0 - 27066 s1 + 7471 s2.
    const __m256i weights01 = _mm256_set1_epi32((-19595 & 0xffff) | 27066 << 16);
    const __m256i weights2 = _mm256_set1_epi32(-7471 & 0xffff);
    const __m256i bias = _mm256_set1_epi32(0x1ffff);
    const __m256i restLow = _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(s0, s1), weights01),
                                             _mm256_madd_epi16(_mm256_unpacklo_epi16(s2, s2), weights2));
    const __m256i restHigh = _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(s0, s1), weights01),
                                              _mm256_madd_epi16(_mm256_unpackhi_epi16(s2, s2), weights2));
    const __m256i rest = _mm256_packs_epi32(_mm256_srai_epi32(_mm256_add_epi32(restLow, bias), 16),
                                            _mm256_srai_epi32(_mm256_add_epi32(restHigh, bias), 16));
    const __m256i common = _mm256_sub_epi16(rest, s1);
    const __m256i difference0 = _mm256_add_epi16(s0, common);
    const __m256i difference2 = _mm256_add_epi16(s2, common);

    // 57475 = 2^16 - 8061.
    const __m256i scaled2 = _mm256_srai_epi16(_mm256_mulhi_epi16(difference2, _mm256_set1_epi16(32244)), 2);
    const __m256i scaled0 = _mm256_srai_epi16(
        _mm256_add_epi16(difference0, _mm256_mulhi_epi16(difference0, _mm256_set1_epi16(-8061))), 2);
    const __m256i middle = _mm256_set1_epi16(128);
    const __m256i uWords = _mm256_and_si256(_mm256_add_epi16(scaled2, middle), _mm256_set1_epi16(255));
    const __m256i bytes = _mm256_packus_epi16(uWords, _mm256_add_epi16(scaled0, middle));

    // A lane holds the pairs of its half of each vector, u first: put the halves of a vector next to each
    // other.
    const __m256i chunks = _mm256_permute4x64_epi64(bytes, 0xd8);  // u of both lanes, v of both lanes
    const __m256i ordered = _mm256_shuffle_epi8(
        chunks, BothLanes(_mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15)));
    Store16(u, _mm256_castsi256_si128(ordered));
    Store16(v, _mm256_extracti128_si256(ordered, 1));
}

/// 32 columns of two rows.
SE_TARGET_AVX2 SE_INLINE void RgbToYuv32(const PackedRows& p, ptrdiff_t x) {
    __m256i sums[4];
    for (int row = 0; row < 2; ++row) {
        const uint8_t* src = p.rows[row] + 3 * x;
        __m256i luma[4];
#pragma GCC unroll 4
        for (int i = 0; i < 4; ++i) {
            const __m256i pixels = LoadPixels(src + 24 * i);
            luma[i] = Luma8(pixels);
            const __m256i pairs = PairSums(pixels);
            sums[i] = row == 0 ? pairs : _mm256_add_epi16(sums[i], pairs);
        }
        const __m256i bytes =
            _mm256_packus_epi16(_mm256_packus_epi32(luma[0], luma[1]), _mm256_packus_epi32(luma[2], luma[3]));
        Store32(p.luma[row] + x,
                _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
    }
    Chroma16(sums, p.u + x / 2, p.v + x / 2);
}

/// Both rows must be there. Returns how many columns were done.
SE_TARGET_AVX2 ptrdiff_t RgbToYuvRowsAvx2(const PackedRows& p, ptrdiff_t width) {
    if (width < 32) {
        return 0;
    }
    const ptrdiff_t evenWidth = width & ~ptrdiff_t{1};
    ptrdiff_t x = 0;
    for (; x + 32 <= evenWidth; x += 32) {
        RgbToYuv32(p, x);
    }
    if (x < evenWidth) {
        RgbToYuv32(p, evenWidth - 32);  // overlaps what was done
    }
    return evenWidth;
}

#endif

}  // namespace

PrimStatus PrimRgbToYuv420(const uint8_t* src, uint8_t* const planes[3], int32_t width, int32_t height) {
    if (const PrimStatus error = CheckPointers(src, planes)) {
        return error;
    }
    if (const PrimStatus error =
            FirstError(CheckPointers(planes[0], planes[1], planes[2]), CheckSize(width, height))) {
        return error;
    }
    const ptrdiff_t srcStep = ptrdiff_t{width} * 3;
    const ptrdiff_t chromaStep = (ptrdiff_t{width} + 1) / 2;
    for (ptrdiff_t y = 0; y < height; y += 2) {
        const bool twoRows = y + 1 < height;
        const uint8_t* row = src + y * srcStep;
        uint8_t* luma = planes[0] + y * width;
        const PackedRows p{{row, twoRows ? row + srcStep : nullptr},
                           {luma, twoRows ? luma + width : nullptr},
                           planes[1] + y / 2 * chromaStep,
                           planes[2] + y / 2 * chromaStep};
        ptrdiff_t done = 0;
        if (twoRows) {
#if SE_AVX2
            done = (simd::HasAvx2() ? RgbToYuvRowsAvx2 : RgbToYuvRows)(p, width);
#else
            done = RgbToYuvRows(p, width);
#endif
        }
        RgbToYuvBlocks(p, done, width);
    }
    return kPrimOk;
}

// ---- planes to packed pixels --------------------------------------------------------------------

namespace {

void YuvToRgbPixels(const uint8_t* luma, const uint8_t* uRow, const uint8_t* vRow, uint8_t* dst,
                    ptrdiff_t width) {
    for (ptrdiff_t x = 0; x < width; ++x, dst += 3) {
        const int32_t scaled = luma[x] << 16;
        const int32_t u = uRow[x / 2] - 128;
        const int32_t v = vRow[x / 2] - 128;
        dst[0] = Saturate((scaled + 74711 * v) >> 16);
        dst[1] = Saturate((scaled - 38076 * v - 25821 * u) >> 16);
        dst[2] = Saturate((scaled + 133169 * u) >> 16);
    }
}

/// What chroma adds to luma in the three channels, for 32 pixels, a number for two of them: since luma is
/// shifted by whole 16 bits, the floor of the sum is luma plus the floor of the rest.
struct PlainChromaTerms {
    int16_t channel[3][16];
};

SE_INLINE PlainChromaTerms MakePlainChromaTerms(const uint8_t* uRow, const uint8_t* vRow) {
    PlainChromaTerms terms;
    for (int i = 0; i < 16; ++i) {
        const auto u = static_cast<int16_t>(uRow[i] - 128);
        const auto v = static_cast<int16_t>(vRow[i] - 128);
        // 74711 = 2^16 + 9175, 133169 = 2 * 2^16 + 2097 and -38076 = -2^16 + 27460.
        terms.channel[0][i] = static_cast<int16_t>(v + HighProduct(v, 9175));
        terms.channel[1][i] = static_cast<int16_t>(((v * int16_t{27460} + u * int16_t{-25821}) >> 16) - v);
        terms.channel[2][i] = static_cast<int16_t>(u + u + HighProduct(u, 2097));
    }
    return terms;
}

SE_INLINE void YuvToRgb32Plain(const uint8_t* luma, const PlainChromaTerms& terms, uint8_t* dst) {
    alignas(16) uint8_t c[3][32];
    uint16_t pairs[16];
    std::memcpy(pairs, luma, 32);
    for (int channel = 0; channel < 3; ++channel) {
        uint16_t out[16];
        for (int i = 0; i < 16; ++i) {
            const int16_t term = terms.channel[channel][i];
            const auto low = static_cast<int16_t>((pairs[i] & 255) + term);
            const auto high = static_cast<int16_t>((pairs[i] >> 8) + term);
            out[i] = static_cast<uint16_t>(std::clamp<int16_t>(low, 0, 255) |
                                           std::clamp<int16_t>(high, 0, 255) << 8);
        }
        std::memcpy(c[channel], out, 32);
    }
    vector128::JoinPixels(c[0], c[1], c[2], dst);
    vector128::JoinPixels(c[0] + 16, c[1] + 16, c[2] + 16, dst + 48);
}

/// Two rows, or the last one with a null second pointer. Returns how many columns were done.
ptrdiff_t YuvToRgbRows(const uint8_t* const luma[2], const uint8_t* u, const uint8_t* v,
                       uint8_t* const dst[2], ptrdiff_t width) {
    if (width < 32) {
        return 0;
    }
    const ptrdiff_t evenWidth = width & ~ptrdiff_t{1};
    for (ptrdiff_t begin = 0; begin < evenWidth; begin += 32) {
        const ptrdiff_t x = std::min(begin, evenWidth - 32);  // the last piece may overlap the one before
        const PlainChromaTerms terms = MakePlainChromaTerms(u + x / 2, v + x / 2);
        YuvToRgb32Plain(luma[0] + x, terms, dst[0] + 3 * x);
        if (luma[1] != nullptr) {
            YuvToRgb32Plain(luma[1] + x, terms, dst[1] + 3 * x);
        }
    }
    return evenWidth;
}

#if SE_AVX2

/// What chroma adds to luma in the three channels, for 32 pixels: since luma is shifted by whole 16 bits, the
/// floor of the sum is luma plus the floor of the rest. The part above 0 and the part below are bytes,
/// saturated.
struct ChromaTerms {
    __m256i add[3];
    __m256i subtract[3];
};

/// 16 numbers, one for two pixels each.
SE_TARGET_AVX2 SE_INLINE void SplitTerm(__m256i term, __m256i& add, __m256i& subtract) {
    const __m256i zero = _mm256_setzero_si256();
    // The packed lanes hold numbers 0..7 and 8..15; doubling each byte fills the lane with pixels in order.
    const __m256i positive = _mm256_packus_epi16(term, term);
    const __m256i negative_ = _mm256_sub_epi16(zero, term);
    const __m256i negative = _mm256_packus_epi16(negative_, negative_);
    add = _mm256_unpacklo_epi8(positive, positive);
    subtract = _mm256_unpacklo_epi8(negative, negative);
}

SE_TARGET_AVX2 SE_INLINE ChromaTerms MakeChromaTerms(const uint8_t* uRow, const uint8_t* vRow) {
    const __m256i middle = _mm256_set1_epi16(128);
    const __m256i u = _mm256_sub_epi16(
        _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(uRow))), middle);
    const __m256i v = _mm256_sub_epi16(
        _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(vRow))), middle);
    // 74711 = 2^16 + 9175, 133169 = 2 * 2^16 + 2097 and -38076 = -2^16 + 27460.
    const __m256i term0 = _mm256_add_epi16(v, _mm256_mulhi_epi16(v, _mm256_set1_epi16(9175)));
    const __m256i term2 =
        _mm256_add_epi16(_mm256_add_epi16(u, u), _mm256_mulhi_epi16(u, _mm256_set1_epi16(2097)));
    const __m256i weights = _mm256_set1_epi32(27460 | (-25821 & 0xffff) << 16);
    const __m256i low = _mm256_srai_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(v, u), weights), 16);
    const __m256i high = _mm256_srai_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(v, u), weights), 16);
    const __m256i term1 = _mm256_sub_epi16(_mm256_packs_epi32(low, high), v);
    ChromaTerms terms;
    SplitTerm(term0, terms.add[0], terms.subtract[0]);
    SplitTerm(term1, terms.add[1], terms.subtract[1]);
    SplitTerm(term2, terms.add[2], terms.subtract[2]);
    return terms;
}

/// Interleaves three channels of 32 pixels into 96 bytes.
SE_TARGET_AVX2 SE_INLINE void StorePixels(uint8_t* dst, __m256i c0, __m256i c1, __m256i c2) {
    // Within a lane, byte i of each channel belongs at 3i, 3i + 1 and 3i + 2. Turned so that every channel
    // has the right bytes at all places of the three 16-byte pieces, they are only to be blended.
    const __m256i turned0 = _mm256_shuffle_epi8(
        c0, BothLanes(_mm_setr_epi8(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5)));
    const __m256i turned1 = _mm256_shuffle_epi8(
        c1, BothLanes(_mm_setr_epi8(5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10)));
    const __m256i turned2 = _mm256_shuffle_epi8(
        c2, BothLanes(_mm_setr_epi8(10, 5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15)));
    // Every third byte from byte 0, from byte 1 and from byte 2.
    const __m256i third0 = BothLanes(_mm_setr_epi8(-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1));
    const __m256i third1 = BothLanes(_mm_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0));
    const __m256i third2 = BothLanes(_mm_setr_epi8(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0));
    const __m256i first =
        _mm256_blendv_epi8(_mm256_blendv_epi8(turned2, turned0, third0), turned1, third1);  // bytes 0..15
    const __m256i second =
        _mm256_blendv_epi8(_mm256_blendv_epi8(turned2, turned0, third2), turned1, third0);  // bytes 16..31
    const __m256i third =
        _mm256_blendv_epi8(_mm256_blendv_epi8(turned2, turned0, third1), turned1, third2);  // bytes 32..47
    Store32(dst, _mm256_permute2x128_si256(first, second, 0x20));
    Store32(dst + 32, _mm256_permute2x128_si256(third, first, 0x30));
    Store32(dst + 64, _mm256_permute2x128_si256(second, third, 0x31));
}

SE_TARGET_AVX2 SE_INLINE void YuvToRgb32(const uint8_t* luma, const ChromaTerms& terms, uint8_t* dst) {
    const __m256i y = Load32(luma);
    // One of the two terms is 0, so that saturating after the first changes nothing.
    const __m256i c0 = _mm256_subs_epu8(_mm256_adds_epu8(y, terms.add[0]), terms.subtract[0]);
    const __m256i c1 = _mm256_subs_epu8(_mm256_adds_epu8(y, terms.add[1]), terms.subtract[1]);
    const __m256i c2 = _mm256_subs_epu8(_mm256_adds_epu8(y, terms.add[2]), terms.subtract[2]);
    StorePixels(dst, c0, c1, c2);
}

/// Two rows, or the last one with a null second pointer. Returns how many columns were done.
SE_TARGET_AVX2 ptrdiff_t YuvToRgbRowsAvx2(const uint8_t* const luma[2], const uint8_t* u, const uint8_t* v,
                                          uint8_t* const dst[2], ptrdiff_t width) {
    if (width < 32) {
        return 0;
    }
    const ptrdiff_t evenWidth = width & ~ptrdiff_t{1};
    for (ptrdiff_t begin = 0; begin < evenWidth; begin += 32) {
        const ptrdiff_t x = std::min(begin, evenWidth - 32);  // the last piece may overlap the one before
        const ChromaTerms terms = MakeChromaTerms(u + x / 2, v + x / 2);
        YuvToRgb32(luma[0] + x, terms, dst[0] + 3 * x);
        if (luma[1] != nullptr) {
            YuvToRgb32(luma[1] + x, terms, dst[1] + 3 * x);
        }
    }
    return evenWidth;
}

#endif

}  // namespace

PrimStatus PrimYuv420ToRgb(const uint8_t* const planes[3], uint8_t* dst, int32_t width, int32_t height) {
    if (const PrimStatus error = CheckPointers(planes, dst)) {
        return error;
    }
    if (const PrimStatus error =
            FirstError(CheckPointers(planes[0], planes[1], planes[2]), CheckSize(width, height))) {
        return error;
    }
    const ptrdiff_t dstStep = ptrdiff_t{width} * 3;
    const ptrdiff_t chromaStep = (ptrdiff_t{width} + 1) / 2;
    for (ptrdiff_t y = 0; y < height; y += 2) {
        const bool twoRows = y + 1 < height;
        const uint8_t* u = planes[1] + y / 2 * chromaStep;
        const uint8_t* v = planes[2] + y / 2 * chromaStep;
        const uint8_t* const luma[2] = {planes[0] + y * width,
                                        twoRows ? planes[0] + (y + 1) * width : nullptr};
        uint8_t* const rows[2] = {dst + y * dstStep, twoRows ? dst + (y + 1) * dstStep : nullptr};
#if SE_AVX2
        const ptrdiff_t done = (simd::HasAvx2() ? YuvToRgbRowsAvx2 : YuvToRgbRows)(luma, u, v, rows, width);
#else
        const ptrdiff_t done = YuvToRgbRows(luma, u, v, rows, width);
#endif
        for (size_t i = 0; i < (twoRows ? 2 : 1); ++i) {
            YuvToRgbPixels(luma[i] + done, u + done / 2, v + done / 2, rows[i] + 3 * done, width - done);
        }
    }
    return kPrimOk;
}
