// One-dimensional kernels along columns and rows. The two are one filter: the pixels under the taps are a row
// apart or a pixel.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimDivide.h"
#include "imaging/PrimRow.h"
#include "imaging/Simd.h"
#include "imaging/Vector128.h"

using prim::CheckAnchor;
using prim::CheckPointers;
using prim::CheckSize;
using prim::CheckStep;
using prim::FirstError;
using prim::kStrip;
using prim::Row;

namespace {

/// A region to filter from one image into another.
struct Region {
    const uint8_t* src;
    ptrdiff_t srcStep;
    uint8_t* dst;
    ptrdiff_t dstStep;
    ptrdiff_t width;
    ptrdiff_t height;
};

/// Taps and their offsets: tap k weights the pixel at `first` - k * `distance` from the filtered one.
struct Kernel {
    std::span<const int32_t> taps;
    ptrdiff_t first;
    ptrdiff_t distance;

    ptrdiff_t offset(size_t k) const { return first - static_cast<ptrdiff_t>(k) * distance; }

    /// The largest magnitude of a weighted sum of bytes.
    double reach() const {
        double sum = 0;
        for (const int32_t tap : taps) {
            sum += 255 * std::abs(static_cast<double>(tap));
        }
        return sum;
    }
};

bool FitIn16Bits(std::span<const int32_t> taps) {
    return std::ranges::all_of(taps, [](int32_t tap) { return tap == static_cast<int16_t>(tap); });
}

// ---- portable --------------------------------------------------------------------------------------------

struct DoubleQuotient {
    double reciprocal;

    template <typename Sum>
    SE_INLINE uint8_t operator()(Sum sum) const {
        return prim::Quotient(static_cast<double>(sum), reciprocal);
    }
};

/// The taps fit `Tap`, the weighted sums `Sum`. Products of 16 bits are the quickest.
template <typename Sum, typename Tap, typename Quotient>
SE_INLINE void FilterPlainly(const Region& region, const Kernel& kernel, Quotient quotient) {
    for (const auto [begin, end] : prim::Strips(region.width)) {
        const ptrdiff_t count = end - begin;
        Sum sums[kStrip];
        for (ptrdiff_t y = 0; y < region.height; ++y) {
            const uint8_t* const from = Row(region.src, region.srcStep, y) + begin;
            std::fill_n(sums, count, Sum{0});
            for (size_t k = 0; k < kernel.taps.size(); ++k) {
                const auto tap = static_cast<Tap>(kernel.taps[k]);
                const uint8_t* const pixels = from + kernel.offset(k);
                for (ptrdiff_t x = 0; x < count; ++x) {
                    sums[x] += static_cast<Sum>(tap * static_cast<Tap>(pixels[x]));
                }
            }
            uint8_t* const out = Row(region.dst, region.dstStep, y) + begin;
            for (ptrdiff_t x = 0; x < count; ++x) {
                out[x] = quotient(sums[x]);
            }
        }
    }
}

// ---- in blocks -------------------------------------------------------------------------------------------
//
// The pixels of a pair of taps are interleaved and widened, so that one instruction multiplies and adds two
// of them. The final packing restores the order of the sums.

constexpr size_t kMaxPairs = 32;

/// Taps in pairs of 16 bits, as the multiplication takes them, and the offsets of their pixels. An odd last
/// tap is paired with a 0.
struct TapPairs {
    size_t count = 0;
    std::array<int32_t, kMaxPairs> taps;
    std::array<std::array<ptrdiff_t, 2>, kMaxPairs> offsets;
};

/// For up to twice kMaxPairs taps of 16 bits.
TapPairs PairTaps(const Kernel& kernel) {
    TapPairs pairs;
    for (size_t k = 0; k < kernel.taps.size(); k += 2) {
        const size_t next = std::min(k + 1, kernel.taps.size() - 1);
        const int32_t low = kernel.taps[k];
        const int32_t high = next == k ? 0 : kernel.taps[next];
        pairs.taps[pairs.count] =
            static_cast<int32_t>(static_cast<uint32_t>(high) << 16 | (static_cast<uint32_t>(low) & 0xffff));
        pairs.offsets[pairs.count] = {kernel.offset(k), kernel.offset(next)};
        ++pairs.count;
    }
    return pairs;
}

constexpr ptrdiff_t kBlock = 16;  ///< pixels that are filtered at once

SE_INLINE vector128::Ints Quotients(vector128::Ints sums, prim::SingleQuotient quotient) {
    const auto raised =
        __builtin_convertvector(sums, vector128::Floats) * quotient.reciprocal + quotient.bias;
    return __builtin_convertvector(raised, vector128::Ints);
}

SE_INLINE void FilterBlock(const uint8_t* src, uint8_t* dst, const TapPairs& pairs,
                           prim::SingleQuotient quotient) {
    using namespace vector128;
    const auto widened = [](Bytes bytes) { return reinterpret_cast<Shorts>(bytes); };
    const Bytes zero{};
    Ints sums0{};
    Ints sums1{};
    Ints sums2{};
    Ints sums3{};
    for (size_t i = 0; i < pairs.count; ++i) {
        const auto taps = reinterpret_cast<Shorts>(Ints{} + pairs.taps[i]);
        const Bytes a = Load(src + pairs.offsets[i][0]);
        const Bytes b = Load(src + pairs.offsets[i][1]);
        const Bytes low = InterleaveLow(a, b);
        const Bytes high = InterleaveHigh(a, b);
        sums0 += DotPairs(widened(InterleaveLow(low, zero)), taps);
        sums1 += DotPairs(widened(InterleaveHigh(low, zero)), taps);
        sums2 += DotPairs(widened(InterleaveLow(high, zero)), taps);
        sums3 += DotPairs(widened(InterleaveHigh(high, zero)), taps);
    }
    Store(dst, Pack(Pack(Quotients(sums0, quotient), Quotients(sums1, quotient)),
                    Pack(Quotients(sums2, quotient), Quotients(sums3, quotient))));
}

/// For regions at least a block wide. The last block of a row may overlap the one before.
void FilterInBlocks(const Region& region, const TapPairs& pairs, prim::SingleQuotient quotient) {
    for (ptrdiff_t y = 0; y < region.height; ++y) {
        const uint8_t* const src = Row(region.src, region.srcStep, y);
        uint8_t* const dst = Row(region.dst, region.dstStep, y);
        for (ptrdiff_t x = 0; x < region.width; x += kBlock) {
            const ptrdiff_t at = std::min(x, region.width - kBlock);
            FilterBlock(src + at, dst + at, pairs, quotient);
        }
    }
}

#if SE_AVX2

constexpr ptrdiff_t kWideBlock = 32;

SE_TARGET_AVX2 inline __m256i Quotients(__m256i sums, __m256 reciprocal, __m256 bias) {
    return _mm256_cvttps_epi32(_mm256_add_ps(_mm256_mul_ps(_mm256_cvtepi32_ps(sums), reciprocal), bias));
}

SE_TARGET_AVX2 inline __m256i AddWeighted(__m256i sums, __m256i pixels, __m256i taps) {
    return _mm256_add_epi32(sums, _mm256_madd_epi16(pixels, taps));
}

SE_TARGET_AVX2 inline __m256i LoadBlock(const uint8_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

SE_TARGET_AVX2 inline void FilterWideBlock(const uint8_t* src, uint8_t* dst, const TapPairs& pairs,
                                           __m256 reciprocal, __m256 bias) {
    const __m256i zero = _mm256_setzero_si256();
    __m256i sums[4] = {zero, zero, zero, zero};
    for (size_t i = 0; i < pairs.count; ++i) {
        const __m256i taps = _mm256_set1_epi32(pairs.taps[i]);
        const __m256i a = LoadBlock(src + pairs.offsets[i][0]);
        const __m256i b = LoadBlock(src + pairs.offsets[i][1]);
        const __m256i low = _mm256_unpacklo_epi8(a, b);
        const __m256i high = _mm256_unpackhi_epi8(a, b);
        sums[0] = AddWeighted(sums[0], _mm256_unpacklo_epi8(low, zero), taps);
        sums[1] = AddWeighted(sums[1], _mm256_unpackhi_epi8(low, zero), taps);
        sums[2] = AddWeighted(sums[2], _mm256_unpacklo_epi8(high, zero), taps);
        sums[3] = AddWeighted(sums[3], _mm256_unpackhi_epi8(high, zero), taps);
    }
    const __m256i low =
        _mm256_packs_epi32(Quotients(sums[0], reciprocal, bias), Quotients(sums[1], reciprocal, bias));
    const __m256i high =
        _mm256_packs_epi32(Quotients(sums[2], reciprocal, bias), Quotients(sums[3], reciprocal, bias));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst), _mm256_packus_epi16(low, high));
}

/// For regions at least a wide block wide.
SE_TARGET_AVX2 void FilterWithAvx2(const Region& region, const TapPairs& pairs,
                                   prim::SingleQuotient quotient) {
    const __m256 reciprocal = _mm256_set1_ps(quotient.reciprocal);
    const __m256 bias = _mm256_set1_ps(quotient.bias);
    for (ptrdiff_t y = 0; y < region.height; ++y) {
        const uint8_t* const src = Row(region.src, region.srcStep, y);
        uint8_t* const dst = Row(region.dst, region.dstStep, y);
        for (ptrdiff_t x = 0; x < region.width; x += kWideBlock) {
            const ptrdiff_t at = std::min(x, region.width - kWideBlock);
            FilterWideBlock(src + at, dst + at, pairs, reciprocal, bias);
        }
    }
}

#endif

/// For small taps and a quotient in single precision. Returns false if the kernel or the divisor does not
/// allow it.
bool FilterFast(const Region& region, const Kernel& kernel, int32_t divisor) {
    if (!FitIn16Bits(kernel.taps) || kernel.reach() > prim::SingleQuotient::kMaxSum) {
        return false;
    }
    const std::optional<prim::SingleQuotient> quotient = prim::SingleQuotient::By(divisor);
    if (!quotient) {
        return false;
    }
    if (region.width >= kBlock && kernel.taps.size() <= 2 * kMaxPairs) {
        const TapPairs pairs = PairTaps(kernel);
#if SE_AVX2
        if (simd::HasAvx2() && region.width >= kWideBlock) {
            FilterWithAvx2(region, pairs, *quotient);
            return true;
        }
#endif
        FilterInBlocks(region, pairs, *quotient);
        return true;
    }
    FilterPlainly<int32_t, int16_t>(region, kernel, *quotient);
    return true;
}

PrimStatus Filter(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                  int32_t height, const int32_t* taps, int32_t size, int32_t anchor, int32_t divisor,
                  ptrdiff_t distance) {
    if (const PrimStatus status = FirstError(
            CheckPointers(src, dst), CheckPointers(taps), CheckSize(width, height),
            size < 1 ? kPrimSizeError : kPrimOk, CheckStep(srcStep, width), CheckStep(dstStep, width),
            CheckAnchor(anchor, size), divisor == 0 ? kPrimDivisorError : kPrimOk)) {
        return status;
    }
    const Region region = {src, srcStep, dst, dstStep, width, height};
    const Kernel kernel = {{taps, static_cast<size_t>(size)}, anchor * distance, distance};
    if (FilterFast(region, kernel, divisor)) {
        return kPrimOk;
    }
    const bool fits32Bits = kernel.reach() <= std::numeric_limits<int32_t>::max();
    const auto filter = fits32Bits ? AtLevel<FilterPlainly<int32_t, int32_t, DoubleQuotient>>
                                   : AtLevel<FilterPlainly<int64_t, int64_t, DoubleQuotient>>;
    filter(region, kernel, {prim::SingleReciprocal(divisor)});
    return kPrimOk;
}

}  // namespace

PrimStatus PrimFilterColumn8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                int32_t width, int32_t height, const int32_t* kernel, int32_t kernelSize,
                                int32_t anchor, int32_t divisor) {
    return Filter(src, srcStep, dst, dstStep, width, height, kernel, kernelSize, anchor, divisor, srcStep);
}

PrimStatus PrimFilterRow8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                             int32_t width, int32_t height, const int32_t* kernel, int32_t kernelSize,
                             int32_t anchor, int32_t divisor) {
    return Filter(src, srcStep, dst, dstStep, width, height, kernel, kernelSize, anchor, divisor, 1);
}
