#include "effects/distortion/FishEye.h"

#include <algorithm>
#include <cmath>

#include "effects/distortion/RemapTable.h"
#include "framework/StreamRules.h"

namespace {

/// The source of a pixel; (0, 0) is the black pixel.
struct Source {
    float x, y;
};

/// The disc spans the shorter side of the picture, or the longer one if `large`.
Source SphereMap(int32_t x, int32_t y, int32_t width, int32_t height, bool large) {
    static const double twoOverPi = 1 / std::asin(1.0);
    const double cx = width * 0.5, cy = height * 0.5;
    const double radius = large ? std::max(cx, cy) : std::min(cx, cy);
    const double dx = x - cx, dy = y - cy;
    const double d = std::sqrt(dx * dx + dy * dy);
    if (radius <= d) return {0, 0};
    if (d == 0) return {static_cast<float>(cx), static_cast<float>(cy)};
    const double k = (d / std::sqrt(radius * radius + radius * radius) + 1) * 0.5;
    const double f = std::asin(d / radius) * k * twoOverPi * radius / d;
    return {static_cast<float>(f * dx + cx), static_cast<float>(f * dy + cy)};
}

/// Scales the distance from the centre, in whole pixels, by curve(distance / radius). The disc is as wide as
/// the picture if `large`, otherwise as high.
template <class Curve>
Source CurveMap(int32_t x, int32_t y, int32_t width, int32_t height, bool large, Curve curve) {
    const int32_t cx = width / 2, cy = height / 2;
    const int32_t radius = large ? cx : cy;
    const int32_t dx = x - cx, dy = y - cy;
    const double d = std::sqrt(static_cast<double>(dx * dx + dy * dy));
    if (d == 0) return {static_cast<float>(cx), static_cast<float>(cy)};
    if (d >= radius) return {0, 0};
    const double g = curve(d / radius);
    return {static_cast<float>(g * dx + cx), static_cast<float>(g * dy + cy)};
}

template <class Map>
void FillTable(const RemapTable& table, Map map) {
    for (int32_t y = 0; y < table.height; ++y) {
        for (int32_t x = 0; x < table.width; ++x) {
            const Source source = map(x, y);
            table.XRow(y)[x] = source.x;
            table.YRow(y)[x] = source.y;
        }
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
    if (description != nullptr) {
        StoredStream = *description;
        EffectType = kSphere;
        CSpecialEffectFilter_IppDistortion::Configure(description);
    }
    return kSuccess;
}

/// Before the first `Configure` there is no stream, and nothing is built.
void CFishEyeSpecialEffectFilter::Rebuild() {
    CSpecialEffectFilter_IppDistortion::Shutdown();
    CSpecialEffectFilter_IppDistortion::Configure(&StoredStream);
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
    switch (EffectType) {
        case kSphere:
            FillTable(table,
                      [&](int32_t x, int32_t y) { return SphereMap(x, y, width, height, LargeSphere); });
            break;
        case kCosine:
            FillTable(table, [&](int32_t x, int32_t y) {
                return CurveMap(x, y, width, height, LargeSphere, [](double t) { return std::cos(t); });
            });
            break;
        case kArcCosine:
            FillTable(table, [&](int32_t x, int32_t y) {
                return CurveMap(x, y, width, height, LargeSphere, [](double t) { return std::acos(t); });
            });
            break;
    }
}

template struct EffectClass<CFishEyeSpecialEffectFilter>;
