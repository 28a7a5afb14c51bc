// Comic Book: the eight saturated colours of cheap printing.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_COMICBOOK_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_COMICBOOK_H

#include "framework/EffectBase.h"
#include "framework/RoundedChroma.h"

/// Every pixel becomes a corner of the colour cube: red, green and blue are each printed in full or not at
/// all. The result equals widening the frame to packed pixels, reducing them to two levels and converting
/// them back, but is computed block by block in the planes.
class CComicBookSpecialEffectFilter final : public PlanarEffect<CComicBookSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Comic Book";

    void Prepare();
    void Release();
    /// Returns kInvalidArgument when a chroma plane is too small; see RoundedChroma.
    ResultCode ProcessPlanar(const PlanarFrame& frame);

  private:
    RoundedChroma Chroma;
};

#endif
