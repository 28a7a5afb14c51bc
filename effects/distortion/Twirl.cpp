#include "effects/distortion/Twirl.h"

#include <cmath>
#include <vector>

#include "effects/distortion/Gather.h"

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
    const int32_t hw = width / 2, hh = height / 2;
    const double radius = Mode == kDisc ? hh : std::sqrt(static_cast<double>(hw * hw + hh * hh));
    const int32_t count = width * height;
    std::vector<uint32_t> sources(static_cast<size_t>(count));
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const int32_t dx = x - hw, dy = y - hh, self = y * width + x;
            const double r = std::sqrt(static_cast<double>(dx * dx + dy * dy));
            int32_t source = self;
            if (r < radius || (Mode == kWholeFrame && radius > 0)) {
                const double t = std::atan2(dy, dx) + (radius - r) * Angle / radius;
                source = static_cast<int32_t>(std::sin(t) * r + hh) * width +
                         static_cast<int32_t>(std::cos(t) * r + hw);
            }
            sources[static_cast<size_t>(self)] =
                static_cast<uint32_t>(source >= 0 && source < count ? source : self);
        }
    }
    return MakeGatherMap(sources, width);
}

void CTwirlSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    GatherInPlace(LumaMap, frame.y, Scratch);
    GatherInPlace(ChromaMap, frame.u, Scratch);
    GatherInPlace(ChromaMap, frame.v, Scratch);
}

template struct EffectClass<CTwirlSpecialEffectFilter>;
