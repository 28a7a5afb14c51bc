// What long runs have in common: how long they take, and the memory that they watch.
#ifndef SPECIALEFFECTS_TESTS_SOAK_SOAK_H
#define SPECIALEFFECTS_TESTS_SOAK_SOAK_H

#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

/// A positive number from the environment, or `usual`.
inline size_t SoakSetting(const char* name, size_t usual) {
    const char* const text = std::getenv(name);
    const unsigned long value = text != nullptr ? std::strtoul(text, nullptr, 10) : 0;
    return value > 0 ? value : usual;
}

/// Bytes of the heap that are in use, the allocator's caches included.
inline int64_t HeapBytes() {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<int64_t>(heap.uordblks + heap.hblkhd);
}

/// Bytes of the process's memory that are in RAM.
inline int64_t ResidentBytes() {
    int64_t all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

/// Memory may settle at the start of a run, and does not grow after that.
class LevelMemory {
  public:
    LevelMemory() { Settled(); }
    void Settled() {
        heap_ = HeapBytes();
        resident_ = ResidentBytes();
    }

    /// Prints both, in kilobytes, and expects that they have grown by less than so many bytes.
    void ExpectLevel(const std::string& what, int64_t heapLimit = 32768,
                     int64_t residentLimit = 262144) const {
        const int64_t heap = HeapBytes(), resident = ResidentBytes();
        std::printf("%-24s heap %7.1f to %7.1f KB, resident %6.0f to %6.0f KB\n", what.c_str(), Kilo(heap_),
                    Kilo(heap), Kilo(resident_), Kilo(resident));
        std::fflush(stdout);
        EXPECT_LT(heap - heap_, heapLimit) << what;
        EXPECT_LT(resident - resident_, residentLimit) << what;
    }

  private:
    static double Kilo(int64_t bytes) { return static_cast<double>(bytes) / 1024; }

    int64_t heap_ = 0, resident_ = 0;
};

/// Calls `change` with 0 to `count` - 1, again and again, once a second. What memory there is after two
/// rounds must be enough for all others.
template <class Change>
void ChangeEverySecond(size_t seconds, size_t count, Change change) {
    constexpr int64_t kHeapLimit = 1 << 20, kResidentLimit = 4 << 20;
    LevelMemory memory;
    const auto start = std::chrono::steady_clock::now();
    for (size_t second = 0; second < seconds; ++second) {
        if (second % count == 0 && second > 0) {
            const size_t round = second / count;
            if (round == 2) memory.Settled();
            if (round > 2) memory.ExpectLevel("round " + std::to_string(round), kHeapLimit, kResidentLimit);
        }
        change(second % count);
        std::this_thread::sleep_until(start + std::chrono::seconds(second + 1));
    }
}

#endif
