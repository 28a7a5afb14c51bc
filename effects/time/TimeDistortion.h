// Time Distortion: where the present differs from the scene's slow average, the past shows through.
#ifndef SPECIALEFFECTS_EFFECTS_TIME_TIMEDISTORTION_H
#define SPECIALEFFECTS_EFFECTS_TIME_TIMEDISTORTION_H

#include <initializer_list>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// A pixel that has changed is replaced by the same pixel of an earlier frame; the stronger the change, the
/// further back. The first 33 frames after `Configure` pass unchanged and fill the ring.
class CTimeDistortionSpecialEffectFilter final : public PlanarEffect<CTimeDistortionSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Time Distortion";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    static constexpr uint32_t kRing = 32;

    /// A plane of the frame and its earlier versions.
    struct Channel {
        CPlane8u* pixels;
        const CPlane8u* history;
    };
    /// Replaces those of `count` pixels from number `begin` on where `luma` differs from `average`; all
    /// planes have one size.
    void ShowPast(const CPlane8u& average, const CPlane8u& luma, size_t begin, size_t count,
                  std::initializer_list<Channel> channels);

    bool WarmingUp = true;
    uint32_t FrameCount = 0;
    CPlane8u Average;  ///< running mean of the luma; starts as the first frame's
    // The frames as they came in, in a ring.
    CPlane8u HistoryY[kRing];
    CPlane8u HistoryU[kRing];
    CPlane8u HistoryV[kRing];
    // Luma and its average at the chroma size: chroma has delays of its own.
    CPlane8u SmallLuma;
    CPlane8u SmallAverage;
    ResizePlan Shrink;  ///< to them
};

#endif
