// Processor levels: what hot loops are compiled for, and which of them runs.
//
// A loop that exists at several levels is picked through `cpu::Current()` on each call, either by `AtLevel`
// (imaging/PerLevel.h) or, where vector code is written by hand, by comparing levels. All levels give the
// same results.
#ifndef SPECIALEFFECTS_IMAGING_CPU_H
#define SPECIALEFFECTS_IMAGING_CPU_H

#include <atomic>
#include <span>

namespace cpu {

/// In rising order. A level includes those below it that the architecture has.
enum class Level : int {
    kBaseline,   ///< what the build's compiler flags allow everywhere
    kVector128,  ///< 128-bit vectors that are not part of the baseline, on architectures other than x86-64
    kAvx2,       ///< x86-64-v3: AVX2, FMA, BMI
    kAvx512,     ///< x86-64-v4: AVX-512 F, BW, CD, DQ, VL
};

/// The levels that this processor runs and this build has code for, in rising order.
std::span<const Level> Levels();

const char* Name(Level level);

/// Keeps loops at `highest` or below, in all threads, until the next call. For tests; loops that are running
/// on other threads may finish at the level they started with.
void Limit(Level highest);

namespace internal {
/// A Level, or -1 before the processor has been asked.
extern std::atomic<int> current;
int Detect();
}  // namespace internal

/// The current level: the highest of Levels() unless limited.
inline Level Current() {
    const int level = internal::current.load(std::memory_order_relaxed);
    return static_cast<Level>(level >= 0 ? level : internal::Detect());
}

/// Whether permutations of bytes across 512-bit vectors (AVX-512 VBMI), which no level includes, may be used.
bool HasVbmi();

}  // namespace cpu

#endif
