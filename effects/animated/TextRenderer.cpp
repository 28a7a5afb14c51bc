#include "effects/animated/TextRenderer.h"

#include <atomic>

#include "effects/animated/GlyphTable.h"
#if defined(_WIN32)
#include "effects/animated/SystemGlyphs.h"
#endif

namespace {

std::atomic<int> keptToTable{0};

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

void DrawFromTable(CPlane8u& cell, char character) {
    cell.Fill(255);
    if (character >= kFirstGlyph && character <= kLastGlyph) {
        DrawGlyph(cell, character);
    } else {
        DrawBox(cell);
    }
}

}  // namespace

CPlane8u RenderText(std::string_view text) {
    CPlane8u picture = NewPlane(static_cast<int32_t>(text.size()) * kGlyphWidth, kGlyphHeight);
    CPlane8u cell = NewPlane(kGlyphWidth, kGlyphHeight);
#if defined(_WIN32)
    const SystemGlyphs system(kGlyphWidth, kGlyphHeight);
    const bool bySystem = keptToTable == 0;
#endif
    int32_t x = 0;
    for (const char character : text) {
#if defined(_WIN32)
        if (!bySystem || !system.Draw(character, cell)) DrawFromTable(cell, character);
#else
        DrawFromTable(cell, character);
#endif
        picture.Paste(cell, x, 0);
        x += kGlyphWidth;
    }
    return picture;
}

TextFromTable::TextFromTable() {
    ++keptToTable;
}
TextFromTable::~TextFromTable() {
    --keptToTable;
}
