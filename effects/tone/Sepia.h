// Sepia: a brown tint by one fixed colour matrix.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_SEPIA_H
#define SPECIALEFFECTS_EFFECTS_TONE_SEPIA_H

#include <vector>

#include "framework/EffectBase.h"
#include "framework/RoundedChroma.h"

/// Works on packed pixels, red first. Planar frames go through a packed workspace, some rows at a time, and
/// come back with their chroma at the resolution of the planes.
class CSepiaSpecialEffectFilter final : public PlanarEffect<CSepiaSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Sepia";

    void Prepare();
    void Release();
    /// Returns kInvalidArgument when a chroma plane is too small; see RoundedChroma.
    ResultCode ProcessPlanar(const PlanarFrame& frame);
    /// Needs no workspace. Frames of a stream that `Configure` refused pass unchanged.
    ResultCode ProcessPacked(uint8_t* pixels);

  private:
    std::vector<uint8_t> Workspace;
    RoundedChroma Chroma;
};

#endif
