// Quark: every pixel from a randomly chosen one of the last 16 frames.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_QUARK_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_QUARK_H

#include <vector>

#include "framework/EffectBase.h"

/// Motion dissolves into speckle; what stands still stays sharp. A random field twice the size of a picture,
/// drawn in `Configure`, chooses the frames; a window slides along it by one byte a frame. The first frame
/// fills the whole history.
class CQuarkSpecialEffectFilter final : public PlanarEffect<CQuarkSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Quark";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    /// 16 planes, block by block.
    using History = std::vector<uint8_t>;

    void ProcessPlane(const FramePlane& plane, History& history);

    History HistoryY, HistoryU, HistoryV;
    std::vector<uint8_t> Noise;      ///< 2 * width * height slots, each below 16
    std::vector<uint8_t> HalfNoise;  ///< width * height / 2 slots
    uint32_t Counter = 0;
    bool FirstFrame = true;
};

#endif
