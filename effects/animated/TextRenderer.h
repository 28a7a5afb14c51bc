// Renders text into a plane. A port to a system with its own text drawing replaces this file only.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_TEXTRENDERER_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_TEXTRENDERER_H

#include <string_view>

#include "imaging/Plane8u.h"

/// Black on white, one 16 by 24 cell a character. Characters other than printable ASCII show as an empty box.
/// An empty text gives an empty plane.
CPlane8u RenderText(std::string_view text);

#endif
