// Clouds: drifting clouds over the video, from a loop of twenty noise pictures.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_CLOUDS_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_CLOUDS_H

#include <atomic>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// The position in the loop, shared by all effects of the same surroundings. The phase would blend
/// neighbouring pictures; it stays at 0.
struct CloudLoop {
    std::atomic<uint32_t> CloudFrame = 0;
    std::atomic<int32_t> CloudPhase = 0;
};

/// The first `Configure` that finds no data file perlin.dat makes it, with all pictures at 640 by 480. It
/// writes to a temporary file and renames it when complete. If the file cannot be written or read there are
/// no clouds, and no error is reported; if it is too short, its last picture repeats. All effects of the
/// class in the same surroundings share one position in the loop.
class CCloudsSpecialEffectFilter final : public PlanarEffect<CCloudsSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Clouds";
    static std::span<const Property<CCloudsSpecialEffectFilter>> Properties();

    ResultCode ApplyProperty(PropertyRecord*, int32_t) override { return kNotImplemented; }
    using PlanarEffect<CCloudsSpecialEffectFilter>::ApplyProperty;

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    static constexpr int kPictures = 20;

    void FillMask(const CPlane8u& now, const CPlane8u& next, int32_t weight);

    uint32_t CloudColor = 0xC0C0C0;
    int32_t Intensity = 90;  ///< percent, 0 to 100
    int32_t Type = 1;        ///< 1 even, 2 patches, 3 hanging from the upper edge
    CPlane8u NoiseFrames[kPictures];
    CPlane8u Mask;       ///< opacity of the clouds
    CPlane8u SmallMask;  ///< the same at the chroma's size
    ResizePlan Shrink;   ///< from `Mask` to `SmallMask`
};

#endif
