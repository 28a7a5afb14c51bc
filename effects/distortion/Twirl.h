// Twirl: the picture turned round its centre, by an angle that grows towards the middle.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_TWIRL_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_TWIRL_H

#include "framework/EffectBase.h"
#include "imaging/IndexGather.h"
#include "imaging/Plane8u.h"

/// The map is built once for each stream; a frame costs one look-up a pixel.
class CTwirlSpecialEffectFilter final : public PlanarEffect<CTwirlSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Twirl";

    /// Variant 1 turns a disc as high as the frame; any other variant turns the whole frame, out to its
    /// corners. `angle` is the turn at the centre in radians.
    CTwirlSpecialEffectFilter(int32_t variant, double angle = 1.15);

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    enum : int32_t { kDisc = 0, kWholeFrame = 1 };

    GatherMap BuildMap(int32_t width, int32_t height) const;

    int32_t Mode;
    CPlane8u Scratch;
    GatherMap LumaMap, ChromaMap;
    double Angle;
};

#endif
