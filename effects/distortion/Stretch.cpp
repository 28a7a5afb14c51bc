#include "effects/distortion/Stretch.h"

#include <algorithm>
#include <cmath>

#include "effects/distortion/RemapTable.h"

namespace {

// One wave from pi, which ends within 0.45 of the picture. The exact digits affect the picture.
constexpr float kStartAngle = 3.14159F;
constexpr double kEndAngle = 6.28;

double AngleStep(int32_t side) {
    return double{3.14F} / (side * double{0.45F});
}

}  // namespace

ResultCode CStretchSpecialEffectFilter::Configure(StreamDescription* description) {
    return GuardConfigure([&] {
        Build(description);
        return kSuccess;
    });
}

// Each map depends on one coordinate only. The half beyond the middle is mirrored to column width - x and row
// height - y; in the middle of an even side, where both meet, the mirrored value wins.
void CStretchSpecialEffectFilter::BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) {
    if (width < 1 || height < 1) return;
    const RemapTable table{xMap, yMap, width, height};
    table.FillIdentity();

    // Displacements of 25 pixels at 320 by 240.
    const double ampX = 25.0 * width / 320.0;
    const double stepX = AngleStep(width);
    float* const firstRow = table.XRow(0);
    float offset = 0.0F, angle = kStartAngle;
    for (int32_t x = width / 2; x < width && double{angle} <= kEndAngle; ++x) {
        const int32_t mirrored = width - x;
        firstRow[x] = static_cast<float>(x) + offset;
        if (mirrored < width) firstRow[mirrored] = static_cast<float>(mirrored) - offset;
        offset = static_cast<float>(std::sin(double{angle}) * ampX);
        angle = static_cast<float>(double{angle} + stepX);
    }
    for (int32_t y = 1; y < height; ++y) std::copy_n(firstRow, width, table.XRow(y));

    const double ampY = height * 25.0 / 240.0;
    const double stepY = AngleStep(height);
    angle = kStartAngle;
    for (int32_t y = height / 2; y < height; ++y) {
        const double s = std::sin(double{angle});
        angle = static_cast<float>(double{angle} + stepY);
        if (double{angle} > kEndAngle) break;
        const auto e = static_cast<float>(s * ampY);
        const int32_t mirrored = height - y;
        std::fill_n(table.YRow(y), width, static_cast<float>(y) + e);
        if (mirrored < height) std::fill_n(table.YRow(mirrored), width, static_cast<float>(mirrored) - e);
    }
}

template struct EffectClass<CStretchSpecialEffectFilter>;
