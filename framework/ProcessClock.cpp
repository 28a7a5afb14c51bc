#include "framework/ProcessClock.h"

#include <atomic>
#include <chrono>

namespace {

const auto kLoaded = std::chrono::steady_clock::now();
constexpr int64_t kMillisecondsBeforeLoading = 2000;
std::atomic<int64_t (*)()> replacement = nullptr;

}  // namespace

int64_t ProcessMilliseconds() {
    if (const auto milliseconds = replacement.load()) return milliseconds();
    using std::chrono::duration_cast, std::chrono::milliseconds, std::chrono::steady_clock;
    return kMillisecondsBeforeLoading + duration_cast<milliseconds>(steady_clock::now() - kLoaded).count();
}

void ReplaceProcessClock(int64_t (*milliseconds)()) {
    replacement = milliseconds;
}
