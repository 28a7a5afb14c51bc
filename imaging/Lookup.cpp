#include "imaging/Lookup.h"

#include "imaging/PerLevel.h"
#include "imaging/Simd.h"
#include "imaging/Vector128.h"

namespace {

void LookupEach(const uint8_t* table, const uint8_t* src, uint8_t* dst, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = table[src[i]];
    }
}

#if SE_AVX2

/// A byte shuffle looks 16 entries up and gives 0 for an index with the sign bit, so 16 shuffles cover the
/// table. What is shuffled are differences: after `steps[k]` is added (exclusive or) the sum is block k's
/// entry. An index starts in its own block and goes down by 16 a step; below 0 it adds nothing more. The
/// upper half of the indices runs through its own eight steps, and the saturating subtraction keeps each half
/// out of the other's.
struct ShuffleSteps {
    __m256i lower[8];
    __m256i upper[8];
};

SE_TARGET_AVX2 SE_INLINE __m256i TableBlock(const uint8_t* table, int block) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table + 16 * block)));
}

SE_TARGET_AVX2 SE_INLINE void LookupVectors(const ShuffleSteps& steps, __m256i& a, __m256i& b) {
    const __m256i sixteen = _mm256_set1_epi8(16);
    const __m256i sign = _mm256_set1_epi8(-128);
    __m256i lowA = a;
    __m256i lowB = b;
    __m256i highA = _mm256_xor_si256(a, sign);
    __m256i highB = _mm256_xor_si256(b, sign);
    __m256i sumA = _mm256_setzero_si256();
    __m256i sumB = _mm256_setzero_si256();
#pragma GCC unroll 8
    for (int k = 0; k < 8; ++k) {
        sumA = _mm256_xor_si256(sumA, _mm256_shuffle_epi8(steps.lower[k], lowA));
        sumB = _mm256_xor_si256(sumB, _mm256_shuffle_epi8(steps.lower[k], lowB));
        sumA = _mm256_xor_si256(sumA, _mm256_shuffle_epi8(steps.upper[k], highA));
        sumB = _mm256_xor_si256(sumB, _mm256_shuffle_epi8(steps.upper[k], highB));
        lowA = _mm256_subs_epi8(lowA, sixteen);
        lowB = _mm256_subs_epi8(lowB, sixteen);
        highA = _mm256_subs_epi8(highA, sixteen);
        highB = _mm256_subs_epi8(highB, sixteen);
    }
    a = sumA;
    b = sumB;
}

SE_TARGET_AVX2 void LookupAvx2(const uint8_t* table, const uint8_t* src, uint8_t* dst, size_t count) {
    ShuffleSteps steps;
    steps.lower[0] = TableBlock(table, 0);
    steps.upper[0] = TableBlock(table, 8);
    for (int k = 1; k < 8; ++k) {
        steps.lower[k] = _mm256_xor_si256(TableBlock(table, k), TableBlock(table, k - 1));
        steps.upper[k] = _mm256_xor_si256(TableBlock(table, k + 8), TableBlock(table, k + 7));
    }
    size_t i = 0;
    for (; i + 64 <= count; i += 64) {
        __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + i));
        __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + i + 32));
        LookupVectors(steps, a, b);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i), a);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i + 32), b);
    }
    LookupEach(table, src + i, dst + i, count - i);
}

/// Two permutations of 128 entries each; the index's top bit chooses between them.
SE_TARGET_AVX512VBMI void LookupAvx512Vbmi(const uint8_t* table, const uint8_t* src, uint8_t* dst,
                                           size_t count) {
    const __m512i table0 = _mm512_loadu_si512(table);
    const __m512i table1 = _mm512_loadu_si512(table + 64);
    const __m512i table2 = _mm512_loadu_si512(table + 128);
    const __m512i table3 = _mm512_loadu_si512(table + 192);
    for (size_t i = 0; i < count; i += 64) {
        const size_t left = count - i;
        const __mmask64 mask = left < 64 ? (__mmask64{1} << left) - 1 : ~__mmask64{0};
        const __m512i index = _mm512_maskz_loadu_epi8(mask, src + i);
        const __m512i lower = _mm512_permutex2var_epi8(table0, index, table1);
        const __m512i upper = _mm512_permutex2var_epi8(table2, index, table3);
        const __m512i entries = _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), lower, upper);
        _mm512_mask_storeu_epi8(dst + i, mask, entries);
    }
}

#elif defined(__aarch64__)

/// A quarter of the table is looked up at a time; an index outside it leaves what is there.
void LookupNeon(const uint8_t* table, const uint8_t* src, uint8_t* dst, size_t count) {
    const uint8x16x4_t quarters[4] = {vld1q_u8_x4(table), vld1q_u8_x4(table + 64), vld1q_u8_x4(table + 128),
                                      vld1q_u8_x4(table + 192)};
    const uint8x16_t step = vdupq_n_u8(64);
    size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        uint8x16_t index = vld1q_u8(src + i);
        uint8x16_t entries = vqtbl4q_u8(quarters[0], index);
#pragma GCC unroll 3
        for (int k = 1; k < 4; ++k) {
            index = vsubq_u8(index, step);
            entries = vqtbx4q_u8(entries, quarters[k], index);
        }
        vst1q_u8(dst + i, entries);
    }
    LookupEach(table, src + i, dst + i, count - i);
}

#endif

}  // namespace

void LookupBytes(const uint8_t* table, const uint8_t* src, uint8_t* dst, size_t count) {
#if SE_AVX2
    if (cpu::HasVbmi()) {
        LookupAvx512Vbmi(table, src, dst, count);
        return;
    }
    if (simd::HasAvx2()) {
        LookupAvx2(table, src, dst, count);
        return;
    }
#elif defined(__aarch64__)
    LookupNeon(table, src, dst, count);
    return;
#endif
    LookupEach(table, src, dst, count);
}

void LookupBytes(const uint8_t* table, uint8_t* data, size_t count) {
    LookupBytes(table, data, data, count);
}
