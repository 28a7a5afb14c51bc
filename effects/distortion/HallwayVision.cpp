#include "effects/distortion/HallwayVision.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "effects/distortion/Gather.h"
#include "effects/distortion/RadialMap.h"
#include "effects/distortion/RemapTable.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr double kBend = 0.3;

/// The factor of the offset at a distance, as a fraction of the circle's radius. It is 1 from the rim on, so
/// that a pixel there is its own source.
double Stretch(double r) {
    return std::pow(std::sin(std::min(r, 1.0) * 3.1415926535 * 0.5), -kBend);
}

RadialFunction StretchWithin(double radius) {
    return {radius, [radius](double d) { return RadialTurn{Stretch(d / radius), 0}; }};
}

/// Integer offsets from an integer centre. Only the flat index is clamped to the plane, not the column.
GatherMap BuildMap(int32_t width, int32_t height) {
    const int32_t hw = width / 2, hh = height / 2, R2 = hh * hh, count = width * height;
    std::vector<uint32_t> indices(static_cast<size_t>(count));
    std::iota(indices.begin(), indices.end(), 0U);
    MapRadially<int32_t>(
        {width, height, double(hw), double(hh), 0, 0}, StretchWithin(hh),
        [&](int32_t x, int32_t y) -> SourcePoint<int32_t> {
            const int32_t dx = x - hw, dy = y - hh, d2 = dx * dx + dy * dy;
            if (d2 == 0) return {0, 0};
            const double stretch = Stretch(std::sqrt(double(d2) / double(R2)));
            return {static_cast<int32_t>(dx * stretch), static_cast<int32_t>(dy * stretch)};
        },
        [&](int32_t y, int32_t x, std::span<const SourcePoint<int32_t>> offsets) {
            for (const SourcePoint<int32_t>& offset : offsets) {
                const int32_t source = (hh + offset.y) * width + hw + offset.x;
                if (source >= 0 && source < count) {
                    indices[static_cast<size_t>(y * width + x)] = static_cast<uint32_t>(source);
                }
                ++x;
            }
        });
    return MakeGatherMap(indices, width);
}

/// The same with fractions: calls use(y, x, sources) for the parts of rows that the circle reaches. Some
/// sources lie outside the plane; their pixels stay as they are.
template <class Use>
void FindSources(int32_t width, int32_t height, Use use) {
    const double cx = 0.5 * width, cy = 0.5 * height, R2 = cy * cy;
    MapRadially<float>(
        {width, height, cx, cy, cx, cy}, StretchWithin(cy),
        [&](int32_t x, int32_t y) -> SourcePoint<float> {
            const double dx = x - cx, dy = y - cy, d2 = dx * dx + dy * dy;
            const double stretch = d2 == 0 ? 1 : Stretch(std::sqrt(d2 / R2));
            return {static_cast<float>(dx * stretch + cx), static_cast<float>(dy * stretch + cy)};
        },
        use);
}

LinearWarp BuildWarp(int32_t width, int32_t height) {
    LinearWarp warp(width, height, static_cast<size_t>(0.8 * height * height));
    FindSources(width, height, [&](int32_t y, int32_t x, std::span<const SourcePoint<float>> sources) {
        warp.Add(x, y, sources);
    });
    return warp;
}

GatherMap BuildNearestMap(int32_t width, int32_t height) {
    OwnedRemapTable owner(width, height);
    const RemapTable table = owner.View();
    table.FillIdentity();
    FindSources(width, height, [&](int32_t y, int32_t x, std::span<const SourcePoint<float>> sources) {
        for (const SourcePoint<float>& source : sources) {
            table.XRow(y)[x] = source.x;
            table.YRow(y)[x] = source.y;
            ++x;
        }
    });
    return MakeGatherMap(table.NearestIndices(), width);
}

}  // namespace

CHallwayVisionSpecialEffectFilter::CHallwayVisionSpecialEffectFilter(int32_t variant)
    : UseIndexTable(variant != 1) {}

void CHallwayVisionSpecialEffectFilter::Prepare() {
    const int32_t width = Width(), height = Height();
    Scratch = NewPlane(width, height);
    if (UseIndexTable) {
        IndexFull = BuildMap(width, height);
        IndexHalf = BuildMap(width / 2, height / 2);
    } else {
        LumaWarp = BuildWarp(width, height);
        IndexHalf = BuildNearestMap(width / 2, height / 2);
    }
}

void CHallwayVisionSpecialEffectFilter::Release() {
    ReleaseMemory(Scratch, IndexFull, IndexHalf, LumaWarp);
}

void CHallwayVisionSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    GatherInPlace(IndexFull, frame.y, Scratch);  // an empty map makes the copy that the warp reads
    LumaWarp.Apply(Scratch.data, frame.y.data);
    GatherInPlace(IndexHalf, frame.u, Scratch);
    GatherInPlace(IndexHalf, frame.v, Scratch);
}

template struct EffectClass<CHallwayVisionSpecialEffectFilter>;
