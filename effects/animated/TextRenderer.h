// Text as a picture. The one place that would differ where a system draws its own text.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_TEXTRENDERER_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_TEXTRENDERER_H

#include <string_view>

#include "imaging/Plane8u.h"

/// Black on white, one cell of 16 by 24 pixels a character. A character that is not printable ASCII shows as
/// an empty box. An empty plane for an empty text.
CPlane8u RenderText(std::string_view text);

#endif
