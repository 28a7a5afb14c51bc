// A monospaced bold face as grey cells: the ink coverage of each pixel, 0 to 255.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_GLYPHTABLE_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_GLYPHTABLE_H

#include <cstdint>

inline constexpr int32_t kGlyphWidth = 16, kGlyphHeight = 24;
inline constexpr char kFirstGlyph = ' ', kLastGlyph = '~';
inline constexpr int32_t kGlyphCount = kLastGlyph - kFirstGlyph + 1;

/// Cells of the printable ASCII characters in order, each row by row.
extern const uint8_t kGlyphs[kGlyphCount][kGlyphWidth * kGlyphHeight];

#endif
