// Remapping through a table of source coordinates with linear interpolation.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_LINEARWARP_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_LINEARWARP_H

#include <cstdint>
#include <vector>

#include "effects/distortion/RemapTable.h"

/// The table in compiled form. For each row it stores only the span from the first to the last pixel that
/// moves, with the source offset and the two fractions of each pixel. The results equal those of the linear
/// remap primitive.
class LinearWarp {
  public:
    LinearWarp() = default;
    /// The picture must be at least 2 by 2.
    explicit LinearWarp(const RemapTable& table);

    /// `dst` must hold a copy of `src`; pixels that do not move are not written.
    void Apply(const uint8_t* src, uint8_t* dst) const;

  private:
    struct Span {
        int32_t firstPixel, count;
    };

    int32_t width_ = 0;
    std::vector<Span> spans_;
    std::vector<int32_t> source_;  ///< for each pixel of the spans: the upper left of its four neighbours
    std::vector<float> fractionX_, fractionY_;
};

#endif
