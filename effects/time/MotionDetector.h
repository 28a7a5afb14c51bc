// Motion Detector: what moves glows in one colour and fades; everything else is dark.
#ifndef SPECIALEFFECTS_EFFECTS_TIME_MOTIONDETECTOR_H
#define SPECIALEFFECTS_EFFECTS_TIME_MOTIONDETECTOR_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Bands.h"
#include "imaging/Plane8u.h"

/// The fade follows the process clock, so a trail lasts equally long at any frame rate. Each `Configure` for
/// planar frames resets both properties: "BlurDelay" to 50 and "BlurColor" to red, not to the default of the
/// property table. A host sets them afterwards.
class CMotionDetectorSpecialEffectFilter final : public PlanarEffect<CMotionDetectorSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Motion Detector";
    static std::span<const Property<CMotionDetectorSpecialEffectFilter>> Properties();

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    RowWindow Smoothed;
    CPlane8u Background;  ///< reference luma that follows the scene slowly
    bool FirstFrame = true;
    std::vector<float> History;  ///< time of each pixel's last motion in seconds; 0 for long ago
    int32_t BlurDelay = 50;
    uint32_t BlurColor = 192U << 16;
};

#endif
