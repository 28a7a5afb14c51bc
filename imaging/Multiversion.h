// One source, several processor generations.
//
// SE_MULTIVERSION in front of a function lets the compiler build it for the baseline and for later
// generations, and choose when the library is loaded. The code is the same for all of them; so are the
// results. Where one generation was asked for at build time, and in sanitizer builds, there is one version.
//
// Use it on free functions that hold a frame-sized loop. What the loop calls must be inlined into it: helpers
// are SE_INLINE, and lambdas handed to an SE_INLINE template are too small to stay out of line.
//
// A loop that the compiler does not make fast by itself is written out with intrinsics for a generation,
// beside the plain one for all others, and the caller chooses:
//
//     #if SE_X86_64
//     SE_TARGET_AVX2 void BlurRowAvx2(...) { _mm256_... }
//     #endif
//
//     if (cpu::HasAvx2()) { BlurRowAvx2(...); } else { BlurRow(...); }
//
// Helpers of such a function carry its target too, and it holds no lambdas, which do not inherit the target.
#ifndef SPECIALEFFECTS_IMAGING_MULTIVERSION_H
#define SPECIALEFFECTS_IMAGING_MULTIVERSION_H

#define SE_INLINE inline __attribute__((always_inline))

/// A pointer that aliases no other in its scope.
#define SE_RESTRICT __restrict

#if defined(__x86_64__) && defined(__linux__) && !defined(SE_SINGLE_TARGET)
#define SE_MULTIVERSION __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#else
/// Out of line, as versions are, so that a loop is compiled alike in all builds.
#define SE_MULTIVERSION __attribute__((noinline))
#endif

#if defined(__x86_64__)
#include <immintrin.h>
#define SE_X86_64 1
#define SE_TARGET_AVX2 __attribute__((target("avx2,fma")))
#define SE_TARGET_AVX512VBMI __attribute__((target("avx2,fma,avx512f,avx512bw,avx512vl,avx512vbmi")))
#else
#define SE_X86_64 0
#endif

/// Whether functions for a generation may be called. Fixed at build time where one generation was asked for.
namespace cpu {

#if SE_X86_64 && !defined(SE_SINGLE_TARGET)

inline bool HasAvx2() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
}

inline bool HasAvx512Vbmi() {
    return __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vl");
}

#else

#if defined(__AVX2__) && defined(__FMA__)
constexpr bool HasAvx2() {
    return true;
}
#else
constexpr bool HasAvx2() {
    return false;
}
#endif

#if defined(__AVX512VBMI__) && defined(__AVX512BW__) && defined(__AVX512VL__)
constexpr bool HasAvx512Vbmi() {
    return true;
}
#else
constexpr bool HasAvx512Vbmi() {
    return false;
}
#endif

#endif

}  // namespace cpu

#endif
