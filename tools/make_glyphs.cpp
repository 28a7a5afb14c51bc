// Renders the printable ASCII characters of a font into the table of grey cells that the module draws its
// texts from. Run it by hand to change the face; the module itself needs no font.
//
//   c++ -std=c++20 tools/make_glyphs.cpp $(pkg-config --cflags --libs freetype2) -o make_glyphs
//   ./make_glyphs /usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf > effects/animated/GlyphTable.cpp
#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kWidth = 16, kHeight = 24;

}  // namespace

int main(int argc, char** argv) {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (argc != 2 || FT_Init_FreeType(&library) != 0 || FT_New_Face(library, argv[1], 0, &face) != 0) {
        std::fprintf(stderr, "usage: make_glyphs FONT\n");
        return 2;
    }
    // The size at which ascender and descender fill the cell.
    const long unitsHigh = face->ascender - face->descender;
    const long size = 64L * kHeight * face->units_per_EM / unitsHigh;
    FT_Set_Char_Size(face, 0, size, 72, 72);
    const int baseline = static_cast<int>((face->ascender * size / face->units_per_EM + 32) / 64);

    std::printf(
        "// Written by tools/make_glyphs from %s %s: do not edit.\n"
        "//\n"
        "// Copyright (c) 2003 by Bitstream, Inc.; the changes of the DejaVu project are in the public "
        "domain. The\n"
        "// licence, which has to go with every copy, is in GlyphTable.license.txt.\n"
        "#include \"effects/animated/GlyphTable.h\"\n\n"
        "// clang-format off\n"
        "const uint8_t kGlyphs[kGlyphCount][kGlyphWidth * kGlyphHeight] = {\n",
        face->family_name, face->style_name);
    for (int character = ' '; character <= '~'; ++character) {
        std::vector<unsigned char> cell(kWidth * kHeight, 0);
        FT_Load_Char(face, static_cast<FT_ULong>(character), FT_LOAD_RENDER);
        const FT_GlyphSlot glyph = face->glyph;
        const int margin = (kWidth - static_cast<int>((glyph->advance.x + 32) / 64)) / 2;
        for (int y = 0; y < static_cast<int>(glyph->bitmap.rows); ++y) {
            for (int x = 0; x < static_cast<int>(glyph->bitmap.width); ++x) {
                const int atX = margin + glyph->bitmap_left + x, atY = baseline - glyph->bitmap_top + y;
                if (atX < 0 || atX >= kWidth || atY < 0 || atY >= kHeight) continue;
                cell[static_cast<size_t>(atY * kWidth + atX)] =
                    glyph->bitmap.buffer[y * glyph->bitmap.pitch + x];
            }
        }
        std::printf("    {  // '%c'\n", character);
        for (int y = 0; y < kHeight; ++y) {
            std::printf("        ");
            for (int x = 0; x < kWidth; ++x) std::printf("%d,", cell[static_cast<size_t>(y * kWidth + x)]);
            std::printf("\n");
        }
        std::printf("    },\n");
    }
    std::printf("};\n// clang-format on\n");
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    return 0;
}
