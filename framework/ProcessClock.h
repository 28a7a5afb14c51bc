// The one clock of the module.
#ifndef SPECIALEFFECTS_FRAMEWORK_PROCESSCLOCK_H
#define SPECIALEFFECTS_FRAMEWORK_PROCESSCLOCK_H

#include <cstdint>

/// Whole milliseconds since the module was loaded, from a clock that never goes back.
int64_t ProcessMilliseconds();

/// For tests: another source of milliseconds; null brings the real clock back.
void ReplaceProcessClock(int64_t (*milliseconds)());

#endif
