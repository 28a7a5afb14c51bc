// Chrome: polished metal. A wavy tone curve makes bright and dark bands of the smoothed luma's gradients.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_CHROME_H
#define SPECIALEFFECTS_EFFECTS_TONE_CHROME_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// Variant 1 is the darker metal, any other the brighter one. A pixel of the smoothed luma that changes by
/// less than 3 keeps its last value, so that camera noise does not make the bands flicker.
class CChromeSpecialEffectFilter final : public PlanarEffect<CChromeSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Chrome";

    explicit CChromeSpecialEffectFilter(int32_t variant) : Variant(static_cast<uint32_t>(variant)) {}

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    uint32_t Variant;
    CPlane8u PreviousPlane;      ///< the smoothed luma, steadied; 0 before the first frame
    CPlane8u SmoothPlane;        ///< the smoothed luma of this frame
    std::vector<uint8_t> Slant;  ///< added to column x before the curve
};

#endif
