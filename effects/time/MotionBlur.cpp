#include "effects/time/MotionBlur.h"

#include <algorithm>

#include "imaging/ExactDivision.h"
#include "imaging/PerLevel.h"

namespace {

/// The brightest of the three past frames has a weight of three.
SE_INLINE void BlendTrails(uint8_t* SE_RESTRICT y, const uint8_t* SE_RESTRICT a, const uint8_t* SE_RESTRICT b,
                           const uint8_t* SE_RESTRICT d, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint8_t brightest = std::max(a[i], std::max(b[i], d[i]));
        const auto sum = static_cast<uint16_t>(4 * y[i] + 3 * a[i] + 3 * brightest + 2 * b[i] + d[i]);
        y[i] = static_cast<uint8_t>(DivideBy13(sum));
    }
}

SE_INLINE void BlendGhost(uint8_t* SE_RESTRICT y, const uint8_t* SE_RESTRICT a, const uint8_t* SE_RESTRICT b,
                          const uint8_t* SE_RESTRICT d, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        y[i] = static_cast<uint8_t>(static_cast<uint16_t>(y[i] + a[i] + 2 * b[i] + 4 * d[i]) >> 3);
    }
}

}  // namespace

void CMotionBlurSpecialEffectFilter::Prepare() {
    FrameCount = 0;
    for (CPlane8u& plane : History) plane = NewPlane(Width(), Height());
}

void CMotionBlurSpecialEffectFilter::Release() {
    for (CPlane8u& plane : History) plane.Release();
}

void CMotionBlurSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    if (Mode != 0 && Mode != 1) return;
    constexpr int64_t kFirstBlended = 4;

    CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    const int64_t c = FrameCount++;
    const CPlane8u& a = History[c % 3];        // the output of frame c - 1
    CPlane8u& b = History[(c + 1) % 3];        // frame c - 3, overwritten below
    const CPlane8u& d = History[(c + 2) % 3];  // frame c - 2
    if (c >= kFirstBlended) {
        (Mode == 0 ? AtLevel<BlendTrails> : AtLevel<BlendGhost>)(y.data, a.data, b.data, d.data, y.Size());
    }
    b.CopyPixels(y);
}

template struct EffectClass<CMotionBlurSpecialEffectFilter>;
