#include "effects/distortion/FishEye.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

#include "effects/distortion/RadialMap.h"
#include "effects/distortion/RemapTable.h"
#include "framework/StreamRules.h"

namespace {

/// A lens: a disc, and the factor that it applies to the offset from the centre at a distance within it.
struct Lens {
    double centerX, centerY, radius;
    double (*factor)(double distance, double radius);
};

double SphereFactor(double distance, double radius) {
    static const double twoOverPi = 1 / std::asin(1.0);
    const double k = (distance / std::sqrt(radius * radius + radius * radius) + 1) * 0.5;
    return std::asin(distance / radius) * k * twoOverPi * radius / distance;
}

double CosineFactor(double distance, double radius) {
    return std::cos(distance / radius);
}

double ArcCosineFactor(double distance, double radius) {
    return std::acos(distance / radius);
}

/// Pixels beyond the disc have the source (0, 0), which is the black pixel.
void FillTable(const RemapTable& table, const Lens& lens) {
    const double cx = lens.centerX, cy = lens.centerY, radius = lens.radius;
    const auto factor = lens.factor;
    const auto setSource = [&](int32_t x, int32_t y, float sourceX, float sourceY) {
        table.XRow(y)[x] = sourceX;
        table.YRow(y)[x] = sourceY;
    };
    for (int32_t y = 0; y < table.height; ++y) {
        std::fill_n(table.XRow(y), table.width, 0.0F);
        std::fill_n(table.YRow(y), table.width, 0.0F);
    }
    const RadialFunction turns(radius, [&](double d) { return RadialTurn{factor(d, radius), 0}; });
    MapRadially<float>(
        {table.width, table.height, cx, cy, cx, cy}, turns,
        [&](int32_t x, int32_t y) -> SourcePoint<float> {
            const double dx = x - cx, dy = y - cy, d = std::sqrt(dx * dx + dy * dy);
            if (d == 0) return {static_cast<float>(cx), static_cast<float>(cy)};
            const double f = factor(d, radius);
            return {static_cast<float>(f * dx + cx), static_cast<float>(f * dy + cy)};
        },
        [&](int32_t y, int32_t x, std::span<const SourcePoint<float>> sources) {
            for (const SourcePoint<float>& source : sources) {
                const double dx = x - cx, dy = y - cy;
                if (dx * dx + dy * dy < radius * radius) setSource(x, y, source.x, source.y);
                ++x;
            }
        });
    const auto x = static_cast<int32_t>(cx), y = static_cast<int32_t>(cy);
    if (x == cx && y == cy && x < table.width && y < table.height) {
        setSource(x, y, static_cast<float>(cx), static_cast<float>(cy));
    }
}

}  // namespace

std::span<const Property<CFishEyeSpecialEffectFilter>> CFishEyeSpecialEffectFilter::Properties() {
    using Effect = CFishEyeSpecialEffectFilter;
    static constexpr ValueName kTypes[] = {
        {1, "sphere", "a glass sphere"},
        {2, "cosine", "a softer lens"},
        {3, "arc-cosine", "a lens that turns the picture inside out"},
    };
    static constexpr Property<Effect> rows[] = {
        BooleanProperty<&Effect::LargeSphere>("LargeSphere", "TRUE")
            .Says("Whether the disc spans the longer side of the picture instead of the shorter side.")
            .OnSet([](Effect& effect, int32_t value) {
                effect.LargeSphere = value != 0;
                effect.Rebuild();
            }),
        IntegerProperty<&Effect::EffectType>("EffectType", "1", "1,3")
            .Says("Lens curve.", kTypes)
            .OnSet([](Effect& effect, int32_t value) {
                effect.EffectType = value;
                effect.Rebuild();
            }),
    };
    return rows;
}

ResultCode CFishEyeSpecialEffectFilter::Configure(StreamDescription* description) {
    return GuardConfigure([&] {
        if (description != nullptr) {
            StoredStream = *description;
            EffectType = kSphere;
            Build(description);
        }
        return kSuccess;
    });
}

/// Before the first `Configure` there is no stream, and nothing is built.
void CFishEyeSpecialEffectFilter::Rebuild() {
    CSpecialEffectFilter_IppDistortion::Shutdown();
    Build(&StoredStream);
}

ResultCode CFishEyeSpecialEffectFilter::ProcessFrame(FrameRecord* frame) {
    if (frame != nullptr && IsReadable(frame->Image)) PaintFirstPixel(*frame->Image);
    return CSpecialEffectFilter_IppDistortion::ProcessFrame(frame);
}

void CFishEyeSpecialEffectFilter::PaintFirstPixel(const ImageRecord& image) const {
    const bool packed = image.Format == kFormatPacked;
    if (!packed && image.Format != kFormatPlanar) return;

    const int planes = packed ? 1 : 3;
    if (std::find(image.Plane, image.Plane + planes, nullptr) != image.Plane + planes) return;
    for (int i = 0; i < planes; ++i) {
        const int32_t smallestSide = i == 0 ? 1 : 2;
        const bool hasPixels = image.Format == StoredStream.Format && StoredStream.Width >= smallestSide &&
                               StoredStream.Height >= smallestSide;
        if (image.PlaneSize[i] > 0 || hasPixels) image.Plane[i][0] = i == 0 ? 0 : 128;
    }
}

void CFishEyeSpecialEffectFilter::BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) {
    const RemapTable table{xMap, yMap, width, height};
    // The sphere spans the shorter side of the picture, or the longer one if it is large. The discs of the
    // other lenses are as high as the picture, or as wide, and lie on a whole pixel.
    const double sphereX = width * 0.5, sphereY = height * 0.5;
    const double sphereRadius = LargeSphere ? std::max(sphereX, sphereY) : std::min(sphereX, sphereY);
    const int32_t centerX = width / 2, centerY = height / 2;
    const int32_t radius = LargeSphere ? centerX : centerY;
    switch (EffectType) {
        case kSphere:
            FillTable(table, {sphereX, sphereY, sphereRadius, SphereFactor});
            break;
        case kCosine:
            FillTable(table, {double(centerX), double(centerY), double(radius), CosineFactor});
            break;
        case kArcCosine:
            FillTable(table, {double(centerX), double(centerY), double(radius), ArcCosineFactor});
            break;
    }
}

template struct EffectClass<CFishEyeSpecialEffectFilter>;
