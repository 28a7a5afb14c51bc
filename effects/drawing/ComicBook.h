// Comic Book: the eight saturated colours of cheap printing.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_COMICBOOK_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_COMICBOOK_H

#include "framework/EffectBase.h"
#include "framework/RoundedChroma.h"

/// Every pixel becomes one of the corners of the colour cube: red, green and blue are each printed in full or
/// not at all. What comes out is what widening the frame to packed pixels, reducing them to two levels and
/// converting them back gives, but it is worked out block by block, in the planes themselves.
class CComicBookSpecialEffectFilter final : public PlanarEffect<CComicBookSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Comic Book";

    void Prepare();
    void Release();
    /// kInvalidArgument when a chroma plane is too small: see RoundedChroma.
    ResultCode ProcessPlanar(const PlanarFrame& frame);

  private:
    RoundedChroma Chroma;
};

#endif
