// Blockhead: the picture squeezed towards the middle in both directions, which makes a head look blocky.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_STRETCH_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_STRETCH_H

#include "effects/distortion/IppDistortion.h"
#include "framework/EffectBase.h"

class CStretchSpecialEffectFilter final
    : public EffectBase<CStretchSpecialEffectFilter, CSpecialEffectFilter_IppDistortion> {
  public:
    static constexpr const char* DisplayName = "Blockhead";

    /// Always returns kSuccess; frames of an unsupported stream are refused later.
    ResultCode Configure(StreamDescription* description) override;
    void BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) override;
};

#endif
