// A stopwatch for the work of one frame.
#ifndef SPECIALEFFECTS_IMAGING_FRAMETIMER_H
#define SPECIALEFFECTS_IMAGING_FRAMETIMER_H

#include <chrono>
#include <cstdint>

/// Two clock readings, in ticks of the steady clock. For builds that measure; the module does not use it.
class CFrameTimer {
  public:
    void Start() { started = Now(); }
    void Stop() { stopped = Now(); }
    /// Nothing: the place where a build that measures would print.
    void Report() const {}

    int64_t started = 0;
    int64_t stopped = 0;

  private:
    static int64_t Now() { return std::chrono::steady_clock::now().time_since_epoch().count(); }
};

#endif
