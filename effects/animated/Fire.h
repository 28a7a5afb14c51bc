// Fire: the picture burns like a false-colour heat image.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_FIRE_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_FIRE_H

#include "framework/EffectBase.h"
#include "imaging/BoxFilter.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// Luma is mixed with a box-blurred copy of itself, more strongly where it is brighter, and the result
/// indexes a palette that runs from white through red and blue back to white. Pixels are mixed in pairs with
/// the weight of the left pixel; at odd widths the last column uses its own weight.
class CFireSpecialEffectFilter final : public PlanarEffect<CFireSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Fire";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    int32_t Border = 0;     ///< K: the blur's mask is 2 K + 1 in both directions
    CPlane8u Padded;        ///< the luma with a margin of K all round
    BoxFilter Blur;         ///< of `Padded`
    CPlane8u FullU, FullV;  ///< chroma at full size
    ResizePlan Shrink;      ///< to the chroma planes
};

#endif
