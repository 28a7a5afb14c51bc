#include "effects/time/TimeDistortion.h"

#include <algorithm>

#include "imaging/ExactDivision.h"
#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr int kStill = 10;     ///< the largest difference that counts as no change
constexpr size_t kBlock = 64;  ///< pixels that are skipped together if none has changed

SE_INLINE void UpdateAverage(uint8_t* SE_RESTRICT average, const uint8_t* SE_RESTRICT y, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto sum = static_cast<uint16_t>(76 * y[i] + 179 * average[i]);
        average[i] = static_cast<uint8_t>(DivideBy255(sum));
    }
}

/// The differences of a block, and the largest of them.
SE_INLINE uint8_t Differences(const uint8_t* SE_RESTRICT a, const uint8_t* SE_RESTRICT b,
                              uint8_t* SE_RESTRICT difference, size_t count) {
    uint8_t largest = 0;
    for (size_t i = 0; i < count; ++i) {
        const auto d = static_cast<uint8_t>(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]);
        difference[i] = d;
        largest = std::max(largest, d);
    }
    return largest;
}

/// Calls `reach(i, delay)` for every pixel that has changed; `delay` is how many frames it reaches back.
template <class Reach>
void ForEachChange(const CPlane8u& average, const CPlane8u& luma, Reach reach) {
    uint8_t difference[kBlock];
    for (size_t start = 0; start < luma.Size(); start += kBlock) {
        const size_t count = std::min(kBlock, luma.Size() - start);
        if (AtLevel<Differences>(average.data + start, luma.data + start, difference, count) <= kStill) {
            continue;
        }
        for (size_t k = 0; k < count; ++k) {
            if (difference[k] > kStill) reach(start + k, difference[k] / 4U);
        }
    }
}

}  // namespace

void CTimeDistortionSpecialEffectFilter::Prepare() {
    WarmingUp = true;
    FrameCount = 0;
    Average = NewPlane(Width(), Height());
    for (uint32_t k = 0; k < kRing; ++k) {
        HistoryY[k] = NewPlane(Width(), Height());
        HistoryU[k] = NewPlane(Width() / 2, Height() / 2);
        HistoryV[k] = NewPlane(Width() / 2, Height() / 2);
    }
    SmallLuma = NewPlane(Width() / 2, Height() / 2);
    SmallAverage = NewPlane(Width() / 2, Height() / 2);
    Shrink = ResizePlan({Width(), Height()}, {Width() / 2, Height() / 2});
}

void CTimeDistortionSpecialEffectFilter::Release() {
    ReleaseMemory(Average, HistoryY, HistoryU, HistoryV, SmallLuma, SmallAverage, Shrink);
}

void CTimeDistortionSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    CPlane8u u = CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height);
    CPlane8u v = CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height);

    const uint32_t newest = FrameCount % kRing;
    HistoryY[newest].CopyPixels(y);
    HistoryU[newest].CopyPixels(u);
    HistoryV[newest].CopyPixels(v);
    if (WarmingUp && FrameCount == 0) Average.CopyPixels(y);
    AtLevel<UpdateAverage>(Average.data, y.data, y.Size());

    if (WarmingUp) {
        if (FrameCount++ >= kRing) WarmingUp = false;
        return;
    }
    Shrink.Apply(y, SmallLuma);
    Shrink.Apply(Average, SmallAverage);
    // Delays longer than the ring wrap round it.
    const auto past = [now = FrameCount](uint32_t delay) { return (now - delay) % kRing; };
    ForEachChange(Average, y, [&](size_t i, uint32_t delay) { y.data[i] = HistoryY[past(delay)].data[i]; });
    ForEachChange(SmallAverage, SmallLuma, [&](size_t i, uint32_t delay) {
        u.data[i] = HistoryU[past(delay)].data[i];
        v.data[i] = HistoryV[past(delay)].data[i];
    });
    ++FrameCount;
}

template struct EffectClass<CTimeDistortionSpecialEffectFilter>;
