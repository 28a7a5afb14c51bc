#include "effects/drawing/Plaster.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "imaging/ByteSum.h"
#include "imaging/Morphology.h"
#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/ReleaseMemory.h"

namespace {

/// The mask's value where the scene is dark. The relief is a slope between it and 0.
constexpr uint8_t kDark = 100;

// The light comes along the vertical axis, 15 degrees above the plaster; the plaster is 510 deep on the scale
// of the slopes. Faces that point left or right are therefore shaded alike.
constexpr int32_t kLightY = 247;
constexpr int32_t kLightZ = 66;
constexpr int32_t kDepth = 510;
constexpr uint8_t kFlatShade = kLightZ;

/// Shades by slope, each component from -kSteepest to kSteepest: the sums of three pixels of 0 to kDark.
constexpr int32_t kSteepest = 3 * kDark;
constexpr int32_t kShadeStep = 2 * kSteepest + 1;
constexpr int32_t kFlatIndex = kSteepest * kShadeStep + kSteepest;
using ShadeTable = std::array<uint8_t, static_cast<size_t>(kShadeStep* kShadeStep)>;

/// Not constexpr: compiling these square roots takes longer than the rest of the file. Computing them takes
/// 3 ms, once.
ShadeTable ComputeShades() {
    ShadeTable shades;
    size_t entry = 0;
    for (int32_t ny = -kSteepest; ny <= kSteepest; ++ny) {
        const int32_t dot = ny * kLightY + kDepth * kLightZ;
        for (int32_t nx = -kSteepest; nx <= kSteepest; ++nx) {
            const double length = static_cast<float>(std::sqrt(nx * nx + ny * ny + kDepth * kDepth));
            const double shade = std::min(std::max(dot, 0) * 1.3 / length, 255.0);
            shades[entry++] = static_cast<uint8_t>(shade);
        }
    }
    shades[kFlatIndex] = kFlatShade;
    return shades;
}

const ShadeTable& Shades() {
    static const ShadeTable table = ComputeShades();
    return table;
}

/// Both ends of the range are flat: the plaster itself and the dark part.
SE_INLINE bool IsFlat(uint8_t height) {
    return height == 0 || height == kDark;
}

SE_INLINE bool AllFlat(const uint8_t* row, ptrdiff_t count) {
    uint8_t slopes = 0;
    for (ptrdiff_t x = 0; x < count; ++x) slopes = static_cast<uint8_t>(slopes | (IsFlat(row[x]) ? 0 : 1));
    return slopes == 0;
}

/// Lights the slopes of a row whose pixels and neighbours are 0 to kDark. Most of a picture is flat and
/// skipped in blocks.
SE_INLINE void EmbossRow(const uint8_t* src, ptrdiff_t step, uint8_t* dst, ptrdiff_t width,
                         const uint8_t* shades) {
    constexpr ptrdiff_t kBlock = 64;
    int32_t index[kBlock];
    for (ptrdiff_t begin = 1; begin < width - 1; begin += kBlock) {
        const ptrdiff_t count = std::min(kBlock, width - 1 - begin);
        const uint8_t* const row = src + begin;
        if (AllFlat(row, count)) {
            std::memset(dst + begin, kFlatShade, static_cast<size_t>(count));
            continue;
        }
        const uint8_t* const above = row - step;
        const uint8_t* const below = row + step;
        for (ptrdiff_t x = 0; x < count; ++x) {
            const int32_t nx =
                (above[x - 1] + row[x - 1] + below[x - 1]) - (above[x + 1] + row[x + 1] + below[x + 1]);
            const int32_t ny =
                (below[x - 1] + below[x] + below[x + 1]) - (above[x - 1] + above[x] + above[x + 1]);
            index[x] = kFlatIndex + (IsFlat(row[x]) ? 0 : ny * kShadeStep + nx);
        }
#pragma GCC unroll 4  // or the speed depends on where the linker puts the loop
        for (ptrdiff_t x = 0; x < count; ++x) dst[begin + x] = shades[index[x]];
    }
}

/// kDark up to `limit`, 0 above it.
SE_INLINE void SplitDark(const uint8_t* SE_RESTRICT src, uint8_t* SE_RESTRICT dst, size_t count,
                         uint8_t limit, uint8_t dark) {
    for (size_t i = 0; i < count; ++i) dst[i] = src[i] <= limit ? dark : 0;
}

/// Lays the flat dark part over the relief, with a rim where it extends beyond its core.
SE_INLINE void LayDark(const uint8_t* SE_RESTRICT mask, const uint8_t* SE_RESTRICT core,
                       uint8_t* SE_RESTRICT luma, size_t count) {
    constexpr uint8_t kCoreShade = 30, kRimShade = 50;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t shade = core[i] != 0 ? kCoreShade : kRimShade;
        luma[i] = mask[i] != 0 ? shade : luma[i];
    }
}

/// Sets those pixels of the rows that lie within `thickness` of the plane's edges.
void FillRing(PlaneRows plane, RowRange rows, int32_t height, int32_t thickness, uint8_t value) {
    const auto width = static_cast<size_t>(plane.width()),
               side = std::min(static_cast<size_t>(thickness), width);
    for (int32_t y = rows.begin; y < rows.end; ++y) {
        if (y < thickness || y >= height - thickness) {
            std::memset(plane[y], value, width);
        } else {
            std::memset(plane[y], value, side);
            std::memset(plane[y] + width - side, value, side);
        }
    }
}

}  // namespace

void CPlasterSpecialEffectFilter::Prepare() {
    for (RowWindow* window : {&Smooth, &Mask, &Wide, &Soft, &Relief, &Lit, &Core})
        *window = RowWindow(Width(), 8);
    DarkLimit = 40;
}

void CPlasterSpecialEffectFilter::Release() {
    ReleaseMemory(Smooth, Mask, Wide, Soft, Relief, Lit, Core);
}

void CPlasterSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    frame.FillChroma(176, 96);
    const CPlane8u plane = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    const PlaneRows luma(plane);
    const int32_t height = plane.height;
    const auto lowpass3 = [](auto... region) { PrimFilterLowpass8uC1(region..., kPrimMask3x3); };
    const auto lowpass5 = [](auto... region) { PrimFilterLowpass8uC1(region..., kPrimMask5x5); };

    // The dark part, widened and softened, is the relief that is lit; then it is laid over it.
    const auto limit = static_cast<uint8_t>(DarkLimit);
    const uint8_t dark = DarkLimit > 0 ? kDark : 0;  // at limit 0 nothing is dark, not even black
    uint64_t darkness = 0;
    const auto split = [&](RowRange rows) {
        const PlaneRows smooth = Smooth.Advance(rows), mask = Mask.Advance(rows);
        FilterBand(luma, smooth, rows, height, 2, lowpass5);
        FillRing(smooth, rows, height, 2, kFlatShade);
        AtLevel<SplitDark>(smooth[rows.begin], mask[rows.begin], smooth.bytes(rows), limit, dark);
        darkness += SumBytes(mask[rows.begin], mask.bytes(rows));
    };
    const auto widen = [&](RowRange rows) {
        FilterBand(Mask.Rows(), Wide.Advance(rows), rows, height, 1, prim::Dilate3x3);
    };
    const auto soften = [&](RowRange rows) {
        FilterBand(Wide.Rows(), Soft.Advance(rows), rows, height, 2, lowpass5);
    };
    const auto raise = [&](RowRange rows) {
        FilterBand(Soft.Rows(), Relief.Advance(rows), rows, height, 1, lowpass3);
        FillRing(Relief.Rows(), rows, height, 3, 0);
    };
    const auto light = [&](RowRange rows) {
        const PlaneRows relief = Relief.Rows(), lit = Lit.Advance(rows);
        const uint8_t* const shades = Shades().data();
        for (int32_t y = std::max(rows.begin, 1); y < std::min(rows.end, height - 1); ++y) {
            AtLevel<EmbossRow>(relief[y], relief.width(), lit[y], lit.width(), shades);
        }
        FillRing(lit, rows, height, 1, kFlatShade);
    };
    const auto finish = [&](RowRange rows) {
        FilterBand(Lit.Rows(), luma, rows, height, 2, lowpass5);
        FillRing(luma, rows, height, 2, kFlatShade);
        const PlaneRows mask = Mask.Rows(), core = Core.Advance(rows);
        FilterBand(mask, core, rows, height, 1, PrimErode3x38uC1);
        FillRing(core, rows, height, 1, 0);
        AtLevel<LayDark>(mask[rows.begin], core[rows.begin], luma[rows.begin], luma.bytes(rows));
    };
    RunInBands(height, BandPass{2, split}, BandPass{1, widen}, BandPass{2, soften}, BandPass{1, raise},
               BandPass{1, light}, BandPass{2, finish});
    if (plane.Size() > 0) MoveLimit(static_cast<int32_t>(darkness / plane.Size()));
}

void CPlasterSpecialEffectFilter::MoveLimit(int32_t share) {
    if (share < 15) ++DarkLimit;
    if (share > 70) --DarkLimit;
    DarkLimit = std::clamp(DarkLimit, 0, 255);
}

template struct EffectClass<CPlasterSpecialEffectFilter>;
