// Random numbers by additive feedback: each is the sum of those 3 and 31 steps before it, modulo 2^32, less
// its lowest bit. This is the generator behind `rand` of the C library of Linux (its TYPE_3; the trinomial
// x^31 + x^3 + 1, Knuth, The Art of Computer Programming, volume 2, 3.2.2), with the same numbers for every
// seed on every platform.
#ifndef SPECIALEFFECTS_FRAMEWORK_ADDITIVERANDOM_H
#define SPECIALEFFECTS_FRAMEWORK_ADDITIVERANDOM_H

#include <array>
#include <cstddef>
#include <cstdint>

class AdditiveRandom {
  public:
    /// The seed with which the C library starts.
    static constexpr uint32_t kFirstSeed = 1;

    explicit AdditiveRandom(uint32_t seed = kFirstSeed) { Seed(seed); }

    /// Starts over. A seed of 0 counts as 1.
    void Seed(uint32_t seed);

    /// From 0 to 2^31 - 1.
    int32_t Next() {
        state_[place_] += state_[(place_ + kDegree - kLag) % kDegree];
        const uint32_t sum = state_[place_];
        place_ = (place_ + 1) % kDegree;
        return static_cast<int32_t>(sum >> 1);
    }

  private:
    static constexpr size_t kDegree = 31, kLag = 3;

    std::array<uint32_t, kDegree> state_{};  ///< the last 31 sums, in a ring
    size_t place_ = 0;                       ///< of the oldest, which the next one replaces
};

#endif
