// The clock of the process.
#ifndef SPECIALEFFECTS_FRAMEWORK_PROCESSCLOCK_H
#define SPECIALEFFECTS_FRAMEWORK_PROCESSCLOCK_H

#include <cstdint>

/// Whole milliseconds of the process's life, from a clock that never goes back: 2000 when the module is
/// loaded. A host loads it some way into its life; with 2 seconds no effect looks back to before the start.
int64_t ProcessMilliseconds();

#endif
