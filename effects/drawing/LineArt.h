// Line Art: the edges of the scene as light lines on one flat colour.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_LINEART_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_LINEART_H

#include "framework/EffectBase.h"
#include "imaging/GaussKernel1D.h"
#include "imaging/Plane8u.h"

/// Lines have full luma; the background's chroma covers the whole frame, so lines have its hue too.
class CLineArtSpecialEffectFilter final : public PlanarEffect<CLineArtSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Line Art";
    static std::span<const Property<CLineArtSpecialEffectFilter>> Properties();

    /// The two variants are identical.
    explicit CLineArtSpecialEffectFilter(int32_t /*variant*/) {}

    /// Reads the background colour from the text file that `settings` names: red, green and blue in decimal,
    /// separated by white space. Each is clamped to 0..255; a missing number and all after it are 0. Returns
    /// kFailure for a null record or path, and for what is not a regular file or cannot be opened; the colour
    /// is then unchanged.
    ResultCode LoadSettings(SettingsRecord* settings) override;
    using PlanarEffect::LoadSettings;

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    uint32_t BackgroundColor = 0xFF8000;
    int16_t EdgeThreshold = 25;
    CGaussKernel1D Blur;
    CPlane8u Padded;  // the luma with a margin that the blur reaches into
    CPlane8u BlurredRows;
};

#endif
