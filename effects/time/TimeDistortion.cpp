#include "effects/time/TimeDistortion.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "imaging/ExactDivision.h"
#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr int kStill = 10;         ///< the largest difference that counts as no change
constexpr size_t kStretch = 4096;  ///< pixels whose values stay in the first-level cache
constexpr uint8_t kPresent = 255;  ///< instead of a slot: the pixel has not changed

SE_INLINE void UpdateAverage(uint8_t* SE_RESTRICT average, const uint8_t* SE_RESTRICT y, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto sum = static_cast<uint16_t>(76 * y[i] + 179 * average[i]);
        average[i] = static_cast<uint8_t>(DivideBy255(sum));
    }
}

/// The slot of the ring that each pixel of a block comes from, by its difference from the average. `now` is
/// the slot of the present; delays longer than the ring wrap round it. Returns whether a pixel has changed.
SE_INLINE bool ChooseSlots(const uint8_t* SE_RESTRICT average, const uint8_t* SE_RESTRICT luma, uint8_t now,
                           uint8_t* SE_RESTRICT slots, size_t count) {
    uint8_t largest = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t a = average[i], b = luma[i];
        const auto difference = static_cast<uint8_t>(a > b ? a - b : b - a);
        const auto slot = static_cast<uint8_t>(static_cast<uint8_t>(now - difference / 4) % 32);
        slots[i] = difference > kStill ? slot : kPresent;
        largest = std::max(largest, difference);
    }
    return largest > kStill;
}

/// The set of slots of a block, a bit for each.
uint32_t SetOf(const uint8_t* slots, size_t count) {
    uint64_t set = 0;
    for (size_t i = 0; i < count; ++i) set |= uint64_t{1} << slots[i] % 64;  // the present is bit 63
    return static_cast<uint32_t>(set);
}

/// Replaces the pixels that come from `slot`. Reads all pixels of the past: a load under a condition would
/// keep the compiler from vectorizing.
SE_INLINE void TakeFrom(const uint8_t* SE_RESTRICT past, const uint8_t* SE_RESTRICT slots, uint8_t slot,
                        uint8_t* SE_RESTRICT pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint8_t then = past[i], present = pixels[i];
        pixels[i] = slots[i] == slot ? then : present;
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
    HistoryU[newest].CopyPixels(u);
    HistoryV[newest].CopyPixels(v);
    if (WarmingUp && FrameCount == 0) Average.CopyPixels(y);
    for (size_t begin = 0; begin < y.Size(); begin += kStretch) {
        const size_t count = std::min(kStretch, y.Size() - begin);
        std::memcpy(HistoryY[newest].data + begin, y.data + begin, count);
        AtLevel<UpdateAverage>(Average.data + begin, y.data + begin, count);
        if (!WarmingUp) ShowPast(Average, y, begin, count, {{&y, HistoryY}});
    }
    if (WarmingUp) {
        if (FrameCount++ >= kRing) WarmingUp = false;
        return;
    }
    Shrink.Apply(HistoryY[newest], SmallLuma);
    Shrink.Apply(Average, SmallAverage);
    for (size_t begin = 0; begin < u.Size(); begin += kStretch) {
        ShowPast(SmallAverage, SmallLuma, begin, std::min(kStretch, u.Size() - begin),
                 {{&u, HistoryU}, {&v, HistoryV}});
    }
    ++FrameCount;
}

/// Works on blocks, since the pixels of a block come from few frames, or all from the present.
void CTimeDistortionSpecialEffectFilter::ShowPast(const CPlane8u& average, const CPlane8u& luma, size_t begin,
                                                  size_t count, std::initializer_list<Channel> channels) {
    constexpr size_t kBlock = 64;
    const auto now = static_cast<uint8_t>(FrameCount % kRing);
    uint8_t slots[kStretch];
    uint32_t used[kStretch / kBlock];
    const auto forBlocks = [&](auto visit) {
        for (size_t at = 0; at < count; at += kBlock) visit(at, std::min(kBlock, count - at));
    };
    // The pixels of the past are far apart in memory: all are on their way before the first is needed.
    forBlocks([&](size_t at, size_t pixels) {
        uint32_t& set = used[at / kBlock];
        const size_t start = begin + at;
        const bool changed =
            AtLevel<ChooseSlots>(average.data + start, luma.data + start, now, slots + at, pixels);
        set = changed ? SetOf(slots + at, pixels) : 0;
        for (uint32_t left = set; left != 0; left &= left - 1) {
            for (const auto& [plane, history] : channels) {
                __builtin_prefetch(history[std::countr_zero(left)].data + start);
            }
        }
    });
    forBlocks([&](size_t at, size_t pixels) {
        const size_t start = begin + at;
        for (uint32_t left = used[at / kBlock]; left != 0; left &= left - 1) {
            const auto slot = static_cast<size_t>(std::countr_zero(left));
            for (const auto& [plane, history] : channels) {
                AtLevel<TakeFrom>(history[slot].data + start, slots + at, static_cast<uint8_t>(slot),
                                  plane->data + start, pixels);
            }
        }
    });
}

template struct EffectClass<CTimeDistortionSpecialEffectFilter>;
