// Hand-written vector code, for the loops in which the compiler's own stays far behind.
//
// A function marked SE_TARGET_AVX2 may use AVX2 and FMA intrinsics whatever the rest of the file is compiled
// for; it stands inside `#if SE_AVX2` and is called when `simd::HasAvx2()`. Beside it there is always a
// portable function with the same results. No lambda with intrinsics goes into such a function: it would not
// inherit the target. SE_TARGET_AVX512VBMI is the same for byte permutations in 512 bits.
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
