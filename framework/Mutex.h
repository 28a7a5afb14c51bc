// A mutex, also for targets without threads: there it does nothing.
#ifndef SPECIALEFFECTS_FRAMEWORK_MUTEX_H
#define SPECIALEFFECTS_FRAMEWORK_MUTEX_H

#include <mutex>

#if defined(__wasm__) && !defined(_REENTRANT)
class Mutex {
  public:
    void lock() {}
    void unlock() {}
};
#else
using Mutex = std::mutex;
#endif

#endif
