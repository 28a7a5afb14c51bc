#include "effects/drawing/ColoredPencil.h"

#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

/// Turns a luma plane and its local mean into lines: 16 times the rise above the mean, drawn dark. All other
/// pixels are shaded a little, so that paper is not quite white. Both planes receive the result.
SE_INLINE void DrawLines(uint8_t* SE_RESTRICT luma, uint8_t* SE_RESTRICT mean, size_t count) {
    constexpr uint8_t kPaperShade = 30;
    for (size_t i = 0; i < count; ++i) {
        const auto rise = static_cast<uint8_t>(std::max(luma[i], mean[i]) - mean[i]);
        const auto line = static_cast<uint8_t>(rise < 16 ? 255 - 16 * rise : 0);
        luma[i] = mean[i] = static_cast<uint8_t>(line > kPaperShade ? line - kPaperShade : line);
    }
}

}  // namespace

void CColoredPencilSpecialEffectFilter::Prepare() {
    Scratch = NewPlane(Width(), Height());
    Blur = BoxFilter(Width(), Height(), 5);
}

void CColoredPencilSpecialEffectFilter::Release() {
    ReleaseMemory(Scratch, Blur);
}

void CColoredPencilSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u luma = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    Blur.Apply(luma, Scratch);
    AtLevel<DrawLines>(luma.data, Scratch.data, luma.Size());
    FilterGauss5(Scratch, luma);  // the grain of the pencil
}

template struct EffectClass<CColoredPencilSpecialEffectFilter>;
