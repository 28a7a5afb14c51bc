// Sketch: short pencil strokes that stay still on the paper while the picture moves under them.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_SKETCH_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_SKETCH_H

#include "effects/drawing/TonePages.h"
#include "framework/EffectBase.h"

/// Each luma is replaced by the pixel at its place on the page of its tone; chroma is left alone. `Configure`
/// draws the pages with `rand`, for packed streams too.
class CSketchSpecialEffectFilter final : public PlanarEffect<CSketchSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Sketch";
    static constexpr bool PreparesPacked = true;

    /// Variant 2 inks strong edges flat dark; 3 keeps contours at their tone, lifts all else by half and
    /// softens the result.
    explicit CSketchSpecialEffectFilter(int32_t variant)
        : EdgeInk(variant == 2), ContourLight(variant == 3), Soften(variant == 3) {}

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    const bool EdgeInk, ContourLight, Soften;
    TonePages Pages;
    CPlane8u SoftenTemp;  // the drawing, where it cannot be made in the frame itself
};

#endif
