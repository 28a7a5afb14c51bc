// Gray Scale: removes the colour and leaves the luma unchanged.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_GRAYSCALE_H
#define SPECIALEFFECTS_EFFECTS_TONE_GRAYSCALE_H

#include "framework/EffectBase.h"

/// Has no state and needs no workspace. The frame states the number of chroma bytes. The luma plane is never
/// accessed and may be null.
class CGrayScaleSpecialEffectFilter final : public PlanarEffect<CGrayScaleSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Gray Scale";
    static constexpr bool NeedsWorkspace = false;
    static constexpr bool NeedsLuma = false;

    void ProcessPlanar(const PlanarFrame& frame);
};

#endif
