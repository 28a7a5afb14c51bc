// Rotation by any angle.
#include <algorithm>
#include <array>
#include <cmath>

#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRoi.h"
#include "imaging/PrimRow.h"

namespace {

using prim::Roi;
using prim::Row;

constexpr double kPi = 3.14159265358979323846;

/// The same direction, from 0 to 360.
double ReduceAngle(double angle) {
    const double reduced = angle - std::trunc(angle / 360.0) * 360.0;
    return reduced < 0.0 ? reduced + 360.0 : reduced;
}

/// Cosine and sine; exact at the multiples of 90.
struct Direction {
    double c, s;

    explicit Direction(double reducedAngle) {
        if (reducedAngle == 0.0 || reducedAngle == 360.0) {
            c = 1.0, s = 0.0;
        } else if (reducedAngle == 90.0) {
            c = 0.0, s = 1.0;
        } else if (reducedAngle == 180.0) {
            c = -1.0, s = 0.0;
        } else if (reducedAngle == 270.0) {
            c = 0.0, s = -1.0;
        } else {
            c = std::cos(reducedAngle * kPi / 180.0);
            s = std::sin(reducedAngle * kPi / 180.0);
        }
    }
};

struct Source {
    const uint8_t* data;
    int32_t step;
    Roi roi;  // clipped

    uint8_t At(int32_t x, int32_t y) const { return Row(data, step, y)[x]; }
};

uint8_t RoundToByte(double value) {
    return static_cast<uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
}

uint8_t SampleNearest(const Source& source, double x, double y) {
    return source.At(prim::RoundHalfUp(x), prim::RoundHalfUp(y));
}

uint8_t SampleLinear(const Source& source, double x, double y) {
    const auto left = static_cast<int32_t>(x);
    const auto top = static_cast<int32_t>(y);
    const int32_t right = std::min(left + 1, source.roi.x1());
    const int32_t bottom = std::min(top + 1, source.roi.y1());
    const double fx = x - left, fy = y - top;
    const double upper = source.At(left, top) + (source.At(right, top) - source.At(left, top)) * fx;
    const double lower = source.At(left, bottom) + (source.At(right, bottom) - source.At(left, bottom)) * fx;
    return RoundToByte(upper + (lower - upper) * fy);
}

/// Weights of the four samples around a position: the cubic through the middle two whose slopes there are
/// those of their neighbours (Catmull and Rom).
std::array<double, 4> CubicWeights(double f) {
    return {((2.0 - f) * f - 1.0) * f * 0.5, ((3.0 * f - 5.0) * f * f + 2.0) * 0.5,
            ((4.0 - 3.0 * f) * f + 1.0) * f * 0.5, (f - 1.0) * f * f * 0.5};
}

/// Mixes the four rows first, then the four columns. Samples past the edge of the region repeat the edge.
uint8_t SampleCubic(const Source& source, double x, double y) {
    const Roi& roi = source.roi;
    const auto left = static_cast<int32_t>(x);
    const auto top = static_cast<int32_t>(y);
    const std::array<double, 4> wx = CubicWeights(x - left);
    const std::array<double, 4> wy = CubicWeights(y - top);
    std::array<double, 4> columns{};
    if (left > roi.x0() && top > roi.y0() && left + 2 <= roi.x1() && top + 2 <= roi.y1()) {
        const uint8_t* const r0 = Row(source.data, source.step, top - 1) + (left - 1);
        const uint8_t* const r1 = r0 + source.step;
        const uint8_t* const r2 = r1 + source.step;
        const uint8_t* const r3 = r2 + source.step;
        for (size_t i = 0; i < 4; ++i)
            columns[i] = wy[0] * r0[i] + wy[1] * r1[i] + wy[2] * r2[i] + wy[3] * r3[i];
    } else {
        const auto row = [&](int32_t j) {
            return Row(source.data, source.step, std::clamp(top + j, roi.y0(), roi.y1()));
        };
        for (int32_t i = 0; i < 4; ++i) {
            const int32_t column = std::clamp(left - 1 + i, roi.x0(), roi.x1());
            columns[static_cast<size_t>(i)] = wy[0] * row(-1)[column] + wy[1] * row(0)[column] +
                                              wy[2] * row(1)[column] + wy[3] * row(2)[column];
        }
    }
    return RoundToByte(wx[0] * columns[0] + wx[1] * columns[1] + wx[2] * columns[2] + wx[3] * columns[3]);
}

/// The way back from a destination pixel to the source.
struct BackMap {
    Direction direction;
    double xShift, yShift;

    double SourceX(double dx, double dy) const { return dx * direction.c - dy * direction.s; }
    double SourceY(double dx, double dy) const { return dx * direction.s + dy * direction.c; }
};

/// Columns of a destination row, `begin` to `end` without the latter.
struct ColumnRange {
    double begin, end;

    /// Leaves the columns d (measured from the shift) for which low <= offset + slope * d <= high, and a
    /// little more on either side: whoever uses the range tests each pixel exactly.
    void Narrow(double offset, double slope, double low, double high) {
        constexpr double kMargin = 2.0;
        if (std::fabs(slope) < 1e-9) return;
        const double d0 = (low - offset) / slope;
        const double d1 = (high - offset) / slope;
        begin = std::max(begin, std::min(d0, d1) - kMargin);
        end = std::min(end, std::max(d0, d1) + kMargin);
    }
};

/// Calls sample(x, y) for each destination pixel whose source position (x, y) lies in the source's region,
/// and stores what comes. With a soft edge the pixel is mixed with what it replaces: its weight is the
/// product of two ramps that rise from 0 on the outermost samples of the region to 1 one sample further in.
template <class Sample>
void RotateInto(const Roi& source, uint8_t* dst, int32_t dstStep, const Roi& roi, const BackMap& map,
                bool softEdge, Sample sample) {
    const double left = source.x0(), right = source.x1(), top = source.y0(), bottom = source.y1();
    for (int32_t row = roi.y0(); row <= roi.y1(); ++row) {
        uint8_t* const out = Row(dst, dstStep, row);
        const double dy = row - map.yShift;
        ColumnRange range{roi.x0() - map.xShift, roi.x1() + 1 - map.xShift};
        range.Narrow(map.SourceX(0.0, dy), map.direction.c, left, right);
        range.Narrow(map.SourceY(0.0, dy), map.direction.s, top, bottom);
        if (!(range.begin < range.end)) continue;
        const auto first = static_cast<int32_t>(std::max<double>(range.begin + map.xShift, roi.x0()));
        const auto last = static_cast<int32_t>(std::min<double>(range.end + map.xShift, roi.x1()));
        for (int32_t column = first; column <= last; ++column) {
            const double dx = column - map.xShift;
            const double x = map.SourceX(dx, dy);
            const double y = map.SourceY(dx, dy);
            if (!(x >= left && x <= right && y >= top && y <= bottom)) continue;
            const uint8_t value = sample(x, y);
            const double depth = std::min(std::min(x - left, right - x), std::min(y - top, bottom - y));
            if (softEdge && depth < 1.0) {
                const double weight = std::min(std::min(x - left, right - x), 1.0) *
                                      std::min(std::min(y - top, bottom - y), 1.0);
                out[column] = RoundToByte(out[column] + (value - out[column]) * weight);
            } else {
                out[column] = value;
            }
        }
    }
}

}  // namespace

PrimStatus PrimRotate8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                          int32_t srcRoiX, int32_t srcRoiY, int32_t srcRoiWidth, int32_t srcRoiHeight,
                          uint8_t* dst, int32_t dstStep, int32_t dstRoiX, int32_t dstRoiY,
                          int32_t dstRoiWidth, int32_t dstRoiHeight, double angle, double xShift,
                          double yShift, uint32_t interpolation) {
    const Roi srcRoi{srcRoiX, srcRoiY, srcRoiWidth, srcRoiHeight};
    const Roi dstRoi{dstRoiX, dstRoiY, dstRoiWidth, dstRoiHeight};
    const bool softEdge = (interpolation & kPrimSmoothEdge) != 0;
    const uint32_t mode = interpolation & ~kPrimSmoothEdge;
    const bool knownMode = mode == kPrimNearest || mode == kPrimLinear || mode == kPrimCubic;
    const PrimStatus status = prim::FirstError(
        prim::CheckPointers(src, dst), prim::CheckSize(srcWidth, srcHeight), prim::CheckRoiSize(srcRoi),
        prim::CheckRoiSize(dstRoi), prim::CheckStep(srcStep, srcWidth),
        dstStep < int64_t{dstRoiX} + dstRoiWidth ? kPrimStepError : kPrimOk,
        knownMode ? kPrimOk : kPrimInterpolationError, prim::CheckRoiInside(srcRoi, srcWidth, srcHeight));
    if (status != kPrimOk) return status;
    if (!std::isfinite(angle) || !std::isfinite(xShift) || !std::isfinite(yShift)) return kPrimOk;

    const BackMap map{Direction(ReduceAngle(angle)), xShift, yShift};
    const Source source{src, srcStep, prim::ClipRoi(srcRoi, srcWidth, srcHeight)};
    const bool rightAngle = map.direction.c == 0.0 || map.direction.s == 0.0;
    const bool permutation = rightAngle && xShift == std::trunc(xShift) && yShift == std::trunc(yShift);
    const auto rotate = [&](auto sampler, bool soft) {
        RotateInto(source.roi, dst, dstStep, dstRoi, map, soft,
                   [&](double x, double y) { return sampler(source, x, y); });
    };
    if (permutation)
        rotate(SampleNearest, false);
    else if (mode == kPrimNearest)
        rotate(SampleNearest, softEdge);
    else if (mode == kPrimLinear)
        rotate(SampleLinear, softEdge);
    else
        rotate(SampleCubic, softEdge);
    return kPrimOk;
}

PrimStatus PrimGetRotateShift(double xCenter, double yCenter, double angle, double* xShift, double* yShift) {
    const PrimStatus status = prim::CheckPointers(xShift, yShift);
    if (status != kPrimOk) return status;
    const double reduced = ReduceAngle(angle);
    if (reduced == 0.0) {
        *xShift = 0.0;
        *yShift = 0.0;
    } else if (reduced == 90.0) {
        *xShift = xCenter - yCenter;
        *yShift = xCenter + yCenter;
    } else if (reduced == 180.0) {
        *xShift = 2.0 * xCenter;
        *yShift = 2.0 * yCenter;
    } else if (reduced == 270.0) {
        *xShift = xCenter + yCenter;
        *yShift = yCenter - xCenter;
    } else {
        const double c = std::cos(reduced * kPi / 180.0);
        const double s = std::sin(reduced * kPi / 180.0);
        *xShift = xCenter - xCenter * c - yCenter * s;
        *yShift = yCenter - c * yCenter + s * xCenter;
    }
    return kPrimOk;
}
