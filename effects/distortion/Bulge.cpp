#include "effects/distortion/Bulge.h"

#include <cmath>
#include <vector>

#include "effects/distortion/RemapTable.h"

namespace {

// Angles are stepped in single precision; the limits where a wave ends and stays 0 are double. The exact
// digits affect the picture.
constexpr float kThetaStart = 3.14F, kThetaRowStart = 3.14159F, kPhiStart = 1.57F;
constexpr double kThetaEnd = 6.28, kPhiEnd = 3.14;

/// A column's contribution to the displacement: the factors of its x and y parts.
struct ColumnWave {
    double sinTheta;
    float d;
};

std::vector<ColumnWave> WalkColumns(int32_t count, float radius, float stepTheta, float amp) {
    const double stepPhi = 1.57 / double{radius};
    std::vector<ColumnWave> columns(static_cast<size_t>(count));
    float theta = kThetaStart, phi = kPhiStart;
    for (ColumnWave& column : columns) {
        column.sinTheta = double{theta} >= kThetaEnd ? 0.0 : std::sin(double{theta});
        column.d = double{phi} >= kPhiEnd ? 0.0F : static_cast<float>(std::sin(double{phi}) * double{amp});
        theta += stepTheta;
        phi = static_cast<float>(double{phi} + stepPhi);
    }
    return columns;
}

}  // namespace

ResultCode CBulgeSpecialEffectFilter::Configure(StreamDescription* description) {
    return GuardConfigure([&] {
        Build(description);
        return kSuccess;
    });
}

// Compute one quarter of the picture and mirror it to the other three. The waves run from pi upward, so they
// are negative near the centre: sources lie closer to it than their destinations. Row y is mirrored to row
// height - y, but with the source computed for the row above it; the resulting seam of one row is part of the
// picture.
void CBulgeSpecialEffectFilter::BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) {
    if (width < 1 || height < 1) return;
    const RemapTable table{xMap, yMap, width, height};
    table.FillIdentity();

    // A radius or an extent of 0, at the smallest sizes, makes the steps infinite: the waves end immediately.
    const auto radius = static_cast<int32_t>(height * 0.5 * double{0.8F});
    const auto radiusFloat = static_cast<float>(radius);
    const auto extent = static_cast<float>(radius * height / width);
    const float stepTheta = 3.14F / radiusFloat;
    const float stepPhi = 1.57F / extent;
    const auto amp = static_cast<float>(double{extent} * 0.1354 + 1.0);

    const int32_t left = width / 2;
    const std::vector<ColumnWave> columns = WalkColumns(width - left, radiusFloat, stepTheta, amp);
    float rowTheta = kThetaRowStart, rowPhi = kPhiStart;
    for (int32_t y = height / 2; y < height; ++y) {
        const float a =
            double{rowPhi} >= kPhiEnd ? 0.0F : static_cast<float>(std::sin(double{rowPhi}) * double{amp});
        const float b = double{rowTheta} >= kThetaEnd ? 0.0F : static_cast<float>(std::sin(double{rowTheta}));
        const int32_t mirrorRow = height - y, n = mirrorRow - 1;
        const bool hasMirrorRow = mirrorRow < height;  // false in a picture of one row
        for (int32_t x = left; x < width; ++x) {
            const auto& [sinTheta, d] = columns[static_cast<size_t>(x - left)];
            const auto c = static_cast<float>(sinTheta * double{a});
            const float e = d * b;
            const int32_t m = width - x - 1;
            const float toRight = static_cast<float>(x) + c, toLeft = static_cast<float>(m) - c;
            table.XRow(y)[x] = toRight;
            table.XRow(y)[m] = toLeft;
            table.YRow(y)[x] = table.YRow(y)[m] = static_cast<float>(y) + e;
            if (!hasMirrorRow) continue;
            table.XRow(mirrorRow)[x] = toRight;
            table.XRow(mirrorRow)[m] = toLeft;
            table.YRow(mirrorRow)[x] = table.YRow(mirrorRow)[m] = static_cast<float>(n) - e;
        }
        rowTheta += stepTheta;
        rowPhi += stepPhi;
    }
}

template struct EffectClass<CBulgeSpecialEffectFilter>;
