// Characters as Windows draws them. Used where the module is compiled for Windows only.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_SYSTEMGLYPHS_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_SYSTEMGLYPHS_H

#include <memory>

#include "imaging/Plane8u.h"

/// Draws characters with GDI in a device context of its own, without a window.
class SystemGlyphs {
  public:
    /// For cells of `width` by `height` pixels, which is also the height of the font. Throws std::bad_alloc.
    SystemGlyphs(int32_t width, int32_t height);
    ~SystemGlyphs();
    SystemGlyphs(const SystemGlyphs&) = delete;
    SystemGlyphs& operator=(const SystemGlyphs&) = delete;

    /// Draws the character in black, in the middle of the white cell. False, and the cell unchanged, where
    /// GDI fails.
    bool Draw(char character, CPlane8u& cell) const;

  private:
    struct Objects;
    std::unique_ptr<Objects> objects_;
};

#endif
