// Vectors of 16 bytes, for steps that no plain loop expresses: changing the order of bytes, above all.
//
// They are the compilers' generic vectors and need nothing beyond the baseline of any architecture with
// 128-bit vectors. Only orders that such a baseline has instructions for are here: x86-64's interleaves two
// vectors, but has no free permutation of bytes. Arithmetic stays in plain loops, over arrays of a fixed
// size, which the compiler vectorises by itself; what it misses is here too.
#ifndef SPECIALEFFECTS_IMAGING_VECTOR128_H
#define SPECIALEFFECTS_IMAGING_VECTOR128_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/Simd.h"

// Permutations of bytes whose order is known at run time only. SE_PICK says that the architecture has them.
// On x86-64 the baseline does not: functions with them are marked SE_PICK_TARGET and called when
// `vector128::HasPick()`.
#if SE_AVX2
#define SE_PICK 1
#define SE_PICK_TARGET SE_TARGET_AVX2
#elif defined(__aarch64__)
#define SE_PICK 1
#define SE_PICK_TARGET
#include <arm_neon.h>
#elif defined(__wasm_simd128__)
#define SE_PICK 1
#define SE_PICK_TARGET
#include <wasm_simd128.h>
#else
#define SE_PICK 0
#endif

namespace vector128 {

using Bytes = uint8_t __attribute__((vector_size(16)));
using Shorts = int16_t __attribute__((vector_size(16)));
using Words = uint16_t __attribute__((vector_size(16)));
using Ints = int32_t __attribute__((vector_size(16)));
using Longs = uint64_t __attribute__((vector_size(16)));
using Floats = float __attribute__((vector_size(16)));

SE_INLINE Bytes Load(const uint8_t* p) {
    Bytes v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

/// Eight bytes; the upper half is 0.
SE_INLINE Bytes LoadHalf(const uint8_t* p) {
    uint64_t half = 0;
    std::memcpy(&half, p, sizeof half);
    return reinterpret_cast<Bytes>(Longs{half, 0});
}

/// Eight bytes from each of two places.
SE_INLINE Bytes LoadHalves(const uint8_t* low, const uint8_t* high) {
    Longs halves;
    std::memcpy(&halves, low, 8);
    uint64_t upper = 0;
    std::memcpy(&upper, high, 8);
    halves[1] = upper;
    return reinterpret_cast<Bytes>(halves);
}

#if SE_PICK

/// Whether the current level has permutations.
inline bool HasPick() {
    return SE_AVX2 == 0 || simd::HasAvx2();
}

/// from[picks[i]] for picks below 16, and 0 for those with the top bit.
SE_PICK_TARGET SE_INLINE Bytes Pick(Bytes from, Bytes picks) {
#if SE_AVX2
    return reinterpret_cast<Bytes>(
        _mm_shuffle_epi8(reinterpret_cast<__m128i>(from), reinterpret_cast<__m128i>(picks)));
#elif defined(__aarch64__)
    return vqtbl1q_u8(from, picks);
#else
    return reinterpret_cast<Bytes>(
        wasm_i8x16_swizzle(reinterpret_cast<v128_t>(from), reinterpret_cast<v128_t>(picks)));
#endif
}

/// The same with 0 for all picks from 16 on.
SE_PICK_TARGET SE_INLINE Bytes PickOrZero(Bytes from, Bytes picks) {
#if SE_AVX2
    // The others get the top bit.
    return Pick(
        from, reinterpret_cast<Bytes>(_mm_adds_epu8(reinterpret_cast<__m128i>(picks), _mm_set1_epi8(0x70))));
#else
    return Pick(from, picks);
#endif
}

#else

constexpr bool HasPick() {
    return false;
}

#endif

SE_INLINE Shorts LoadShorts(const void* p) {
    Shorts v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

SE_INLINE Floats LoadFloats(const float* p) {
    Floats v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

SE_INLINE void StoreFloats(float* p, Floats v) {
    std::memcpy(p, &v, sizeof v);
}

SE_INLINE void Store(uint8_t* p, Bytes v) {
    std::memcpy(p, &v, sizeof v);
}

/// The lower halves of two vectors: a0 b0 a1 b1 and so on.
SE_INLINE Bytes InterleaveLow(Bytes a, Bytes b) {
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
SE_INLINE Words InterleaveLow(Words a, Words b) {
    return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
}

/// The upper halves.
SE_INLINE Bytes InterleaveHigh(Bytes a, Bytes b) {
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}
SE_INLINE Words InterleaveHigh(Words a, Words b) {
    return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
}

/// The upper half, twice.
SE_INLINE Bytes Upper(Bytes v) {
    const auto halves = reinterpret_cast<Longs>(v);
    return reinterpret_cast<Bytes>(__builtin_shufflevector(halves, halves, 1, 1));
}

/// a[2i] * b[2i] + a[2i + 1] * b[2i + 1]; only four times -32768 is too much.
SE_INLINE Ints DotPairs(Shorts a, Shorts b) {
#if defined(__x86_64__)
    return reinterpret_cast<Ints>(_mm_madd_epi16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#elif defined(__aarch64__)
    return vpaddq_s32(vmull_s16(vget_low_s16(a), vget_low_s16(b)), vmull_high_s16(a, b));
#elif defined(__wasm_simd128__)
    return reinterpret_cast<Ints>(
        wasm_i32x4_dot_i16x8(reinterpret_cast<v128_t>(a), reinterpret_cast<v128_t>(b)));
#else
    Ints sums{};
    for (int i = 0; i < 4; ++i) {
        sums[i] = a[2 * i] * b[2 * i] + a[2 * i + 1] * b[2 * i + 1];
    }
    return sums;
#endif
}

/// Two vectors in one, saturated to 16 bits.
SE_INLINE Shorts Pack(Ints a, Ints b) {
#if defined(__x86_64__)
    return reinterpret_cast<Shorts>(
        _mm_packs_epi32(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#elif defined(__aarch64__)
    return vqmovn_high_s32(vqmovn_s32(a), b);
#elif defined(__wasm_simd128__)
    return reinterpret_cast<Shorts>(
        wasm_i16x8_narrow_i32x4(reinterpret_cast<v128_t>(a), reinterpret_cast<v128_t>(b)));
#else
    Shorts packed{};
    for (int i = 0; i < 4; ++i) {
        packed[i] = static_cast<int16_t>(std::clamp(a[i], -32768, 32767));
        packed[i + 4] = static_cast<int16_t>(std::clamp(b[i], -32768, 32767));
    }
    return packed;
#endif
}

/// Two vectors in one, saturated to 0 to 255.
SE_INLINE Bytes Pack(Shorts a, Shorts b) {
#if defined(__x86_64__)
    return reinterpret_cast<Bytes>(
        _mm_packus_epi16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#elif defined(__aarch64__)
    return vqmovun_high_s16(vqmovun_s16(a), b);
#elif defined(__wasm_simd128__)
    return reinterpret_cast<Bytes>(
        wasm_u8x16_narrow_i16x8(reinterpret_cast<v128_t>(a), reinterpret_cast<v128_t>(b)));
#else
    Bytes packed{};
    for (int i = 0; i < 8; ++i) {
        packed[i] = static_cast<uint8_t>(std::clamp<int16_t>(a[i], 0, 255));
        packed[i + 8] = static_cast<uint8_t>(std::clamp<int16_t>(b[i], 0, 255));
    }
    return packed;
#endif
}

/// Numbers from 0 to 65535 as floats.
SE_INLINE Floats LowToFloats(Words v) {
    return __builtin_convertvector(reinterpret_cast<Ints>(InterleaveLow(v, Words{})), Floats);
}
SE_INLINE Floats HighToFloats(Words v) {
    return __builtin_convertvector(reinterpret_cast<Ints>(InterleaveHigh(v, Words{})), Floats);
}

#if defined(__aarch64__)

/// The channels of 16 packed pixels of three bytes each.
SE_INLINE void SplitPixels(const uint8_t* src, uint8_t* c0, uint8_t* c1, uint8_t* c2) {
    const uint8x16x3_t channels = vld3q_u8(src);
    Store(c0, channels.val[0]);
    Store(c1, channels.val[1]);
    Store(c2, channels.val[2]);
}

/// Packs the channels of 16 pixels to 48 bytes.
SE_INLINE void JoinPixels(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, uint8_t* dst) {
    const uint8x16x3_t channels = {{Load(c0), Load(c1), Load(c2)}};
    vst3q_u8(dst, channels);
}

#else

/// The channels of 16 packed pixels of three bytes each.
SE_INLINE void SplitPixels(const uint8_t* src, uint8_t* c0, uint8_t* c1, uint8_t* c2) {
    Bytes a = Load(src);
    Bytes b = Load(src + 16);
    Bytes c = Load(src + 32);
    // Interleaving the halves of the 48 bytes moves byte p to 2p modulo 47. Done four times that is 16p,
    // which is i for the first channel's byte 3i, 16 + i for the second's and 32 + i for the third's.
    for (int round = 0; round < 4; ++round) {
        const Bytes low = InterleaveLow(a, Upper(b));
        const Bytes middle = InterleaveLow(Upper(a), c);
        c = InterleaveLow(b, Upper(c));
        a = low;
        b = middle;
    }
    Store(c0, a);
    Store(c1, b);
    Store(c2, c);
}

/// Four pixels of four bytes, the last one 0, to 12 bytes; with `spare` 14 may be written.
SE_INLINE void StorePixels(uint8_t* dst, Words pixels, bool spare) {
    static_assert(std::endian::native == std::endian::little);
    const Longs pairs = reinterpret_cast<Longs>(pixels);
    const Longs joined = (pairs & 0xffffff) | (pairs >> 8 & 0xffffff000000);
    const uint64_t first = joined[0];
    const uint64_t second = joined[1];
    std::memcpy(dst, &first, 8);
    std::memcpy(dst + 6, &second, spare ? 8 : 6);
}

/// Packs the channels of 16 pixels to 48 bytes.
SE_INLINE void JoinPixels(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, uint8_t* dst) {
    const Bytes a = Load(c0);
    const Bytes b = Load(c1);
    const Bytes c = Load(c2);
    const Bytes zero{};
    const auto lowAB = reinterpret_cast<Words>(InterleaveLow(a, b));
    const auto highAB = reinterpret_cast<Words>(InterleaveHigh(a, b));
    const auto lowC = reinterpret_cast<Words>(InterleaveLow(c, zero));
    const auto highC = reinterpret_cast<Words>(InterleaveHigh(c, zero));
    StorePixels(dst, InterleaveLow(lowAB, lowC), true);
    StorePixels(dst + 12, InterleaveHigh(lowAB, lowC), true);
    StorePixels(dst + 24, InterleaveLow(highAB, highC), true);
    StorePixels(dst + 36, InterleaveHigh(highAB, highC), false);
}

#endif

}  // namespace vector128

#endif
