// Motion Detector: what moves glows in one colour and fades; all else goes dark.
#ifndef SPECIALEFFECTS_EFFECTS_TIME_MOTIONDETECTOR_H
#define SPECIALEFFECTS_EFFECTS_TIME_MOTIONDETECTOR_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// Fades in real time, by the process clock, so that a trail lasts as long at any frame rate. Each
/// `Configure` for planar frames resets both properties: "BlurDelay" to 50 and "BlurColor" to red, which is
/// not the colour that the property table offers as its default. A host sets them afterwards.
class CMotionDetectorSpecialEffectFilter final : public PlanarEffect<CMotionDetectorSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Motion Detector";
    static std::span<const Property<CMotionDetectorSpecialEffectFilter>> Properties();

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    CPlane8u Smoothed;
    CPlane8u Background;  ///< reference luma that follows the scene slowly
    bool FirstFrame = true;
    std::vector<float> History;  ///< when each pixel moved last, in seconds; 0 for long ago
    int32_t BlurDelay = 50;
    uint32_t BlurColor = 192U << 16;
};

#endif
