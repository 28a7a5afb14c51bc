#include "Progress.h"

#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "Terminal.h"

namespace host {
Progress::Progress(int64_t total, bool quiet)
    : total_(total), visible_(!quiet && OnTerminal(STDERR_FILENO) && HasEscapes()) {}

Progress::~Progress() {
    if (visible_) fmt::print(stderr, "\r\033[K");
}

void Progress::Show(int64_t frames) {
    if (!visible_) return;
    constexpr std::chrono::milliseconds kInterval(100);
    const auto now = Clock::now();
    if (now - shown_ < kInterval && frames != total_) return;
    shown_ = now;
    const std::chrono::duration<double> passed = now - start_;
    fmt::print(stderr, "\r{}\033[K", ProgressLine(frames, total_, passed.count(), TerminalColumns()));
    std::fflush(stderr);
}

std::string ProgressLine(int64_t frames, int64_t total, double seconds, size_t columns) {
    const double rate = seconds > 0 ? static_cast<double>(frames) / seconds : 0;
    if (total <= 0) return fmt::format("{} frames, {:.1f} fps", frames, rate).substr(0, columns);

    std::string line = fmt::format("{}/{} frames, {:.1f} fps", frames, total, rate);
    if (rate > 0) {
        const auto left =
            static_cast<int64_t>(static_cast<double>(std::max<int64_t>(total - frames, 0)) / rate);
        line += fmt::format(", {}:{:02} left", left / 60, left % 60);
    }
    constexpr int64_t kCells = 30;
    constexpr size_t kBarColumns = kCells + 3;  // with its brackets and a blank
    if (line.size() + kBarColumns > columns) return line.substr(0, columns);
    const int64_t filled = std::clamp<int64_t>(frames * kCells / total, 0, kCells);
    return fmt::format("[{:.<{}}] {}", std::string(static_cast<size_t>(filled), '#'), kCells, line);
}

}  // namespace host
