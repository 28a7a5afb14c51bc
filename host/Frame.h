// A picture in one of the two layouts that effects take.
#ifndef SPECIALEFFECTS_HOST_FRAME_H
#define SPECIALEFFECTS_HOST_FRAME_H

#include <array>
#include <cstdint>
#include <vector>

#include "framework/SpecialEffectFilter.h"

namespace host {

/// Width and height are even. Planar frames have three planes without gaps between rows; packed ones have
/// one, three bytes a pixel in the order red, green, blue.
class Frame {
  public:
    Frame() = default;
    Frame(int width, int height, int32_t format);

    int Width() const { return width_; }
    int Height() const { return height_; }
    int32_t Format() const { return format_; }

    int PlaneCount() const { return format_ == kFormatPlanar ? 3 : 1; }
    uint8_t* Plane(int plane) { return bytes_.data() + offsets_[static_cast<size_t>(plane)]; }
    const uint8_t* Plane(int plane) const { return bytes_.data() + offsets_[static_cast<size_t>(plane)]; }
    /// Bytes in a row of the plane, and from one row to the next.
    int RowBytes(int plane) const;
    int Rows(int plane) const { return plane == 0 ? height_ : height_ / 2; }

    /// All bytes of the picture, plane after plane.
    size_t Size() const { return size_; }

    /// The record by which an effect is given this picture.
    ImageRecord Record();

    /// When to show it, in ticks of the stream it belongs to.
    int64_t time = 0;

  private:
    int width_ = 0;
    int height_ = 0;
    int32_t format_ = kFormatPlanar;
    std::array<size_t, 3> offsets_{};
    size_t size_ = 0;
    std::vector<uint8_t> bytes_;
};

}  // namespace host

#endif
