#include "effects/distortion/Liquefy.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "effects/distortion/RepeatedMean.h"
#include "framework/Surroundings.h"
#include "imaging/GradientNoise.h"
#include "imaging/Lookup.h"
#include "imaging/Prim.h"
#include "imaging/ReleaseMemory.h"

namespace {

// Blobs stay within these levels; the phase of their motion depends on the level.
constexpr int32_t kLowestBlob = 90, kHighestBlob = 180;

}  // namespace

std::span<const Property<CLiquefySpecialEffectFilter>> CLiquefySpecialEffectFilter::Properties() {
    using Effect = CLiquefySpecialEffectFilter;
    static constexpr Property<Effect> rows[] = {
        IntegerProperty<&Effect::ChangeSpeed>("ChangeSpeed", "1", "1,3").Says("Speed of the water."),
        IntegerProperty<&Effect::Intensity>("Intensity", "16", "1,24")
            .Says("Strength of the distortion in sixteenths; 16 is normal strength."),
    };
    return rows;
}

CLiquefySpecialEffectFilter::CLiquefySpecialEffectFilter(int32_t variant)
    : Mode(variant == 1   ? kWaves
           : variant == 2 ? kBlobs
                          : kNoise),
      FrameCount(Mode == kWaves   ? 16
                 : Mode == kBlobs ? 17
                                  : 0) {}

void CLiquefySpecialEffectFilter::Prepare() {
    FrameCounter = 0;
    TempPlane = NewPlane(Width(), Height());
    HeightMap = NewPlane(Width(), Height());
    if (Mode == kWaves) MakeWaves();
    if (Mode == kBlobs) MakeBlobs();
    if (Mode == kNoise) MakeNoise();
}

void CLiquefySpecialEffectFilter::Release() {
    ReleaseMemory(TempPlane, HeightMap, ScrollPlane, Frames);
}

/// One wave along each axis, 100 pixels long, that advances by one period in the cycle.
void CLiquefySpecialEffectFilter::MakeWaves() {
    constexpr double kPi = 3.1415926535;
    const auto width = static_cast<size_t>(Width()), height = static_cast<size_t>(Height());
    std::vector<double> a(width), b(height);
    for (int32_t i = 0; i < FrameCount; ++i) {
        const double phase = 100.0 / FrameCount * i;
        for (size_t x = 0; x < width; ++x) {
            a[x] = std::sin(2 * ((static_cast<double>(x) + phase) / 100.0) * kPi) * 30.0;
        }
        for (size_t y = 0; y < height; ++y) {
            b[y] = std::cos(2 * ((static_cast<double>(y) + phase) / 100.0) * kPi) * 30.0;
        }
        uint8_t* pixel = Frames.emplace_back(NewPlane(Width(), Height())).data;
        for (size_t y = 0; y < height; ++y) {
            for (size_t x = 0; x < width; ++x) {
                *pixel++ = static_cast<uint8_t>(static_cast<int32_t>(a[x] + b[y] + 60.0));
            }
        }
    }
}

/// Smoothed random bytes give each pixel's phase: all pixels of one level rise and fall together.
void CLiquefySpecialEffectFilter::MakeBlobs() {
    constexpr double kTwoPi = 6.283185307;
    const double n = FrameCount;
    RepeatedMean means(Width(), Height());
    CPlane8u levels = NewPlane(Width(), Height());
    std::vector<int32_t> random(static_cast<size_t>(Width()));
    for (int32_t y = 0; y < Height(); ++y) {
        FillRandom(random);
        std::ranges::transform(random, levels.Row(y),
                               [](int32_t number) { return static_cast<uint8_t>(number % 256); });
    }
    means.Apply(levels, 30);
    std::transform(levels.data, levels.data + levels.Size(), levels.data, [](uint8_t level) {
        return static_cast<uint8_t>(std::clamp<int32_t>(level, kLowestBlob, kHighestBlob));
    });

    for (int32_t k = 0; k < FrameCount; ++k) {
        std::array<uint8_t, 256> heights{};
        for (int32_t i = kLowestBlob; i <= kHighestBlob; ++i) {
            const double phase = std::asin((i - 135.0) / 45.0) * n / kTwoPi;
            const double height = std::sin((phase + k + i) * (kTwoPi / n)) * 8.0 + 135.0;
            heights[static_cast<size_t>(i)] = static_cast<uint8_t>(static_cast<int32_t>(height));
        }
        CPlane8u& frame = Frames.emplace_back(levels);
        LookupBytes(heights.data(), frame.data, frame.Size());
        means.Apply(frame, 6);
    }
}

/// The right half mirrors the left half, so that a window that wraps round the right end shows no seam.
void CLiquefySpecialEffectFilter::MakeNoise() {
    const auto& field = CurrentSurroundings().Shared<GradientNoise>(Rand);
    const int32_t width = Width();
    ScrollPlane = NewPlane(2 * width, Height());
    for (int32_t y = 0; y < Height(); ++y) {
        uint8_t* const row = ScrollPlane.Row(y);
        for (int32_t x = 0; x < width; ++x) {
            const double noise = field.Noise2(x / 20.0, y / 20.0);
            const auto value = static_cast<int32_t>((noise + 1.0) * 80.0 * 0.5);
            row[x] = row[2 * width - 1 - x] = static_cast<uint8_t>(std::clamp(value, 0, 255));
        }
    }
}

void CLiquefySpecialEffectFilter::CopyScrollWindow() {
    const int32_t width = Width(), height = Height(), around = 2 * width;
    const auto pos = static_cast<int32_t>((ChangeSpeed + 2) * FrameCounter % around);
    const int32_t untilEnd = std::min(width, around - pos);
    PrimCopy8uC1(ScrollPlane.data + pos, around, HeightMap.data, width, untilEnd, height);
    if (untilEnd < width) {
        PrimCopy8uC1(ScrollPlane.data, around, HeightMap.data + untilEnd, width, width - untilEnd, height);
    }
}

const CPlane8u& CLiquefySpecialEffectFilter::NextHeightMap() {
    if (Mode == kNoise) {
        CopyScrollWindow();
    } else {
        const CPlane8u& frame = Frames[static_cast<size_t>(FrameIndex)];
        FrameIndex = (FrameIndex + ChangeSpeed) % FrameCount;
        if (Intensity == kFullIntensity) return frame;
        HeightMap.CopyPixels(frame);
    }
    if (Intensity != kFullIntensity) {
        PrimMulCSfs8uC1(static_cast<uint8_t>(Intensity), HeightMap.data, Width(), Width(), Height(), 4);
    }
    return HeightMap;
}

void CLiquefySpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u luma = CPlane8u::Over(frame.y.data, Width(), Height());
    TempPlane.CopyPixels(luma);
    DisplaceByGradient(NextHeightMap(), TempPlane, luma);
}

template struct EffectClass<CLiquefySpecialEffectFilter>;
