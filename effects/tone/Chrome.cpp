#include "effects/tone/Chrome.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "imaging/Lookup.h"
#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

using ToneCurve = std::array<uint8_t, 256>;

/// A sine of a sine, as a curve from `lowest` to `lowest + range`.
ToneCurve MakeToneCurve(int32_t lowest, double range) {
    constexpr double kPeriod = 0.098174770421875;  // 64 levels are a whole wave
    const auto wave = [](int32_t level) { return std::max((std::sin(level * kPeriod) + 1.0) * 0.5, 0.0); };
    ToneCurve curve;
    for (int32_t i = 0; i < 256; ++i) {
        const int32_t inner = 128 + static_cast<int32_t>(wave(i) * 90.0);
        const int32_t tone = lowest + static_cast<int32_t>(wave(inner) * range);
        curve[static_cast<size_t>(i)] = static_cast<uint8_t>(std::clamp(tone, 0, 255));
    }
    return curve;
}

/// The two curves, made once for all effects of the process.
const ToneCurve& ChromeToneDark() {
    static const ToneCurve curve = MakeToneCurve(25, 230.0);
    return curve;
}
const ToneCurve& ChromeToneBright() {
    static const ToneCurve curve = MakeToneCurve(50, 200.0);
    return curve;
}

/// Copies the pixels of `current` that differ from `steady` by 3 or more.
SE_INLINE void Steady(const uint8_t* SE_RESTRICT current, uint8_t* SE_RESTRICT steady, size_t count) {
    constexpr uint8_t kDeadZone = 3;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t now = current[i], before = steady[i];
        const auto change = static_cast<uint8_t>(std::max(now, before) - std::min(now, before));
        steady[i] = change < kDeadZone ? before : now;
    }
}

SE_INLINE void AddWrapping(const uint8_t* SE_RESTRICT offsets, uint8_t* SE_RESTRICT row, size_t count) {
    for (size_t i = 0; i < count; ++i) row[i] = static_cast<uint8_t>(row[i] + offsets[i]);
}

}  // namespace

void CChromeSpecialEffectFilter::Prepare() {
    PreviousPlane = NewPlane(Width(), Height());
    SmoothPlane = NewPlane(Width(), Height());
    Slant.resize(static_cast<size_t>(Width()));
    for (size_t x = 0; x < Slant.size(); ++x) Slant[x] = static_cast<uint8_t>(x / 3);
}

void CChromeSpecialEffectFilter::Release() {
    ReleaseMemory(PreviousPlane, SmoothPlane, Slant);
}

void CChromeSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u luma = CPlane8u::Over(frame.y.data, Width(), Height());
    FilterLowpass5(luma, SmoothPlane, FilterRing::kCopied);
    AtLevel<Steady>(SmoothPlane.data, PreviousPlane.data, PreviousPlane.Size());
    FilterLowpass5(PreviousPlane, luma);  // the outermost pixels stay unfiltered

    const ToneCurve& curve = Variant == 1 ? ChromeToneDark() : ChromeToneBright();
    for (int32_t y = 0; y < luma.height; ++y) {
        AtLevel<AddWrapping>(Slant.data(), luma.Row(y), Slant.size());
        LookupBytes(curve.data(), luma.Row(y), Slant.size());
    }
    frame.FillChroma(128, 128);
}

template struct EffectClass<CChromeSpecialEffectFilter>;
