// Fire: the picture burns like a false-colour heat image.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_FIRE_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_FIRE_H

#include <memory>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"
#include "imaging/Prim.h"

/// Luma is mixed with a box-blurred copy of itself, the more so the brighter it is, and the mix indexes a
/// palette that runs from white through red and blue back to white. Pixels mix in pairs, with the weight of
/// the left one; at odd widths the last column takes its own.
class CFireSpecialEffectFilter final : public PlanarEffect<CFireSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Fire";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    struct Free {
        void operator()(uint8_t* image) const { PrimFree(image); }
    };

    int32_t Border = 0;  ///< K: the blur's mask is 2 K + 1 in both directions
    int32_t PaddedStep = 0;
    std::unique_ptr<uint8_t, Free> Padded;  ///< the luma with a margin of K all round
    CPlane8u FullU, FullV;                  ///< chroma at full size
};

#endif
