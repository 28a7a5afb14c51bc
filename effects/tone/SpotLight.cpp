#include "effects/tone/SpotLight.h"

#include <algorithm>
#include <cmath>

#include "imaging/PerLevel.h"

namespace {

/// `level` truncated and clamped to 0..255. NaN, the root of a negative number, is dark.
uint8_t LightLevel(double level) {
    return level > 0.0 ? static_cast<uint8_t>(std::min(level, 255.0)) : uint8_t{0};
}

/// mask(x, y) = level(y, distance of x from the middle), mirrored. The distance is at least 1; at an odd
/// width the middle column is as bright as its neighbours.
template <class Level>
void FillMirrored(CPlane8u& mask, Level level) {
    const int32_t half = mask.width / 2;
    for (int32_t y = 0; y < mask.height; ++y) {
        uint8_t* const row = mask.Row(y);
        for (int32_t i = 0; i < half; ++i) {
            row[i] = row[mask.width - 1 - i] = level(y, static_cast<double>(half - i));
        }
        if (mask.width % 2 != 0 && half > 0) row[half] = row[half - 1];
    }
}

/// Falls off from the centre by 255 over half the diagonal, more slowly downwards.
void FillRound(CPlane8u& mask) {
    const double w = mask.width, h = mask.height;
    const double diagonal = std::sqrt(w * w + h * h);
    const int32_t middle = mask.height / 2;
    FillMirrored(mask, [=](int32_t y, double d) {
        double a = std::abs(middle - y);
        if (y > middle) a = a / 1.4;
        const auto fallOff = static_cast<int32_t>(std::sqrt(d * d + a * a) * 255.0 / (diagonal * 0.5));
        return static_cast<uint8_t>(255 - (fallOff & 255));
    });
}

/// Shines from above the frame and widens downwards.
void FillBeam(CPlane8u& mask) {
    const int32_t quarter = mask.height / 4;
    FillMirrored(mask, [=](int32_t y, double d) {
        const double q = quarter + y;
        const int32_t third = y / 3;
        return LightLevel((std::sqrt(q * q - (d * 1.8) * (d * 1.8)) - third) * 255.0 / q);
    });
}

/// Wider and brighter, with a sharp edge.
void FillSteepBeam(CPlane8u& mask) {
    const int32_t h = mask.height, quarter = h / 4;
    const double k = h / 255.0;
    FillMirrored(mask, [=](int32_t y, double d) {
        const double q = quarter + y;
        double v = 2 * std::sqrt(q * q - d * d) - y * 1.8;
        if (v > 0.0) v += (h - y) / k;
        return LightLevel(v - 255.0);
    });
}

/// Adds half of the mask less 91; without any light 127 levels are lost. Saturating steps down and up, one
/// of which is 0, keep to bytes.
SE_INLINE void LightLuma(const uint8_t* SE_RESTRICT mask, uint8_t* SE_RESTRICT luma, size_t count) {
    constexpr uint8_t kUnchanged = 91, kDark = 127;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t light = mask[i], half = light >> 1;
        const auto lost = static_cast<uint8_t>(std::max(half, kUnchanged) - half);
        const uint8_t down = light == 0 ? kDark : lost;
        const auto up = static_cast<uint8_t>(std::max(half, kUnchanged) - kUnchanged);
        const auto dimmed = static_cast<uint8_t>(std::max(luma[i], down) - down);
        const auto room = static_cast<uint8_t>(255 - up);
        luma[i] = static_cast<uint8_t>(std::min(dimmed, room) + up);
    }
}

/// Adds the offsets, saturated.
SE_INLINE void WarmChroma(const uint8_t* SE_RESTRICT offsets, uint8_t* SE_RESTRICT chroma, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint8_t offset = offsets[i];
        const auto room = static_cast<uint8_t>(255 - offset);
        chroma[i] = static_cast<uint8_t>(std::min(chroma[i], room) + offset);
    }
}

}  // namespace

void CSpotLightSpecialEffectFilter::Prepare() {
    LumaMask = NewPlane(Width(), Height());
    switch (Shape) {
        case 0:
            FillRound(LumaMask);
            break;
        case 1:
            FillBeam(LumaMask);
            break;
        default:
            FillSteepBeam(LumaMask);
            break;
    }
    ChromaWarmth = NewPlane(Width() / 2, Height() / 2);
    ResizePlane(LumaMask, ChromaWarmth);
    std::transform(ChromaWarmth.data, ChromaWarmth.data + ChromaWarmth.Size(), ChromaWarmth.data,
                   [](uint8_t light) { return static_cast<uint8_t>(light * 16 / 255); });
}

void CSpotLightSpecialEffectFilter::Release() {
    LumaMask.Release();
    ChromaWarmth.Release();
}

void CSpotLightSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    AtLevel<LightLuma>(LumaMask.data, frame.y.data, LumaMask.Size());
    AtLevel<WarmChroma>(ChromaWarmth.data, frame.u.data, ChromaWarmth.Size());
    AtLevel<WarmChroma>(ChromaWarmth.data, frame.v.data, ChromaWarmth.Size());
}

template struct EffectClass<CSpotLightSpecialEffectFilter>;
