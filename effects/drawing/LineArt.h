// Line Art: the edges of the scene as light lines on one flat colour.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_LINEART_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_LINEART_H

#include "framework/EffectBase.h"
#include "imaging/GaussKernel1D.h"
#include "imaging/Plane8u.h"

/// Lines are of full luma and have the hue of the background, as its chroma is everywhere.
class CLineArtSpecialEffectFilter final : public PlanarEffect<CLineArtSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Line Art";
    static std::span<const Property<CLineArtSpecialEffectFilter>> Properties();

    /// There are two variants, and they are the same.
    explicit CLineArtSpecialEffectFilter(int32_t /*variant*/) {}

    /// Reads the background colour from the text file that `settings` names: red, green and blue in decimal,
    /// with blanks between. Each is clamped to 0..255; from the first one that is not there on they are 0.
    /// kFailure, and nothing changed, for a null record or path, for what is no regular file and for a file
    /// that cannot be opened; kOutOfMemory, and nothing changed, when memory runs out.
    ResultCode LoadSettings(SettingsRecord* settings) override;
    using PlanarEffect::LoadSettings;

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    ResultCode ReadBackgroundColor(const char* path);

    uint32_t BackgroundColor = 0xFF8000;
    int32_t EdgeThreshold = 25;
    CGaussKernel1D Blur;
    CPlane8u Padded;  // the luma with a margin that the blur reaches into
    CPlane8u BlurredRows;
};

#endif
