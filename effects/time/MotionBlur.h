// Motion Blur - Ghost: luma that blends with the three frames put out before it.
#ifndef SPECIALEFFECTS_EFFECTS_TIME_MOTIONBLUR_H
#define SPECIALEFFECTS_EFFECTS_TIME_MOTIONBLUR_H

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// The processed frame enters the history, so the blend feeds back on itself. Chroma is unchanged. The first
/// four frames after `Configure` pass unchanged and fill the history.
class CMotionBlurSpecialEffectFilter final : public PlanarEffect<CMotionBlurSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Motion Blur - Ghost";

    /// Mode 0 keeps bright trails, mode 1 weights the frame before last most; any other mode changes nothing.
    explicit CMotionBlurSpecialEffectFilter(int32_t mode) : Mode(mode) {}

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    int32_t Mode;
    CPlane8u History[3];
    int64_t FrameCount = 0;
};

#endif
