// Timing for the benchmarks: processor time of the thread, medians, and a memcpy to compare with.
#ifndef SPECIALEFFECTS_BENCH_TIMING_H
#define SPECIALEFFECTS_BENCH_TIMING_H

#include <time.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace bench {

/// Processor time of this thread, which other programs do not lengthen.
inline double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Seconds that a call takes.
template <class Action>
double Timed(const Action& action) {
    const double start = ThreadSeconds();
    action();
    asm volatile("" : : : "memory");  // all that it wrote is wanted
    return ThreadSeconds() - start;
}

/// Of at least one value.
inline double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Copies a block into another of its own, for a time to compare with.
class Copy {
  public:
    explicit Copy(size_t size) : to_(size) {}

    double Time(const uint8_t* from) {
        return Timed([&] { std::memcpy(to_.data(), from, to_.size()); });
    }

  private:
    std::vector<uint8_t> to_;
};

}  // namespace bench

#endif
