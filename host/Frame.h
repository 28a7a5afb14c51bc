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

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    int32_t Format() const { return m_format; }

    int PlaneCount() const { return m_format == kFormatPlanar ? 3 : 1; }
    uint8_t* Plane(int plane) { return m_bytes.data() + m_offsets[static_cast<size_t>(plane)]; }
    const uint8_t* Plane(int plane) const { return m_bytes.data() + m_offsets[static_cast<size_t>(plane)]; }
    /// Bytes in a row of the plane, and from one row to the next.
    int RowBytes(int plane) const;
    int Rows(int plane) const { return plane == 0 ? m_height : m_height / 2; }

    /// All bytes of the picture, plane after plane.
    size_t Size() const { return m_size; }

    /// The record by which an effect is given this picture.
    ImageRecord Record();

    /// When to show it, in ticks of the stream it belongs to.
    int64_t time = 0;

  private:
    int m_width = 0;
    int m_height = 0;
    int32_t m_format = kFormatPlanar;
    std::array<size_t, 3> m_offsets{};
    size_t m_size = 0;
    std::vector<uint8_t> m_bytes;
};

}  // namespace host

#endif
