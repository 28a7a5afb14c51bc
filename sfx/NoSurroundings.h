// Surroundings for what libsfx asks of an effect outside of a stream.
#ifndef SPECIALEFFECTS_SFX_NOSURROUNDINGS_H
#define SPECIALEFFECTS_SFX_NOSURROUNDINGS_H

#include <string>

#include "framework/AdditiveRandom.h"
#include "framework/Surroundings.h"

namespace sfx {

/// No data files, and chance and time that do not matter.
class NoSurroundings : public Surroundings {
  public:
    int64_t Milliseconds() override { return 0; }
    int32_t Rand() override { return random_.Next(); }
    void Srand(uint32_t seed) override { random_.Seed(seed); }
    std::string DataFile(const std::string&) override { return {}; }
    std::string NewDataFile(const std::string&) override { return {}; }

  private:
    AdditiveRandom random_;
};

}  // namespace sfx

#endif
