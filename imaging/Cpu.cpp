#include "imaging/Cpu.h"

#include <algorithm>
#include <array>

namespace cpu {
namespace {

struct Processor {
    std::array<Level, 3> levels{};
    size_t count = 0;
    bool vbmi = false;

    void Add(Level level) { levels[count++] = level; }
};

Processor Ask() {
    Processor processor;
    processor.Add(Level::kBaseline);
#if defined(__x86_64__)
    __builtin_cpu_init();
    // Tests each feature of x86-64-v3 and v4 that compilers can name and use in loops, including the
    // operating system's support for the registers.
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                      __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                        __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
                        __builtin_cpu_supports("avx512vl");
    if (avx2) {
        processor.Add(Level::kAvx2);
    }
    if (avx512) {
        processor.Add(Level::kAvx512);
        processor.vbmi = __builtin_cpu_supports("avx512vbmi");
    }
#endif
    return processor;
}

const Processor& ThisProcessor() {
    static const Processor processor = Ask();
    return processor;
}

}  // namespace

namespace internal {

constinit std::atomic<int> current{-1};

int Detect() {
    // Keep a limit that another thread has just set.
    int level = -1;
    const int highest = static_cast<int>(Levels().back());
    return current.compare_exchange_strong(level, highest, std::memory_order_relaxed) ? highest : level;
}

}  // namespace internal

std::span<const Level> Levels() {
    const Processor& processor = ThisProcessor();
    return {processor.levels.data(), processor.count};
}

const char* Name(Level level) {
    static constexpr std::array kNames{"baseline", "vector128", "avx2", "avx512"};
    return kNames[static_cast<size_t>(level)];
}

void Limit(Level highest) {
    Level level = Level::kBaseline;
    for (const Level candidate : Levels()) {
        level = candidate <= highest ? candidate : level;
    }
    internal::current.store(static_cast<int>(level), std::memory_order_relaxed);
}

bool HasVbmi() {
    return Current() >= Level::kAvx512 && ThisProcessor().vbmi;
}

}  // namespace cpu
