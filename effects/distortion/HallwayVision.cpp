#include "effects/distortion/HallwayVision.h"

#include <cmath>
#include <numeric>
#include <vector>

#include "effects/distortion/Gather.h"
#include "effects/distortion/RadialMap.h"
#include "effects/distortion/RemapTable.h"
#include "imaging/PerLevel.h"
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

/// A circle as high as the plane, around its middle.
struct Circle {
    Circle(int32_t planeWidth, int32_t planeHeight)
        : width(planeWidth), height(planeHeight), cx(0.5 * planeWidth), cy(0.5 * planeHeight) {}

    int32_t width, height;  // of the plane
    double cx, cy;          // the centre; the radius is cy
};

/// Makes those pixels from (x, y) on their own sources that lie outside the circle, or whose source's flat
/// index lies outside the plane.
SE_INLINE void KeepRest(const Circle& circle, int32_t x, int32_t y, size_t count,
                        SourcePoint<float>* SE_RESTRICT points) {
    const double width = circle.width, lastIndex = width * circle.height - 1;
    const double dy = y - circle.cy, R2 = circle.cy * circle.cy;
    for (size_t i = 0; i < count; ++i) {
        const double column = x + static_cast<int32_t>(i), dx = column - circle.cx;
        const float sourceX = points[i].x, sourceY = points[i].y;
        const double index = std::trunc(width * double{sourceY} + double{sourceX});
        const bool moves = (dx * dx + dy * dy <= R2) & (index >= 0) & (index <= lastIndex);
        points[i].x = moves ? sourceX : static_cast<float>(column);
        points[i].y = moves ? sourceY : static_cast<float>(y);
    }
}

/// The same with fractions: calls use(x, y, points) for the parts of rows that the circle reaches.
template <class Use>
void FindPoints(const Circle& circle, Use use) {
    const double cx = circle.cx, cy = circle.cy, R2 = cy * cy;
    std::vector<SourcePoint<float>> points;
    MapRadially<float>(
        {circle.width, circle.height, cx, cy, cx, cy}, StretchWithin(cy),
        [&](int32_t x, int32_t y) -> SourcePoint<float> {
            const double dx = x - cx, dy = y - cy, d2 = dx * dx + dy * dy;
            const double stretch = d2 == 0 ? 1 : Stretch(std::sqrt(d2 / R2));
            return {static_cast<float>(dx * stretch + cx), static_cast<float>(dy * stretch + cy)};
        },
        [&](int32_t y, int32_t x, std::span<const SourcePoint<float>> sources) {
            points.assign(sources.begin(), sources.end());
            AtLevel<KeepRest>(circle, x, y, points.size(), points.data());
            use(x, y, points);
        });
}

LinearWarp BuildWarp(const Circle& circle) {
    LinearWarp warp(circle.width, circle.height, static_cast<size_t>(3.2 * circle.cy * circle.cy));
    FindPoints(circle, [&](int32_t x, int32_t y, std::span<const SourcePoint<float>> points) {
        warp.Add(x, y, points);
    });
    return warp;
}

GatherMap BuildNearestMap(const Circle& circle) {
    OwnedRemapTable owner(circle.width, circle.height);
    const RemapTable table = owner.View();
    table.FillIdentity();
    FindPoints(circle, [&](int32_t x, int32_t y, std::span<const SourcePoint<float>> points) {
        for (const SourcePoint<float>& point : points) {
            table.XRow(y)[x] = point.x;
            table.YRow(y)[x] = point.y;
            ++x;
        }
    });
    return MakeGatherMap(table.NearestIndices(), circle.width);
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
        IndexHalf = BuildNearestMap({width / 2, height / 2});
        if (width > 1 && height > 1) {
            LumaWarp = BuildWarp({width, height});
        } else {  // too small to interpolate
            IndexFull = BuildNearestMap({width, height});
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
