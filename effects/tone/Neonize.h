// Neonize: the picture's edges as glowing lines on black, coloured by the edges of the chroma.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_NEONIZE_H
#define SPECIALEFFECTS_EFFECTS_TONE_NEONIZE_H

#include "framework/EffectBase.h"
#include "imaging/GaussKernel1D.h"
#include "imaging/GradientImage.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// Frames wider than 512 are processed at half size. The outermost pixels, which the filters cannot compute,
/// are cut away, and the rest is scaled up to the full picture. A plane no larger than the cut is unchanged.
class CNeonizeSpecialEffectFilter final : public PlanarEffect<CNeonizeSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Neonize";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    void ProcessLuma(CPlane8u& luma);
    void ProcessChroma(CPlane8u& chroma);

    CGradientImage LumaGradient;
    CGradientImage ChromaGradient;
    CPlane8u LumaWork;
    CPlane8u ChromaWork;
    CPlane8u ChromaBlur;
    CPlane8u LumaScratch;  ///< between the two smoothing passes; for chroma, `ChromaBlur` is used instead
    CGaussKernel1D LumaKernel;
    CGaussKernel1D ChromaKernel;
    ResizePlan LumaIn, LumaOut;  ///< to the working size and back
    ResizePlan ChromaIn, ChromaOut;
};

#endif
