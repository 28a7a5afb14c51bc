// One source, several processor levels.
//
// A frame-sized loop that the compiler vectorises by itself is written once, as an SE_INLINE free function of
// plain types, and called as
//
//     AtLevel<AddRow>(src, dst, count);
//
// which compiles it for each level and runs the current one. Calling the function directly compiles it into
// the caller, for the baseline.
//
// What the loop calls must be inlined into it: helpers are SE_INLINE, or small enough that the compiler
// inlines them anyway. Vector types (`vector_size`) wider than the baseline's registers are split before
// inlining: such code needs the target on the function that contains it (imaging/Simd.h).
#ifndef SPECIALEFFECTS_IMAGING_PERLEVEL_H
#define SPECIALEFFECTS_IMAGING_PERLEVEL_H

#include "imaging/Cpu.h"

#define SE_INLINE inline __attribute__((always_inline))

/// A pointer that aliases no other in its scope.
#define SE_RESTRICT __restrict

// A build for a processor with AVX has nothing to choose: its baseline is that processor.
#if defined(__x86_64__) && !defined(__AVX__)
#define SE_X86_LEVELS 1
#else
#define SE_X86_LEVELS 0
#endif

namespace cpu::internal {

template <auto Body>
struct PerLevel;

/// The levels are functions of their own, so that a loop is compiled alike wherever it is called.
template <typename Result, typename... Args, Result (*Body)(Args...)>
struct PerLevel<Body> {
    static Result Call(Args... args) {
#if SE_X86_LEVELS
        const Level level = Current();
        if (level == Level::kAvx512) {
            return Avx512(args...);
        }
        if (level == Level::kAvx2) {
            return Avx2(args...);
        }
#endif
        return Baseline(args...);
    }

  private:
    [[gnu::noinline]] static Result Baseline(Args... args) {
        return Body(args...);
    }
#if SE_X86_LEVELS
    [[gnu::noinline, gnu::target("arch=x86-64-v3")]] static Result Avx2(Args... args) {
        return Body(args...);
    }
    [[gnu::noinline, gnu::target("arch=x86-64-v4")]] static Result Avx512(Args... args) {
        return Body(args...);
    }
#endif
};

}  // namespace cpu::internal

/// An SE_INLINE function, compiled for each processor level; a call runs it at the current level.
template <auto Body>
inline constexpr auto* AtLevel = &cpu::internal::PerLevel<Body>::Call;

#endif
