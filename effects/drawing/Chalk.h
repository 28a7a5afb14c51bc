// Chalk: flat tones on a blackboard, with or without inked edges, or the outline alone.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_CHALK_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_CHALK_H

#include "framework/EffectBase.h"
#include "imaging/Bands.h"
#include "imaging/BoxFilter.h"
#include "imaging/Plane8u.h"

/// Smooths the luma, reduces it to eight tones and blurs the chroma. Edges are found in the smoothed picture,
/// before it is reduced, so that ink does not follow the steps between tones.
class CChalkSpecialEffectFilter final : public PlanarEffect<CChalkSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Chalk";
    static std::span<const Property<CChalkSpecialEffectFilter>> Properties();

    /// Variant 2 starts with inked edges. Variant 3 always draws only a grey outline; it ignores "DrawEdges".
    explicit CChalkSpecialEffectFilter(int32_t variant)
        : DrawEdges(variant == 2), OutlineOnly(variant == 3) {}

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    void DrawTones(PlaneRows luma, int32_t height);
    void DrawOutline(PlaneRows luma, int32_t height);

    bool DrawEdges;
    const bool OutlineOnly;
    RowWindow Smooth;
    RowWindow Tones;
    RowWindow Voted;  ///< tones after the first median
    RowWindow EdgeSource;
    CPlane8u ChromaScratch;
    BoxFilter Blur;
};

#endif
