// Remapping through source coordinates with linear interpolation.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_LINEARWARP_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_LINEARWARP_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "effects/distortion/RadialMap.h"
#include "effects/distortion/RemapTable.h"

/// The map in compiled form. For each row it stores only spans that start and end with a pixel that moves,
/// with the source offset and the two fractions of each pixel. The results equal those of the linear remap
/// primitive. In a picture of one column or row no pixel may move.
class LinearWarp {
  public:
    /// Moves nothing.
    LinearWarp() = default;
    explicit LinearWarp(const RemapTable& table);
    /// Moves nothing either. Has room for the sources of `pixels` pixels.
    LinearWarp(int32_t width, int32_t height, size_t pixels);

    /// Adds the sources of the pixels from (x, y) on. Pixels whose source is outside the picture stay.
    void Add(int32_t x, int32_t y, std::span<const SourcePoint<float>> points);

    /// `dst` must hold a copy of `src`; pixels that do not move are not written.
    void Apply(const uint8_t* src, uint8_t* dst) const;

  private:
    struct Span {
        int32_t firstPixel, count;
    };

    int32_t width_ = 0, height_ = 0;
    std::vector<Span> spans_;
    // For each pixel of the spans: the upper left of its four neighbours, and its place between them.
    std::vector<int32_t> source_;
    std::vector<float> fractionX_, fractionY_;
};

#endif
