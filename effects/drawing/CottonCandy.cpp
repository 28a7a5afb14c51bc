#include "effects/drawing/CottonCandy.h"

#include <array>

#include "imaging/Lookup.h"
#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"
#include "imaging/ScalarColor.h"

namespace {

constexpr int32_t kBlurSize = 20;
constexpr int32_t kMargin = kBlurSize / 2;

using Palette = std::array<uint8_t, 256>;

/// A palette through three colours, at 0, 128 and 255.
consteval Palette MakePalette(int32_t low, int32_t middle, int32_t high) {
    Palette palette{};
    for (int32_t i = 0; i < 256; ++i) {
        const double t = i < 128 ? i * 0.0078125 : (i - 128) / 127.0;
        const double entry = i < 128 ? t * middle + (1.0 - t) * low : t * high + (1.0 - t) * middle;
        palette[static_cast<size_t>(i)] = static_cast<uint8_t>(entry);
    }
    return palette;
}

/// Pink in the dark, violet between, cyan in the light.
constexpr Palette kUPalette = MakePalette(RgbToU(253, 167, 170), RgbToU(87, 53, 200), RgbToU(0, 201, 255));
constexpr Palette kVPalette = MakePalette(RgbToV(253, 167, 170), RgbToV(87, 53, 200), RgbToV(0, 201, 255));

/// The negative of `luma`, overexposed to white where its surroundings are bright.
SE_INLINE void LightNegative(uint8_t* SE_RESTRICT luma, ptrdiff_t width, ptrdiff_t height,
                             const uint8_t* SE_RESTRICT blurred, ptrdiff_t blurredStep) {
    for (; height > 0; --height, luma += width, blurred += blurredStep) {
        for (ptrdiff_t x = 0; x < width; ++x) {
            const int32_t weight = 255 - blurred[x] / 4 - blurred[x] / 2;
            luma[x] = static_cast<uint8_t>(255 - ((weight * luma[x]) >> 8));
        }
    }
}

}  // namespace

void CCottonCandySpecialEffectFilter::Prepare() {
    Padded = NewPlane(Width() + 2 * kMargin, Height() + 2 * kMargin);
    Blur = BoxFilter(Padded.width, Padded.height, kBlurSize);
    BlurredHalf = NewPlane(Width() / 2, Height() / 2);
    Shrink = ResizePlan({Padded.width, Padded.height}, {kMargin, kMargin, Width(), Height()},
                        {Width() / 2, Height() / 2});
}

void CCottonCandySpecialEffectFilter::Release() {
    ReleaseMemory(Padded, Blur, BlurredHalf, Shrink);
}

void CCottonCandySpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u luma = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    EqualizeHistogram(luma);
    Padded.CopyWithBorder(luma, kMargin);
    Blur.ApplyInPlace(Padded);
    AtLevel<LightNegative>(luma.data, luma.width, luma.height, Padded.Row(kMargin) + kMargin, Padded.width);

    Shrink.Apply(Padded, BlurredHalf);
    LookupBytes(kUPalette.data(), BlurredHalf.data, frame.u.data, BlurredHalf.Size());
    LookupBytes(kVPalette.data(), BlurredHalf.data, frame.v.data, BlurredHalf.Size());
}

template struct EffectClass<CCottonCandySpecialEffectFilter>;
