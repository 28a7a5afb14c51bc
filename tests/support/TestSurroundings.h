// Surroundings of a test: see framework/Surroundings.h.
#ifndef SPECIALEFFECTS_TESTS_SUPPORT_TESTSURROUNDINGS_H
#define SPECIALEFFECTS_TESTS_SUPPORT_TESTSURROUNDINGS_H

#include "framework/AdditiveRandom.h"
#include "framework/Surroundings.h"

/// The time of the process's clock when the module is loaded.
inline constexpr int64_t kClockAtLoading = 2000;

/// A clock that moves only when the test moves it. All else is the process's.
class TestClock : public ProcessSurroundings {
  public:
    int64_t now = kClockAtLoading;
    int64_t Milliseconds() override { return now; }
};

/// Such a clock, and a generator of its own: an effect repeats itself exactly in each new object of this
/// class.
class TestSurroundings : public TestClock {
  public:
    int32_t Rand() override { return random_.Next(); }
    void Srand(uint32_t seed) override { random_.Seed(seed); }

    std::string DataFile(const std::string& name) override { return folder + name; }
    std::string NewDataFile(const std::string& name) override { return writable ? folder + name : ""; }

    std::string folder;    ///< of the data files, with a slash at its end; empty: the current directory
    bool writable = true;  ///< whether data files may be made there

  private:
    AdditiveRandom random_;
};

#endif
