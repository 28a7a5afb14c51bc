// Polarize: the photographic negative, luma and chroma alike.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_NIGHTVISION_H
#define SPECIALEFFECTS_EFFECTS_TONE_NIGHTVISION_H

#include "framework/EffectBase.h"

/// Has no state and needs no workspace. A null luma plane is skipped; the chroma is still inverted. Frames of
/// a stream that `Configure` refused pass unchanged.
class CNightVisionSpecialEffectFilter final : public PlanarEffect<CNightVisionSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Polarize";
    static constexpr bool NeedsWorkspace = false;
    static constexpr bool NeedsLuma = false;

    void ProcessPlanar(const PlanarFrame& frame);
};

#endif
