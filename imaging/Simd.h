// Hand-written vector code, for the loops in which the compiler's own stays far behind.
//
// A function marked SE_TARGET_AVX2 may use AVX2 intrinsics whatever the rest of the file is compiled for; it
// stands inside `#if SE_AVX2` and is called when `simd::HasAvx2()`. Beside it there is always a portable
// function with the same results. No lambda with intrinsics goes into such a function: it would not inherit
// the target.
#ifndef SPECIALEFFECTS_IMAGING_SIMD_H
#define SPECIALEFFECTS_IMAGING_SIMD_H

// Sanitizer builds keep it, so that its reads and writes are watched as well: it is chosen by a plain test,
// not by the loader.
#if defined(__AVX2__) || (defined(__x86_64__) && defined(__GNUC__) && \
                          (!defined(SE_SINGLE_TARGET) || defined(__SANITIZE_ADDRESS__)))
#define SE_AVX2 1
#include <immintrin.h>
#define SE_TARGET_AVX2 __attribute__((target("avx2")))
#else
#define SE_AVX2 0
#endif

namespace simd {

/// Whether the processor has AVX2 and the build may use it.
inline bool HasAvx2() {
#if defined(__AVX2__)
    return true;
#elif SE_AVX2
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

}  // namespace simd

#endif
