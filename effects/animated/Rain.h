// Rain: the picture as if it lay under a pond in the rain.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_RAIN_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_RAIN_H

#include <array>
#include <vector>

#include "framework/EffectBase.h"

/// Two height fields that take turns carry a wave simulation at full resolution; the slope of the water bends
/// and shades the luma. Each `Configure` for planar frames resets both properties to their defaults. A frame
/// with a side below 3 is left alone, and where a drop has no room no stone falls and no random number is
/// drawn.
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

    int32_t DropPeriod = 1;  ///< a stone every so many frames
    uint32_t FrameCounter = 0;
    int32_t DropSize = 3;  ///< diameter in pixels, at most 16
    bool StampReady = false;
    /// DropSize by DropSize heights. Outlive `Configure`, which may leave heights of another size in use.
    std::array<int16_t, 256> Stamp{};
    std::vector<uint8_t> Output;
    std::vector<int16_t> TargetWaves;  ///< takes the stone and the new heights
    std::vector<int16_t> SourceWaves;  ///< the heights of one frame ago
};

#endif
