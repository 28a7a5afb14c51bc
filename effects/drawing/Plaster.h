// Plaster: the scene cast as a dark mass on a lit relief.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_PLASTER_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_PLASTER_H

#include "framework/EffectBase.h"
#include "imaging/Bands.h"

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
    /// Moves the threshold for the next frame; `share` is the mean of the mask.
    void MoveLimit(int32_t share);

    RowWindow Smooth;
    RowWindow Mask;  ///< the dark part
    RowWindow Wide, Soft, Relief;
    RowWindow Lit;
    RowWindow Core;  ///< the dark part without its rim
    int32_t DarkLimit = 40;
};

#endif
