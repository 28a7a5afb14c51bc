#include "effects/animated/TextRenderer.h"

#include "effects/animated/GlyphTable.h"

namespace {

void DrawBox(CPlane8u& cell) {
    constexpr int32_t kLeft = 3, kRight = 12, kTop = 4, kBottom = 19;
    for (int32_t y = kTop; y <= kBottom; ++y) {
        for (int32_t x = kLeft; x <= kRight; ++x) {
            if (x == kLeft || x == kRight || y == kTop || y == kBottom) cell.Row(y)[x] = 0;
        }
    }
}

void DrawGlyph(CPlane8u& cell, char character) {
    const uint8_t* const ink = kGlyphs[character - kFirstGlyph];
    for (size_t i = 0; i < cell.Size(); ++i) cell.data[i] = static_cast<uint8_t>(255 - ink[i]);
}

}  // namespace

CPlane8u RenderText(std::string_view text) {
    CPlane8u picture = NewPlane(static_cast<int32_t>(text.size()) * kGlyphWidth, kGlyphHeight);
    CPlane8u cell = NewPlane(kGlyphWidth, kGlyphHeight);
    int32_t x = 0;
    for (const char character : text) {
        cell.Fill(255);
        if (character >= kFirstGlyph && character <= kLastGlyph) {
            DrawGlyph(cell, character);
        } else {
            DrawBox(cell);
        }
        picture.Paste(cell, x, 0);
        x += kGlyphWidth;
    }
    return picture;
}
