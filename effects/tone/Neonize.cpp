#include "effects/tone/Neonize.h"

#include <algorithm>
#include <cstdlib>

#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr int32_t kLargestFullWidth = 512;

void PrepareGradient(CGradientImage& gradient, const CPlane8u& plane) {
    if (!plane.Empty()) Require(gradient.Allocate(plane.width, plane.height));
}

void PrepareKernel(CGaussKernel1D& kernel, const CPlane8u& plane) {
    static_cast<void>(kernel.Build(plane.width < 320 ? 0.8 : 1.5, 0));  // both exist
}

/// Smooths along the rows, then along the columns. Pixels that a pass cannot filter are copied.
void Smooth(CPlane8u& plane, CPlane8u& scratch, const CGaussKernel1D& kernel) {
    kernel.FilterRows(plane, scratch, FilterRing::kCopied);
    kernel.FilterColumns(scratch, plane, FilterRing::kCopied);
}

SE_INLINE int16_t Magnitude(int16_t dx, int16_t dy) {
    return static_cast<int16_t>(std::abs(dx) + std::abs(dy));
}

/// Weak edges stay dark; stronger ones rise four times as fast.
SE_INLINE void DrawLumaEdges(const int16_t* SE_RESTRICT dx, const int16_t* SE_RESTRICT dy,
                             uint8_t* SE_RESTRICT dst, size_t count) {
    constexpr int16_t kWeak = 20;
    for (size_t i = 0; i < count; ++i) {
        const int16_t m = Magnitude(dx[i], dy[i]);
        const auto boosted = static_cast<int16_t>(4 * m - 60);
        dst[i] = static_cast<uint8_t>(std::min<int16_t>(m > kWeak ? boosted : m, 255));
    }
}

/// Edges go above or below the neutral 128 by their sign.
SE_INLINE void DrawChromaEdges(const int16_t* SE_RESTRICT dx, const int16_t* SE_RESTRICT dy,
                               uint8_t* SE_RESTRICT dst, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto strength = static_cast<int16_t>(2 * Magnitude(dx[i], dy[i]));
        const auto sum = static_cast<int16_t>(dx[i] + dy[i]);
        const auto level = static_cast<int16_t>(sum < 0 ? 128 - strength : 128 + strength);
        dst[i] = static_cast<uint8_t>(std::clamp<int16_t>(level, 0, 255));
    }
}

PlaneSize SizeOf(const CPlane8u& plane) {
    return {plane.width, plane.height};
}

/// Scales `work` without its `cut` outermost pixels up to a whole plane.
ResizePlan ShowInterior(const CPlane8u& work, int32_t cut, PlaneSize plane) {
    return {SizeOf(work), {cut, cut, work.width - 2 * cut, work.height - 2 * cut}, plane};
}

}  // namespace

void CNeonizeSpecialEffectFilter::Prepare() {
    const int32_t scale = Width() > kLargestFullWidth ? 2 : 1;
    const int32_t w = Width() / scale, h = Height() / scale;
    LumaWork = NewPlane(w, h);
    LumaScratch = NewPlane(w, h);
    ChromaWork = NewPlane(w / 2, h / 2);
    ChromaBlur = NewPlane(w / 2, h / 2);
    PrepareGradient(LumaGradient, LumaWork);
    PrepareGradient(ChromaGradient, ChromaWork);
    PrepareKernel(LumaKernel, LumaWork);
    PrepareKernel(ChromaKernel, ChromaWork);

    const PlaneSize luma{Width(), Height()}, chroma{Width() / 2, Height() / 2};
    LumaIn = ResizePlan(luma, SizeOf(LumaWork));
    LumaOut = ShowInterior(LumaWork, 6, luma);
    ChromaIn = ResizePlan(chroma, SizeOf(ChromaWork));
    ChromaOut = ShowInterior(ChromaWork, 3, chroma);
}

void CNeonizeSpecialEffectFilter::Release() {
    ReleaseMemory(LumaGradient, ChromaGradient, LumaWork, ChromaWork, ChromaBlur, LumaScratch, LumaKernel,
                  ChromaKernel, LumaIn, LumaOut, ChromaIn, ChromaOut);
}

void CNeonizeSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    CPlane8u u = CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height);
    CPlane8u v = CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height);
    ProcessLuma(y);
    ProcessChroma(u);
    ProcessChroma(v);
}

void CNeonizeSpecialEffectFilter::ProcessLuma(CPlane8u& luma) {
    LumaIn.Apply(luma, LumaWork);
    Smooth(LumaWork, LumaScratch, LumaKernel);
    LumaGradient.ComputeSobel(LumaWork);
    AtLevel<DrawLumaEdges>(LumaGradient.dx, LumaGradient.dy, LumaWork.data, LumaWork.Size());
    LumaOut.Apply(LumaWork, luma);
}

void CNeonizeSpecialEffectFilter::ProcessChroma(CPlane8u& chroma) {
    ChromaIn.Apply(chroma, ChromaWork);
    Smooth(ChromaWork, ChromaBlur, ChromaKernel);
    ChromaGradient.ComputeSobel(ChromaWork);
    AtLevel<DrawChromaEdges>(ChromaGradient.dx, ChromaGradient.dy, ChromaWork.data, ChromaWork.Size());
    FilterGauss5(ChromaWork, ChromaBlur, FilterRing::kCopied);
    ChromaOut.Apply(ChromaBlur, chroma);
}

template struct EffectClass<CNeonizeSpecialEffectFilter>;
