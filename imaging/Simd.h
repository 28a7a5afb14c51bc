// Hand-written vector code, for loops where the compiler's own is far slower.
//
// A function marked SE_TARGET_AVX2 may use AVX2 and FMA intrinsics, independent of the flags of its file. It
// is defined inside `#if SE_AVX2` and called when `simd::HasAvx2()`; a portable function with the same
// results always exists. Lambdas in it must not use intrinsics: they do not inherit the target.
// SE_TARGET_AVX512VBMI is the same for 512-bit byte permutations.
#ifndef SPECIALEFFECTS_IMAGING_SIMD_H
#define SPECIALEFFECTS_IMAGING_SIMD_H

#include "imaging/Cpu.h"

#if defined(__x86_64__)
#define SE_AVX2 1
#include <immintrin.h>
#define SE_TARGET_AVX2 __attribute__((target("avx2,fma")))
#define SE_TARGET_AVX512VBMI __attribute__((target("avx2,fma,avx512f,avx512bw,avx512vl,avx512vbmi")))
#else
#define SE_AVX2 0
#endif

namespace simd {

inline bool HasAvx2() {
    return cpu::Current() >= cpu::Level::kAvx2;
}

}  // namespace simd

#endif
