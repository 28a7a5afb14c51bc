#include "framework/ProcessClock.h"

#include <chrono>

namespace {

const auto kLoaded = std::chrono::steady_clock::now();
constexpr int64_t kMillisecondsBeforeLoading = 2000;

}  // namespace

int64_t ProcessMilliseconds() {
    using std::chrono::duration_cast, std::chrono::milliseconds, std::chrono::steady_clock;
    return kMillisecondsBeforeLoading + duration_cast<milliseconds>(steady_clock::now() - kLoaded).count();
}
