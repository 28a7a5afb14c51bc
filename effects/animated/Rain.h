// Rain: the picture as if it lay under a pond in the rain.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_RAIN_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_RAIN_H

#include <array>
#include <vector>

#include "framework/EffectBase.h"

/// Two alternating height fields carry a wave simulation at full resolution; the slope of the water bends and
/// shades the luma. Each `Configure` for planar frames resets both properties to their defaults. A frame with
/// a side below 3 is unchanged. If a drop does not fit, none falls and no random number is drawn.
class CRainSpecialEffectFilter final : public PlanarEffect<CRainSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Rain";
    static std::span<const Property<CRainSpecialEffectFilter>> Properties();

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    void BuildStamp();
    void DropStone();

    int32_t DropPeriod = 1;  ///< frames from one drop to the next
    uint32_t FrameCounter = 0;
    int32_t DropSize = 3;  ///< diameter in pixels, at most 16
    bool StampReady = false;
    /// DropSize by DropSize heights. Outlives `Configure`, so it may still have heights of another size.
    std::array<int16_t, 256> Stamp{};
    std::vector<uint8_t> Output;
    std::vector<int16_t> TargetWaves;  ///< receives the drop and the new heights
    std::vector<int16_t> SourceWaves;  ///< the heights of one frame ago
};

#endif
