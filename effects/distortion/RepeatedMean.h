// Many 3 by 3 means of a plane, one after the other.
//
// Done one by one, each moves the whole plane through memory. Here all of them sweep down the plane together,
// each one row behind the one before it, and keep no more than the three rows that the next one needs.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_REPEATEDMEAN_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_REPEATEDMEAN_H

#include <cstdint>

#include "imaging/Plane8u.h"

/// Filters planes of one size as if three more pixels that repeat the edges stood around them; the outermost
/// of these keep their values from mean to mean.
class RepeatedMean {
  public:
    RepeatedMean(int32_t width, int32_t height);

    /// Replaces each pixel by the rounded mean of 3 by 3 pixels, `count` times, in place. `count` is at least
    /// 3. Throws std::bad_alloc when an allocation fails.
    void Apply(CPlane8u& plane, int32_t count);

  private:
    static constexpr int32_t kBorder = 3;
    static constexpr int32_t kKept = 3;  // rows of each mean

    uint8_t* Row(int32_t mean, int32_t y) { return rows_.Row(mean * kKept + y % kKept); }
    void StartRow(const CPlane8u& plane, int32_t y, uint8_t lowest);

    int32_t width_, height_;  ///< with the border
    CPlane8u rows_;           ///< of the plane and of each mean, less the lowest pixel
    CPlane8u sums_;           ///< of three rows
};

#endif
