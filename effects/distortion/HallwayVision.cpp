#include "effects/distortion/HallwayVision.h"

#include <cmath>
#include <numeric>
#include <vector>

#include "effects/distortion/Gather.h"
#include "effects/distortion/RadialMap.h"
#include "effects/distortion/RemapTable.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr double kBend = 0.3;

/// The factor of the offset at a distance, as a fraction of the circle's radius.
double Stretch(double r) {
    return std::pow(std::sin(r * 3.1415926535 * 0.5), -kBend);
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
                const int32_t dx = x - hw, dy = y - hh;
                const int32_t source = (hh + offset.y) * width + hw + offset.x;
                if (dx * dx + dy * dy <= R2 && source >= 0 && source < count) {
                    indices[static_cast<size_t>(y * width + x)] = static_cast<uint32_t>(source);
                }
                ++x;
            }
        });
    return MakeGatherMap(indices, width);
}

/// The same with fractions, as a table of coordinates.
void FillTable(const RemapTable& table) {
    table.FillIdentity();
    const double cx = 0.5 * table.width, cy = 0.5 * table.height, R2 = cy * cy;
    const double lastIndex = static_cast<double>(table.width) * table.height - 1;
    MapRadially<float>(
        {table.width, table.height, cx, cy, cx, cy}, StretchWithin(cy),
        [&](int32_t x, int32_t y) -> SourcePoint<float> {
            const double dx = x - cx, dy = y - cy, d2 = dx * dx + dy * dy;
            const double stretch = d2 == 0 ? 1 : Stretch(std::sqrt(d2 / R2));
            return {static_cast<float>(dx * stretch + cx), static_cast<float>(dy * stretch + cy)};
        },
        [&](int32_t y, int32_t x, std::span<const SourcePoint<float>> sources) {
            for (const SourcePoint<float>& source : sources) {
                const double dx = x - cx, dy = y - cy;
                const double index = std::trunc(table.width * double{source.y} + double{source.x});
                if (dx * dx + dy * dy <= R2 && index >= 0 && index <= lastIndex) {
                    table.XRow(y)[x] = source.x;
                    table.YRow(y)[x] = source.y;
                }
                ++x;
            }
        });
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
        OwnedRemapTable luma(width, height), chroma(width / 2, height / 2);
        FillTable(luma.View());
        FillTable(chroma.View());
        IndexHalf = MakeGatherMap(chroma.View().NearestIndices(), width / 2);
        if (width > 1 && height > 1) {
            LumaWarp = LinearWarp(luma.View());
        } else {  // too small to interpolate
            IndexFull = MakeGatherMap(luma.View().NearestIndices(), width);
        }
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
