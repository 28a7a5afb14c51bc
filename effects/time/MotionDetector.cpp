#include "effects/time/MotionDetector.h"

#include <algorithm>

#include "framework/Surroundings.h"
#include "imaging/ExactDivision.h"
#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/ReleaseMemory.h"
#include "imaging/ScalarColor.h"

namespace {

constexpr uint32_t kRed = 255;

/// 1 where a pixel differs from the background by more than 16 levels, otherwise 0.
SE_INLINE void MarkMotion(const uint8_t* SE_RESTRICT scene, const uint8_t* SE_RESTRICT background,
                          uint8_t* SE_RESTRICT moved, size_t count) {
    constexpr int kThreshold = 16;
    for (size_t i = 0; i < count; ++i) {
        const int difference = background[i] > scene[i] ? background[i] - scene[i] : scene[i] - background[i];
        moved[i] = difference > kThreshold ? 1 : 0;
    }
}

SE_INLINE void FollowScene(uint8_t* SE_RESTRICT background, const uint8_t* SE_RESTRICT scene, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto sum = static_cast<uint16_t>(scene[i] + 2 * background[i]);
        background[i] = static_cast<uint8_t>(DivideBy3(sum));
    }
}

}  // namespace

std::span<const Property<CMotionDetectorSpecialEffectFilter>>
CMotionDetectorSpecialEffectFilter::Properties() {
    static constexpr Property<CMotionDetectorSpecialEffectFilter> rows[] = {
        IntegerProperty<&CMotionDetectorSpecialEffectFilter::BlurDelay>("BlurDelay", "50", "1,100")
            .Says("Length of the trails that motion leaves."),
        ColorProperty<&CMotionDetectorSpecialEffectFilter::BlurColor>("BlurColor", "0,0,192")
            .Says("Colour of the glow."),
    };
    return rows;
}

void CMotionDetectorSpecialEffectFilter::Prepare() {
    FirstFrame = true;
    BlurDelay = 50;
    BlurColor = kRed;
    Smoothed = RowWindow(Width(), 1);
    Background = NewPlane(Width(), Height());
    History.assign(Background.Size(), 0.0F);
}

void CMotionDetectorSpecialEffectFilter::Release() {
    ReleaseMemory(Smoothed, Background, History);
}

void CMotionDetectorSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    constexpr float kDuration = 1.0F;
    const auto now = static_cast<float>(static_cast<double>(CurrentSurroundings().Milliseconds()) / 1000.0);
    const int32_t width = Width(), historyStep = width * static_cast<int32_t>(sizeof(float));

    // The fade spans one second, from `now` - `delay`.
    const auto delay = static_cast<float>(BlurDelay * 1.8 / 100.0 + 0.1);
    const auto low = static_cast<float>(double{now} - delay);
    const auto high = static_cast<float>(low + 1.0);

    const CPlane8u plane = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    const PlaneRows luma(plane);
    const auto smooth = [&](RowRange rows) {
        FilterBand(luma, Smoothed.Advance(rows), rows, plane.height, 1,
                   [](auto... region) { PrimFilterGauss8uC1(region..., kPrimMask3x3); });
    };
    const auto draw = [&](RowRange rows) {
        const size_t count = luma.bytes(rows);
        const uint8_t* const scene = Smoothed.Rows()[rows.begin];
        uint8_t* const y = luma[rows.begin];
        uint8_t* const background = Background.Row(rows.begin);
        float* const history = History.data() + ptrdiff_t{rows.begin} * width;
        if (FirstFrame) {
            std::copy_n(scene, count, background);
            std::fill_n(history, count, 0.0F);
        }
        AtLevel<MarkMotion>(scene, background, y, count);
        PrimUpdateMotionHistory8u32f(y, width, history, historyStep, width, rows.count(), now, kDuration);
        PrimScale32f8u(history, historyStep, y, width, width, rows.count(), low, high);
        AtLevel<FollowScene>(background, scene, count);
    };
    RunInBands(plane.height, BandPass{1, smooth}, BandPass{1, draw});
    FirstFrame = false;

    CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height).Fill(PackedToU(BlurColor));
    CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height).Fill(PackedToV(BlurColor));
}

template struct EffectClass<CMotionDetectorSpecialEffectFilter>;
