#include "effects/animated/Quark.h"

#include <algorithm>
#include <cstring>

#include "framework/Surroundings.h"
#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr uint32_t kSlots = 16;

/// Pixels of a block. The sixteen versions of a block lie one behind the other, so that a frame reads the
/// history in the order of memory.
constexpr size_t kBlock = 64;

constexpr size_t HistoryBytes(size_t pixels) {
    return (pixels + kBlock - 1) / kBlock * kBlock * kSlots;
}

/// pixels[i] = versions[slots[i] * kBlock + i]. Reads all versions and keeps the right one: sixteen vector
/// selects are faster than one random load a pixel.
SE_INLINE void PickBlock(const uint8_t* SE_RESTRICT versions, const uint8_t* SE_RESTRICT slots,
                         uint8_t* SE_RESTRICT pixels) {
    uint8_t picked[kBlock] = {};
    for (size_t k = 0; k < kSlots; ++k) {
        for (size_t i = 0; i < kBlock; ++i) {
            const uint8_t mask = slots[i] == static_cast<uint8_t>(k) ? 255 : 0;
            picked[i] = static_cast<uint8_t>(picked[i] | (versions[k * kBlock + i] & mask));
        }
    }
    std::memcpy(pixels, picked, kBlock);
}

/// Puts a plane into slot `newest` of its history and picks each of its pixels from the slot that `slots`
/// names.
SE_INLINE void RenewAndPick(uint8_t* history, size_t newest, const uint8_t* slots, uint8_t* plane,
                            size_t count) {
    for (; count >= kBlock; count -= kBlock) {
        std::memcpy(history + newest * kBlock, plane, kBlock);
        PickBlock(history, slots, plane);
        history += kSlots * kBlock;
        slots += kBlock;
        plane += kBlock;
    }
    for (size_t i = 0; i < count; ++i) {
        history[newest * kBlock + i] = plane[i];
        plane[i] = history[slots[i] * kBlock + i];
    }
}

/// Puts a plane into all slots.
void FillHistory(uint8_t* history, const uint8_t* plane, size_t count) {
    for (size_t start = 0; start < count; start += kBlock) {
        for (size_t slot = 0; slot < kSlots; ++slot, history += kBlock) {
            std::memcpy(history, plane + start, std::min(kBlock, count - start));
        }
    }
}

}  // namespace

void CQuarkSpecialEffectFilter::Prepare() {
    const size_t luma = static_cast<size_t>(Width()) * static_cast<size_t>(Height());
    const size_t chroma = static_cast<size_t>(Width() / 2) * static_cast<size_t>(Height() / 2);
    Counter = 0;
    FirstFrame = true;
    HistoryY.assign(HistoryBytes(luma), 0);
    HistoryU.assign(HistoryBytes(chroma), 0);
    HistoryV.assign(HistoryBytes(chroma), 0);
    Noise.resize(2 * luma);
    std::vector<int32_t> random(static_cast<size_t>(Width()));
    for (auto row = Noise.begin(); row != Noise.end(); row += Width()) {
        FillRandom(random);
        std::ranges::transform(random, row, [](int32_t n) { return static_cast<uint8_t>(n % int{kSlots}); });
    }
    HalfNoise.resize(luma / 2);
    for (size_t i = 0; i < HalfNoise.size(); ++i) HalfNoise[i] = Noise[4 * i];
}

void CQuarkSpecialEffectFilter::Release() {
    ReleaseMemory(HistoryY, HistoryU, HistoryV, Noise, HalfNoise);
}

void CQuarkSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    ProcessPlane(frame.y, HistoryY);
    ProcessPlane(frame.u, HistoryU);
    ProcessPlane(frame.v, HistoryV);
    FirstFrame = false;
}

void CQuarkSpecialEffectFilter::ProcessPlane(const FramePlane& plane, History& history) {
    const size_t count = static_cast<size_t>(plane.width) * static_cast<size_t>(plane.height);
    if (count == 0) return;
    // The luma's window is taken before the counter moves, the chroma windows after it.
    const size_t offset = Counter % count;
    const uint8_t* window = HalfNoise.data() + offset;
    if (plane.width == Width()) {
        window = Noise.data() + offset;
        ++Counter;
    }
    if (FirstFrame) FillHistory(history.data(), plane.data, count);
    AtLevel<RenewAndPick>(history.data(), Counter % kSlots, window, plane.data, count);
}

template struct EffectClass<CQuarkSpecialEffectFilter>;
