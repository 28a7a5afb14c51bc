#ifndef SPECIALEFFECTS_TESTS_SUPPORT_LEVELLIMIT_H
#define SPECIALEFFECTS_TESTS_SUPPORT_LEVELLIMIT_H

#include "imaging/Cpu.h"

/// Keeps loops at a processor level or below while it exists.
class LevelLimit {
  public:
    explicit LevelLimit(cpu::Level highest) { cpu::Limit(highest); }
    ~LevelLimit() { cpu::Limit(cpu::Levels().back()); }
    LevelLimit(const LevelLimit&) = delete;
    LevelLimit& operator=(const LevelLimit&) = delete;
};

#endif
