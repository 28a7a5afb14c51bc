// Renders text into a plane: as Windows draws it, elsewhere and where that fails from a table of glyphs.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_TEXTRENDERER_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_TEXTRENDERER_H

#include <string_view>

#include "imaging/Plane8u.h"

/// Black on white, one 16 by 24 cell a character. In the table, characters other than printable ASCII are an
/// empty box. An empty text gives an empty plane.
CPlane8u RenderText(std::string_view text);

/// Keeps all threads to the table for a scope. For tests that compare frames with those of other systems.
class TextFromTable {
  public:
    TextFromTable();
    ~TextFromTable();
    TextFromTable(const TextFromTable&) = delete;
    TextFromTable& operator=(const TextFromTable&) = delete;
};

#endif
