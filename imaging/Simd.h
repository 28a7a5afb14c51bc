// Hand-written vector code, for the loops in which the compiler's own stays far behind.
//
// A function marked SE_TARGET_AVX2 may use AVX2 and FMA intrinsics whatever the rest of the file is compiled
// for; it stands inside `#if SE_AVX2` and is called when `simd::HasAvx2()`. Beside it there is always a
// portable function with the same results. No lambda with intrinsics goes into such a function: it would not
// inherit the target. SE_TARGET_AVX512VBMI is the same for byte permutations in 512 bits.
#ifndef SPECIALEFFECTS_IMAGING_SIMD_H
#define SPECIALEFFECTS_IMAGING_SIMD_H

// Sanitizer builds keep it, so that its reads and writes are watched as well: it is chosen by a plain test,
// not by the loader.
#if defined(__AVX2__) || (defined(__x86_64__) && defined(__GNUC__) && \
                          (!defined(SE_SINGLE_TARGET) || defined(__SANITIZE_ADDRESS__)))
#define SE_AVX2 1
#include <immintrin.h>
#define SE_TARGET_AVX2 __attribute__((target("avx2,fma")))
#define SE_TARGET_AVX512VBMI __attribute__((target("avx2,fma,avx512f,avx512bw,avx512vl,avx512vbmi")))
#else
#define SE_AVX2 0
#endif

namespace simd {

/// Whether the processor has AVX2 and FMA, and the build may use them.
inline bool HasAvx2() {
#if defined(__AVX2__) && defined(__FMA__)
    return true;
#elif SE_AVX2
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
#else
    return false;
#endif
}

/// Whether the processor has AVX-512 with byte permutations, and the build may use it.
inline bool HasAvx512Vbmi() {
#if defined(__AVX512VBMI__) && defined(__AVX512BW__) && defined(__AVX512VL__)
    return true;
#elif SE_AVX2 && !defined(SE_SINGLE_TARGET)
    return __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vl");
#else
    return false;
#endif
}

}  // namespace simd

#endif
