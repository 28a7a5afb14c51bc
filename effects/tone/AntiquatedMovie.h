// Antiquated Movie: an old reel of film. Hairs, dust and scratches, a stretched tone range, grain, soft
// focus, a vignette, a picture that jumps in the gate, and a tint.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_ANTIQUATEDMOVIE_H
#define SPECIALEFFECTS_EFFECTS_TONE_ANTIQUATEDMOVIE_H

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// The damage is drawn with `rand`, which is not seeded here. Properties are read at each frame. Frames with
/// a side of 64 or less get no hairs and draw no random numbers for them. Scratches that do not fit into a
/// narrow frame are omitted, but their random numbers are drawn.
class CAntiquatedMovieSpecialEffectFilter final : public PlanarEffect<CAntiquatedMovieSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Antiquated Movie";
    static std::span<const Property<CAntiquatedMovieSpecialEffectFilter>> Properties();

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    void DamageFilm(CPlane8u& luma);
    void DrawScratches(CPlane8u& luma);
    void AddGrainAndSoften(CPlane8u& luma);
    void JitterGate(CPlane8u& luma);
    void Tint(CPlane8u& luma, const FramePlane& u);

    CPlane8u GrainPlane;     ///< one row higher than the frame, so that it can be read from any column of the
                             ///< first row
    CPlane8u VignettePlane;  ///< the remaining light, 255 = all
    CPlane8u ToneHalfPlane;  ///< luma at the chroma size
    ResizePlan ToneHalf;     ///< to it
    CPlane8u SoftenPlane;    ///< rows of luma before they are softened
    int32_t JitterRows = 0;  ///< rows by which the picture has slipped up, 0 to 10
    int32_t DriftColumn = 0;  ///< where the first of the drifting scratches is
    bool Sepia = true;
    bool Vignetting = true;
};

#endif
