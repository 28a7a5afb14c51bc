// Sketch: short pencil strokes that stay still on the paper while the picture moves under them.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_SKETCH_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_SKETCH_H

#include "effects/drawing/TonePages.h"
#include "framework/EffectBase.h"

/// Replaces each luma by the pixel at the same place on the page of its tone; chroma is unchanged.
/// `Configure` draws the pages with `rand`, for packed streams too.
class CSketchSpecialEffectFilter final : public PlanarEffect<CSketchSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Sketch";
    static constexpr bool PreparesPacked = true;

    /// Variant 2 inks strong edges. Variant 3 keeps contours at their tone, brightens everything else by half
    /// and softens the result.
    explicit CSketchSpecialEffectFilter(int32_t variant)
        : EdgeInk(variant == 2), ContourLight(variant == 3), Soften(variant == 3) {}

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    const bool EdgeInk, ContourLight, Soften;
    TonePages Pages;
    CPlane8u SoftenTemp;  // the drawing, when it cannot be made in the frame itself
};

#endif
