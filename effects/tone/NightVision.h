// Polarize: the photographic negative, luma and chroma alike.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_NIGHTVISION_H
#define SPECIALEFFECTS_EFFECTS_TONE_NIGHTVISION_H

#include "framework/EffectBase.h"

/// Keeps nothing and needs no workspace. A null luma plane is left out, and the chroma is inverted all the
/// same. Frames of a stream that `Configure` refused pass unchanged.
class CNightVisionSpecialEffectFilter final : public PlanarEffect<CNightVisionSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Polarize";
    static constexpr bool NeedsWorkspace = false;
    static constexpr bool NeedsLuma = false;

    void ProcessPlanar(const PlanarFrame& frame);
};

#endif
