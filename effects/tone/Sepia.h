// Sepia: a brown tint by one fixed colour matrix.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_SEPIA_H
#define SPECIALEFFECTS_EFFECTS_TONE_SEPIA_H

#include <vector>

#include "framework/EffectBase.h"

/// Works on packed pixels, red first. Planar frames go through a packed workspace and come back with their
/// chroma at the resolution of the planes.
class CSepiaSpecialEffectFilter final : public PlanarEffect<CSepiaSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Sepia";

    void Prepare();
    void Release();
    /// At odd sizes the conversion back writes (width + 1) / 2 by (height + 1) / 2 chroma samples; a frame
    /// that says that its chroma planes are smaller is refused with kInvalidArgument.
    ResultCode ProcessPlanar(const PlanarFrame& frame);
    /// Needs no workspace. Frames of a stream that `Configure` refused pass unchanged.
    ResultCode ProcessPacked(uint8_t* pixels);

  private:
    std::vector<uint8_t> Workspace;
};

#endif
