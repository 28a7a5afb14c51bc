#include "effects/animated/Quark.h"

#include <cstring>

#include "framework/Surroundings.h"
#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr uint32_t kSlots = 16;

/// Pixels that are selected together.
constexpr size_t kBlock = 128;

/// dst[i] = history[slot[i]][i]; the planes of the history are `count` bytes apart. Reads all sixteen planes
/// in step and keeps the right value: sixteen vector selects are faster than one random load a pixel.
SE_INLINE void PickSlots(const uint8_t* SE_RESTRICT history, const uint8_t* SE_RESTRICT slot,
                         uint8_t* SE_RESTRICT dst, size_t count) {
    size_t start = 0;
    for (; start + kBlock <= count; start += kBlock) {
        const uint8_t* const past = history + start;
        uint8_t pixel[kBlock] = {};
        for (size_t k = 0; k < kSlots; ++k) {
            for (size_t i = 0; i < kBlock; ++i) {
                const uint8_t mask = slot[start + i] == static_cast<uint8_t>(k) ? 255 : 0;
                pixel[i] = static_cast<uint8_t>(pixel[i] | (past[k * count + i] & mask));
            }
        }
        std::memcpy(dst + start, pixel, kBlock);
    }
    for (; start < count; ++start) dst[start] = history[slot[start] * count + start];
}

}  // namespace

void CQuarkSpecialEffectFilter::Prepare() {
    const size_t luma = static_cast<size_t>(Width()) * static_cast<size_t>(Height());
    const size_t chroma = static_cast<size_t>(Width() / 2) * static_cast<size_t>(Height() / 2);
    Counter = 0;
    FirstFrame = true;
    HistoryY.assign(kSlots * luma, 0);
    HistoryU.assign(kSlots * chroma, 0);
    HistoryV.assign(kSlots * chroma, 0);
    Noise.resize(2 * luma);
    for (uint8_t& slot : Noise) slot = static_cast<uint8_t>(Rand() % int{kSlots});
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
    const uint32_t newest = Counter % kSlots;
    for (uint32_t slot = 0; slot < kSlots; ++slot) {
        if (FirstFrame || slot == newest) std::memcpy(history.data() + slot * count, plane.data, count);
    }
    AtLevel<PickSlots>(history.data(), window, plane.data, count);
}

template struct EffectClass<CQuarkSpecialEffectFilter>;
