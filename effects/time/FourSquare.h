// Four Square: the scene four times, as a screen print in four sets of colours.
#ifndef SPECIALEFFECTS_EFFECTS_TIME_FOURSQUARE_H
#define SPECIALEFFECTS_EFFECTS_TIME_FOURSQUARE_H

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// Each quadrant shows a shrunken, high-contrast copy, steadied against camera noise, with a colour for
/// blacks, one for whites and a tint for the tones between. At odd sizes the last column and row are
/// unchanged.
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
    CPlane8u Previous;  ///< `Small` of the last frame, before the stretch
    CPlane8u TileY;
    CPlane8u TileU;
    CPlane8u TileV;
    ResizePlan ShrinkLuma;    ///< from the frame to `Small`
    ResizePlan ShrinkChroma;  ///< from `Small` to `SmallChroma`
    bool HasPrevious = false;
};

#endif
