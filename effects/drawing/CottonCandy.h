// Cotton Candy: soft pastel false colour.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_COTTONCANDY_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_COTTONCANDY_H

#include "framework/EffectBase.h"
#include "imaging/BoxFilter.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// The luma is equalised, inverted and lit by a wide blur of itself; the chroma is replaced by a palette of
/// pink, violet and cyan that follows the blur, so that colours spread as clouds over the edges.
class CCottonCandySpecialEffectFilter final : public PlanarEffect<CCottonCandySpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Cotton Candy";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    CPlane8u Padded;       // the luma with a margin, blurred in place
    BoxFilter Blur;        // of `Padded`
    CPlane8u BlurredHalf;  // the blur at the size of chroma
    ResizePlan Shrink;     // from `Padded` to `BlurredHalf`
};

#endif
