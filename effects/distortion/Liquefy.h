// Liquefy: the picture as seen through moving water.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_LIQUEFY_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_LIQUEFY_H

#include <cstdint>
#include <span>
#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// Luma is refracted through a height map that changes with each frame; chroma is unchanged. All height maps
/// are made when a stream is configured. A property takes effect at the next frame.
class CLiquefySpecialEffectFilter final : public PlanarEffect<CLiquefySpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Liquefy";
    static std::span<const Property<CLiquefySpecialEffectFilter>> Properties();

    /// Variant 1: crossed sine waves. Variant 2: random blobs that rise and fall. Variant 3: a window that
    /// scrolls over gradient noise.
    explicit CLiquefySpecialEffectFilter(int32_t variant);

    void Prepare();
    void Release();
    /// Counts refused frames too.
    void NoteFrame() { ++FrameCounter; }
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    enum : int32_t { kWaves = 0, kBlobs = 1, kNoise = 2 };
    static constexpr int32_t kFullIntensity = 16;

    void MakeWaves();
    void MakeBlobs();
    void MakeNoise();
    const CPlane8u& NextHeightMap();
    void CopyScrollWindow();

    int32_t Mode;
    std::vector<CPlane8u> Frames;  ///< of waves and blobs, shown in a cycle
    CPlane8u ScrollPlane;          ///< noise, twice as wide as the frame and seamless at its ends
    int32_t FrameCount;
    int32_t FrameIndex = 0;    ///< in `Frames`; `Configure` does not reset it
    int64_t FrameCounter = 0;  ///< frames since `Configure`
    int32_t Intensity = kFullIntensity;
    int32_t ChangeSpeed = 1;
    CPlane8u TempPlane;  ///< the picture before refraction
    CPlane8u HeightMap;  ///< of this frame, unless it is one of `Frames`
};

#endif
