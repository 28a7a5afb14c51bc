// Plaster: the scene cast as a dark mass on a lit relief.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_PLASTER_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_PLASTER_H

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// A threshold splits the picture into dark and bright; the border between them is raised as a relief, the
/// dark part laid over it, and all of it tinted. The threshold moves by one level a frame until the dark part
/// covers between 15 and 70 percent of the picture.
class CPlasterSpecialEffectFilter final : public PlanarEffect<CPlasterSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Plaster";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    /// Marks in `Mask` what is dark in `Work`, and moves the limit for the next frame.
    void ThresholdDark();

    CPlane8u Work;  // its outermost pixels are flat plaster for good
    CPlane8u Core;  // the dark part without its rim
    CPlane8u Mask;  // the dark part
    int32_t DarkLimit = 40;
};

#endif
