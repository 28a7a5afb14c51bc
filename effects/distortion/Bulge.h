// Bulge: the centre of the picture swells as if it were pressed out from behind.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_BULGE_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_BULGE_H

#include "effects/distortion/IppDistortion.h"
#include "framework/EffectBase.h"

class CBulgeSpecialEffectFilter final
    : public EffectBase<CBulgeSpecialEffectFilter, CSpecialEffectFilter_IppDistortion> {
  public:
    static constexpr const char* DisplayName = "Bulge";

    /// Always returns kSuccess; frames of an unsupported stream are refused later.
    ResultCode Configure(StreamDescription* description) override;
    void BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) override;
};

#endif
