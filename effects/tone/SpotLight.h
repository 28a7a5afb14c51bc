// Spot Light: a dark room and a fixed, slightly warm light, as a mask over the picture.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_SPOTLIGHT_H
#define SPECIALEFFECTS_EFFECTS_TONE_SPOTLIGHT_H

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// `Configure` makes the masks, from the frame size and the variant alone: 0 is a round light, 1 a beam from
/// the top of the frame, any other a brighter beam with a sharp edge.
class CSpotLightSpecialEffectFilter final : public PlanarEffect<CSpotLightSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Spot Light";

    explicit CSpotLightSpecialEffectFilter(int32_t shape) : Shape(static_cast<uint32_t>(shape)) {}

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    uint32_t Shape;
    CPlane8u LumaMask;      ///< 0 without light, 255 in full light
    CPlane8u ChromaWarmth;  ///< what is added to the chroma, 0 to 16
};

#endif
