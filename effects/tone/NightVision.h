// Polarize: the photographic negative, luma and chroma alike.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_NIGHTVISION_H
#define SPECIALEFFECTS_EFFECTS_TONE_NIGHTVISION_H

#include "framework/EffectBase.h"

/// Keeps nothing and needs no workspace. A null luma plane is left out, and the chroma is inverted all the
/// same. After a refused `Configure` frames pass unchanged: no plane of such a size is believed in.
class CNightVisionSpecialEffectFilter final : public PlanarEffect<CNightVisionSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Polarize";
    static constexpr bool NeedsWorkspace = false;
    static constexpr bool NeedsLuma = false;

    void ProcessPlanar(const PlanarFrame& frame);
};

#endif
