#include "effects/distortion/Twirl.h"

#include <cmath>
#include <numeric>
#include <vector>

#include "effects/distortion/Gather.h"
#include "effects/distortion/RadialMap.h"

CTwirlSpecialEffectFilter::CTwirlSpecialEffectFilter(int32_t variant, double angle)
    : Mode(variant == 1 ? kDisc : kWholeFrame), Angle(angle) {}

void CTwirlSpecialEffectFilter::Prepare() {
    Scratch = NewPlane(Width(), Height());
    LumaMap = BuildMap(Width(), Height());
    ChromaMap = BuildMap(Width() / 2, Height() / 2);
}

void CTwirlSpecialEffectFilter::Release() {
    Scratch.Release();
    LumaMap.Release();
    ChromaMap.Release();
}

// Only the flat index of a source is clamped to the plane, not its column: a column beyond the edge wraps to
// the neighbouring row. In the whole-frame twirl this wrap is part of the look.
GatherMap CTwirlSpecialEffectFilter::BuildMap(int32_t width, int32_t height) const {
    const int32_t hw = width / 2, hh = height / 2, count = width * height;
    const double radius = Mode == kDisc ? hh : std::sqrt(static_cast<double>(hw * hw + hh * hh));
    std::vector<uint32_t> sources(static_cast<size_t>(count));
    std::iota(sources.begin(), sources.end(), 0U);

    const auto turnAt = [&](double r) {
        const double angle = (radius - r) * Angle / radius;
        return RadialTurn{std::cos(angle), std::sin(angle)};
    };
    const auto exact = [&](int32_t x, int32_t y) {
        const int32_t dx = x - hw, dy = y - hh;
        const double r = std::sqrt(static_cast<double>(dx * dx + dy * dy));
        const double t = std::atan2(dy, dx) + (radius - r) * Angle / radius;
        return SourcePoint<int32_t>{static_cast<int32_t>(std::cos(t) * r + hw),
                                    static_cast<int32_t>(std::sin(t) * r + hh)};
    };
    const RadialFrame frame{width, height, double(hw), double(hh), double(hw), double(hh)};
    MapRadially<int32_t>(frame, RadialFunction(radius, turnAt), exact,
                         [&](int32_t y, int32_t x, std::span<const SourcePoint<int32_t>> points) {
                             for (const SourcePoint<int32_t>& point : points) {
                                 const int32_t dx = x - hw, dy = y - hh;
                                 const int32_t source = point.y * width + point.x;
                                 const bool moves = Mode == kWholeFrame || dx * dx + dy * dy < hh * hh;
                                 if (moves && source >= 0 && source < count) {
                                     sources[static_cast<size_t>(y * width + x)] =
                                         static_cast<uint32_t>(source);
                                 }
                                 ++x;
                             }
                         });
    return MakeGatherMap(sources, width);
}

void CTwirlSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    GatherInPlace(LumaMap, frame.y, Scratch);
    GatherInPlace(ChromaMap, frame.u, Scratch);
    GatherInPlace(ChromaMap, frame.v, Scratch);
}

template struct EffectClass<CTwirlSpecialEffectFilter>;
