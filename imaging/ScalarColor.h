// Colour conversion of single colours: what effects paint with, not what they do to whole frames.
//
// The weights differ on purpose from those of the frame conversions (`PrimRgbToYuv420`): these give the video
// range 16..235. Everything is computed in double, truncated toward zero and clamped to 0..255.
#ifndef SPECIALEFFECTS_IMAGING_SCALARCOLOR_H
#define SPECIALEFFECTS_IMAGING_SCALARCOLOR_H

#include <cstdint>

namespace scalar_color_detail {
/// Truncates toward zero, then clamps. Safe for the range that the weights below can give.
constexpr uint8_t ToByte(double value) {
    const int32_t whole = static_cast<int32_t>(value);
    return static_cast<uint8_t>(whole < 0 ? 0 : whole > 255 ? 255 : whole);
}
}  // namespace scalar_color_detail

constexpr uint8_t RgbToY(uint8_t r, uint8_t g, uint8_t b) {
    return scalar_color_detail::ToByte(0.257 * r + 0.504 * g + 0.098 * b + 16.0);
}

constexpr uint8_t RgbToU(uint8_t r, uint8_t g, uint8_t b) {
    return scalar_color_detail::ToByte(0.439 * b - (0.148 * r + 0.291 * g) + 128.0);
}

constexpr uint8_t RgbToV(uint8_t r, uint8_t g, uint8_t b) {
    return scalar_color_detail::ToByte(0.439 * r - 0.368 * g - 0.071 * b + 128.0);
}

/// Channels of a packed colour: red in the low byte, then green, then blue; the top byte is not looked at.
constexpr uint8_t PackedRed(uint32_t color) {
    return static_cast<uint8_t>(color & 255);
}
constexpr uint8_t PackedGreen(uint32_t color) {
    return static_cast<uint8_t>((color >> 8) & 255);
}
constexpr uint8_t PackedBlue(uint32_t color) {
    return static_cast<uint8_t>((color >> 16) & 255);
}

constexpr uint8_t PackedToY(uint32_t color) {
    return RgbToY(PackedRed(color), PackedGreen(color), PackedBlue(color));
}
constexpr uint8_t PackedToU(uint32_t color) {
    return RgbToU(PackedRed(color), PackedGreen(color), PackedBlue(color));
}
constexpr uint8_t PackedToV(uint32_t color) {
    return RgbToV(PackedRed(color), PackedGreen(color), PackedBlue(color));
}

/// Writes the four bytes Y, U, V and alpha (255) of a sprite's colour; returns `out`.
constexpr uint8_t* RgbToYuvColor(uint8_t* out, uint8_t r, uint8_t g, uint8_t b) {
    out[0] = RgbToY(r, g, b);
    out[1] = RgbToU(r, g, b);
    out[2] = RgbToV(r, g, b);
    out[3] = 255;
    return out;
}

#endif
