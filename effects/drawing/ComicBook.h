// Comic Book: the eight saturated colours of cheap printing.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_COMICBOOK_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_COMICBOOK_H

#include "framework/EffectBase.h"

/// Every pixel becomes one of the corners of the colour cube: red, green and blue are each printed in full or
/// not at all. What comes out is what widening the frame to packed pixels, reducing them to two levels and
/// converting them back gives, but it is worked out block by block, in the planes themselves.
class CComicBookSpecialEffectFilter final : public PlanarEffect<CComicBookSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Comic Book";

    /// Chroma is (width + 1) / 2 by (height + 1) / 2 samples here; at odd sizes a frame that says that its
    /// chroma planes are smaller is refused with kInvalidArgument.
    ResultCode ProcessPlanar(const PlanarFrame& frame);
};

#endif
