// Plaster: the scene cast as a dark mass on a lit relief.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_PLASTER_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_PLASTER_H

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// A threshold splits the picture into dark and bright. The border between them is raised as a relief, the
/// dark part is laid over it, and everything is tinted. The threshold moves by at most one level a frame
/// until the dark part covers between 15 and 70 percent of the picture.
class CPlasterSpecialEffectFilter final : public PlanarEffect<CPlasterSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Plaster";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    /// Marks the dark pixels of `Work` in `Mask` and moves the threshold for the next frame.
    void ThresholdDark();

    CPlane8u Work;  // its outermost pixels stay flat plaster
    CPlane8u Core;  // the dark part without its rim
    CPlane8u Mask;  // the dark part
    int32_t DarkLimit = 40;
};

#endif
