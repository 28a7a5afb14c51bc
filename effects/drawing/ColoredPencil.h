// Colored Pencil: dark contours on pale paper, washed over with the scene's own colours.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_COLOREDPENCIL_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_COLOREDPENCIL_H

#include "framework/EffectBase.h"
#include "imaging/BoxFilter.h"
#include "imaging/Plane8u.h"

/// Draws where a pixel is brighter than its surroundings; chroma is unchanged.
class CColoredPencilSpecialEffectFilter final : public PlanarEffect<CColoredPencilSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Colored Pencil";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    CPlane8u Scratch;
    BoxFilter Blur;
};

#endif
