#include "effects/tone/XRay.h"

#include <algorithm>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/PrimDivide.h"
#include "imaging/ReleaseMemory.h"

namespace {

SE_INLINE uint8_t Darkened(uint8_t luma) {
    constexpr uint8_t kDarkening = 50;
    return static_cast<uint8_t>(std::max(luma, kDarkening) - kDarkening);
}

SE_INLINE void DarkenBytes(uint8_t* luma, size_t count) {
    for (size_t i = 0; i < count; ++i) luma[i] = Darkened(luma[i]);
}

/// sums[x] = the three pixels of column x, darkened.
SE_INLINE void SumColumns(const uint8_t* above, const uint8_t* row, const uint8_t* below,
                          uint16_t* SE_RESTRICT sums, ptrdiff_t width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        sums[x] = static_cast<uint16_t>(Darkened(above[x]) + Darkened(row[x]) + Darkened(below[x]));
    }
}

/// The negative of the 3 by 3 mean, as of the lowpass mask; column x uses sums[x] to sums[x + 2].
SE_INLINE void NegativeMeans(const uint16_t* SE_RESTRICT sums, uint8_t* SE_RESTRICT dst, ptrdiff_t width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        const auto sum = static_cast<uint16_t>(sums[x] + sums[x + 1] + sums[x + 2]);
        dst[x] = static_cast<uint8_t>(~prim::NinthOf(static_cast<uint16_t>(sum + 5)));
    }
}

}  // namespace

void CXRaySpecialEffectFilter::Prepare() {
    Workspace = NewPlane(Width(), Height());
    ColumnSums.resize(static_cast<size_t>(Width()) + 2);
}

void CXRaySpecialEffectFilter::Release() {
    ReleaseMemory(Workspace, ColumnSums);
}

void CXRaySpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    const CPlane8u luma = CPlane8u::Over(frame.y.data, Width(), Height());
    const ptrdiff_t width = luma.width;
    uint16_t* const sums = ColumnSums.data();
    for (int32_t y = 0; y < luma.height; ++y) {
        AtLevel<SumColumns>(luma.Row(std::max(y - 1, 0)), luma.Row(y),
                            luma.Row(std::min(y + 1, luma.height - 1)), sums + 1, width);
        sums[0] = sums[1];
        sums[width + 1] = sums[width];
        AtLevel<NegativeMeans>(sums, Workspace.Row(y), width);
    }

    const size_t replaced = std::min(Workspace.Size(), static_cast<size_t>(std::max(frame.y.size, 0)));
    std::memcpy(frame.y.data, Workspace.data, replaced);
    AtLevel<DarkenBytes>(frame.y.data + replaced, Workspace.Size() - replaced);
    frame.u.FillWhole(128);
    frame.v.FillWhole(98);
}

template struct EffectClass<CXRaySpecialEffectFilter>;
