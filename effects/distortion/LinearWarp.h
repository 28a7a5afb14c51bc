// Pixels moved through a table of source coordinates with linear interpolation.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_LINEARWARP_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_LINEARWARP_H

#include <cstdint>
#include <vector>

#include "effects/distortion/RemapTable.h"

/// The table in the form in which a frame needs it: of each row only the pixels from the first to the last
/// that move, and of each of these its place in the source and its two fractions. The results are those of
/// the linear remap primitive.
class LinearWarp {
  public:
    LinearWarp() = default;
    /// The picture is at least 2 by 2.
    explicit LinearWarp(const RemapTable& table);

    /// `dst` holds the same picture as `src` before the call; what does not move is not written.
    void Apply(const uint8_t* src, uint8_t* dst) const;

  private:
    struct Span {
        int32_t firstPixel, count;
    };

    int32_t width_ = 0;
    std::vector<Span> spans_;
    std::vector<int32_t> source_;  ///< of each pixel of the spans: the upper left of its four neighbours
    std::vector<float> fractionX_, fractionY_;
};

#endif
