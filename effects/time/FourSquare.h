// Four Square: the scene four times, as a screen print in four sets of colours.
#ifndef SPECIALEFFECTS_EFFECTS_TIME_FOURSQUARE_H
#define SPECIALEFFECTS_EFFECTS_TIME_FOURSQUARE_H

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// A shrunken copy of high contrast, steadied against camera noise, is printed in each quadrant with a colour
/// for its blacks, one for its whites and a tint for the tones between. At odd sizes the last column and row
/// stay as they came.
class CFourSquareSpecialEffectFilter final : public PlanarEffect<CFourSquareSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Four Square";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    struct Planes;
    struct Print;
    void Steady();
    void PrintQuadrant(const Print& print, int32_t x, int32_t y, Planes& frame);

    CPlane8u Small;        ///< half size: cleaned, then stretched in contrast
    CPlane8u SmallChroma;  ///< quarter size
    CPlane8u Scratch;
    CPlane8u ChromaScratch;
    CPlane8u Previous;  ///< the last frame's `Small` before the stretch
    CPlane8u TileY;
    CPlane8u TileU;
    CPlane8u TileV;
    ResizePlan ShrinkLuma;    ///< from the frame to `Small`
    ResizePlan ShrinkChroma;  ///< from `Small` to `SmallChroma`
    bool HasPrevious = false;
};

#endif
