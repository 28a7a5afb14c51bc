// Sensor noise for the pictures that this program draws itself. It does not touch the C library's generator,
// whose numbers belong to the effects.
#ifndef SPECIALEFFECTS_HOST_PIXELNOISE_H
#define SPECIALEFFECTS_HOST_PIXELNOISE_H

#include <algorithm>
#include <bit>
#include <cstdint>

namespace host {

/// A small generator, seeded for each row of each frame, so that every frame can be drawn by itself.
class PixelNoise {
  public:
    PixelNoise(int64_t frame, int plane, int row)
        : state_(Mixed(static_cast<uint64_t>(frame) * 0x9E3779B97F4A7C15u +
                       static_cast<uint64_t>(plane) * 0xC2B2AE3D27D4EB4Fu + static_cast<uint64_t>(row))) {}

    /// About normal, with mean 0 and standard deviation `sigma`: the bits of a random word, counted.
    int Sample(int sigma) {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        // 64 bits have a mean of 32 and a standard deviation of 4.
        return (std::popcount(Mixed(state_)) - 32) * sigma / 4;
    }

  private:
    static uint64_t Mixed(uint64_t x) {
        x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
        x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
        return x ^ (x >> 31);
    }

    uint64_t state_;
};

inline uint8_t Saturated(int value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

}  // namespace host

#endif
