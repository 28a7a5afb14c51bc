// Gray Scale: takes the colour away and leaves the luma alone.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_GRAYSCALE_H
#define SPECIALEFFECTS_EFFECTS_TONE_GRAYSCALE_H

#include "framework/EffectBase.h"

/// Keeps nothing and needs no workspace. The number of chroma bytes is the one that the frame tells, and the
/// luma plane is never looked at: it may be null.
class CGrayScaleSpecialEffectFilter final : public PlanarEffect<CGrayScaleSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Gray Scale";
    static constexpr bool NeedsWorkspace = false;
    static constexpr bool NeedsLuma = false;

    void ProcessPlanar(const PlanarFrame& frame);
};

#endif
