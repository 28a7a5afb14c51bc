// How far the work is, on one line of the terminal.
#ifndef SPECIALEFFECTS_HOST_PROGRESS_H
#define SPECIALEFFECTS_HOST_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

namespace host {

class Progress {
  public:
    /// `total` is 0 when unknown. Nothing is shown when quiet or when standard error is not a terminal.
    Progress(int64_t total, bool quiet);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void Show(int64_t frames);

  private:
    using Clock = std::chrono::steady_clock;

    int64_t total_;
    bool visible_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point shown_{};
};

/// The line: "[#####.....] 60/120 frames, 30.0 fps, 0:02 left". Without the bar when the terminal has too few
/// columns for it, and cut off where even that is too long: a line that wraps cannot be drawn over.
std::string ProgressLine(int64_t frames, int64_t total, double seconds, size_t columns = 80);

}  // namespace host

#endif
