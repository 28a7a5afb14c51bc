// One source, several processor generations.
//
// SE_MULTIVERSION in front of a function lets the compiler build it for the baseline and for later
// generations, and choose when the library is loaded. The code is the same for all of them; so are the
// results. Where one generation was asked for at build time, and in sanitizer builds, there is one version.
//
// Use it on free functions that hold a frame-sized loop. What the loop calls must be inlined into it: helpers
// are SE_INLINE. A lambda may be left out of line, compiled once, for the baseline, and shared by all
// versions: do not hand a loop over as a lambda, and keep those that a loop calls to an expression.
#ifndef SPECIALEFFECTS_IMAGING_MULTIVERSION_H
#define SPECIALEFFECTS_IMAGING_MULTIVERSION_H

#if !defined(__x86_64__) || !defined(__linux__) || defined(SE_SINGLE_TARGET)
/// Out of line, as versions are, so that a loop is compiled alike in all builds.
#define SE_MULTIVERSION __attribute__((noinline))
#elif defined(__clang__)
/// Clang 14 takes an `arch` for one processor model, not for all that can do as much; a feature it tests.
#define SE_MULTIVERSION __attribute__((target_clones("default", "avx2")))
#else
#define SE_MULTIVERSION __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#endif

#define SE_INLINE inline __attribute__((always_inline))

/// A pointer that aliases no other in its scope.
#define SE_RESTRICT __restrict

#endif
