#include "effects/distortion/HallwayVision.h"

#include <cmath>
#include <vector>

#include "effects/distortion/Gather.h"
#include "effects/distortion/RemapTable.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr double kBend = 0.3;
constexpr double kTwist = 0.0;  // radians at the centre; a design parameter of the picture

/// The mapping at one distance from the centre: offsets are scaled by `stretch` and rotated by an angle.
struct Bend {
    double stretch, sine, cosine;

    /// `d2` is the distance squared, `R2` that of the circle.
    Bend(double d2, double R2) {
        const double r = std::sqrt(d2 / R2);
        stretch = std::pow(std::sin(r * 3.1415926535 * 0.5), -kBend);
        const double q = 1 - r;
        const double angle = q * (kTwist * q);
        sine = std::sin(angle);
        cosine = std::cos(angle);
    }
};

/// Integer offsets from an integer centre. Only the flat index is clamped to the plane, not the column.
GatherMap BuildMap(int32_t width, int32_t height) {
    const int32_t hw = width / 2, hh = height / 2, R2 = hh * hh, count = width * height;
    std::vector<uint32_t> indices(static_cast<size_t>(count));
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const int32_t dx = x - hw, dy = y - hh, d2 = dx * dx + dy * dy, self = y * width + x;
            int32_t source = self;
            if (d2 != 0 && d2 <= R2) {
                const Bend bend(d2, R2);
                const double u = std::trunc(dx * bend.stretch), v = std::trunc(dy * bend.stretch);
                const auto row = static_cast<int32_t>(u * bend.sine + hh + v * bend.cosine);
                const auto column = static_cast<int32_t>(u * bend.cosine + hw - v * bend.sine);
                source = row * width + column;
            }
            indices[static_cast<size_t>(self)] =
                static_cast<uint32_t>(source >= 0 && source < count ? source : self);
        }
    }
    return MakeGatherMap(indices, width);
}

/// The same with fractions, as a table of coordinates.
void FillTable(const RemapTable& table) {
    table.FillIdentity();
    const double cx = 0.5 * table.width, cy = 0.5 * table.height, R2 = cy * cy;
    const double lastIndex = static_cast<double>(table.width) * table.height - 1;
    for (int32_t y = 0; y < table.height; ++y) {
        for (int32_t x = 0; x < table.width; ++x) {
            const double dx = x - cx, dy = y - cy, d2 = dx * dx + dy * dy;
            if (d2 == 0 || d2 > R2) continue;
            const Bend bend(d2, R2);
            const double u = dx * bend.stretch, v = dy * bend.stretch;
            const auto row = static_cast<float>(u * bend.sine + cy + v * bend.cosine);
            const auto column = static_cast<float>(u * bend.cosine + cx - v * bend.sine);
            const double index = std::trunc(table.width * double{row} + double{column});
            if (index < 0 || index > lastIndex) continue;
            table.XRow(y)[x] = column;
            table.YRow(y)[x] = row;
        }
    }
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
