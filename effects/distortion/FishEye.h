// Fish Eye: the picture inside a disc on black, through one of three lens curves.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_FISHEYE_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_FISHEYE_H

#include <span>

#include "effects/distortion/IppDistortion.h"
#include "framework/EffectBase.h"

/// Pixels outside the disc take the value of the frame's first pixel, which is painted black before the
/// remap.
///
/// Setting a property rebuilds the tables at once from the last stream description.
class CFishEyeSpecialEffectFilter final
    : public EffectBase<CFishEyeSpecialEffectFilter, CSpecialEffectFilter_IppDistortion> {
  public:
    static constexpr const char* DisplayName = "Fish Eye";
    static std::span<const Property<CFishEyeSpecialEffectFilter>> Properties();

    /// Always returns kSuccess; frames of an unsupported stream are refused later. Sets `EffectType` to 1.
    ResultCode Configure(StreamDescription* description) override;
    /// Paints the first pixel even of frames that are then refused: of all three planes of a planar frame, or
    /// the first byte of a packed one. A plane is painted if the frame says that it has bytes, or if the
    /// frame has the configured format and the plane has pixels at the configured size.
    ResultCode ProcessFrame(FrameRecord* frame) override;
    void BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) override;

  private:
    enum : int32_t { kSphere = 1, kCosine = 2, kArcCosine = 3 };

    void Rebuild();
    void PaintFirstPixel(const ImageRecord& image) const;

    StreamDescription StoredStream{};
    bool LargeSphere = false;  ///< differs from the property table's default on purpose
    int32_t EffectType = kSphere;
};

#endif
