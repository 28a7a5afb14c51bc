#include "effects/tone/GrayScale.h"

void CGrayScaleSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    constexpr uint8_t kNeutral = 128;
    frame.u.FillWhole(kNeutral);
    frame.v.FillWhole(kNeutral);
}

template struct EffectClass<CGrayScaleSpecialEffectFilter>;
