// Fish Eye: the picture inside a disc on black, through one of three lens curves.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_FISHEYE_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_FISHEYE_H

#include <span>

#include "effects/distortion/IppDistortion.h"
#include "framework/EffectBase.h"

/// What lies outside the disc takes the frame's first pixel, which is painted black before each frame is
/// bent.
///
/// Setting a property builds the tables anew at once from the last stream description.
class CFishEyeSpecialEffectFilter final
    : public EffectBase<CFishEyeSpecialEffectFilter, CSpecialEffectFilter_IppDistortion> {
  public:
    static constexpr const char* DisplayName = "Fish Eye";
    static std::span<const Property<CFishEyeSpecialEffectFilter>> Properties();

    /// Always kSuccess; the frames of a stream that is not served are refused. Sets `EffectType` to 1.
    ResultCode Configure(StreamDescription* description) override;
    /// Paints the first pixel of frames that are refused afterwards, too: of a planar frame that has its
    /// three planes, and the first byte of a packed one. A plane is painted when the frame says that it has
    /// bytes, or when the frame has the configured format and the plane has pixels at the configured size.
    ResultCode ProcessFrame(FrameRecord* frame) override;
    void BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) override;

  private:
    enum : int32_t { kSphere = 1, kCosine = 2, kArcCosine = 3 };

    void Rebuild();
    void PaintFirstPixel(const ImageRecord& image) const;

    StreamDescription StoredStream{};
    bool LargeSphere = false;  ///< not what the property table says: a host that sets nothing gets false
    int32_t EffectType = kSphere;
};

#endif
