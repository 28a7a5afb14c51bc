// Hallway Vision: the picture as if seen down a corridor.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_HALLWAYVISION_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_HALLWAYVISION_H

#include "effects/distortion/LinearWarp.h"
#include "framework/EffectBase.h"
#include "imaging/IndexGather.h"
#include "imaging/Plane8u.h"

/// Inside a circle as high as the frame the picture is squeezed towards the centre. The map is built once for
/// each stream.
class CHallwayVisionSpecialEffectFilter final : public PlanarEffect<CHallwayVisionSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Hallway Vision";

    /// Variant 1 interpolates the luma; any other variant takes the nearest pixel.
    explicit CHallwayVisionSpecialEffectFilter(int32_t variant);

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    bool UseIndexTable;
    CPlane8u Scratch;
    GatherMap IndexFull;  ///< luma, without interpolation
    LinearWarp LumaWarp;  ///< luma, with it; one of the two is empty
    GatherMap IndexHalf;  ///< chroma
};

#endif
