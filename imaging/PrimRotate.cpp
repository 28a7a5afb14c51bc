// Rotation by any angle.
//
// Every interpolation mode is a kernel: the weights of four samples around a position along one axis. The
// pixels of a stretch are first traced back to the source; the four by four samples around each are fetched
// and mixed in loops that the compiler vectorises. Pixels whose samples reach past the region are mixed one
// by one, with the region's edge repeated.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRoi.h"
#include "imaging/PrimRow.h"

namespace {

using prim::Roi;
using prim::Row;

constexpr double kPi = 3.14159265358979323846;

/// The same angle, reduced to 0 to 360 degrees.
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

// ---- kernels ---------------------------------------------------------------------------------------
//
// Weights of the samples at -1, 0, 1 and 2 for a position at f, from 0 to 1.

struct Weights {
    float w0, w1, w2, w3;

    SE_INLINE float Mix(float a, float b, float c, float d) const {
        return w0 * a + w1 * b + w2 * c + w3 * d;
    }
};

struct NearestKernel {
    SE_INLINE static Weights At(float f) {
        const auto second = static_cast<float>(static_cast<int32_t>(f >= 0.5f));
        return {0.0f, 1.0f - second, second, 0.0f};
    }
};

struct LinearKernel {
    SE_INLINE static Weights At(float f) { return {0.0f, 1.0f - f, f, 0.0f}; }
};

/// The cubic through the middle two whose slopes there are those of their neighbours (Catmull and Rom).
struct CubicKernel {
    SE_INLINE static Weights At(float f) {
        return {((2.0f - f) * f - 1.0f) * f * 0.5f, ((3.0f * f - 5.0f) * f * f + 2.0f) * 0.5f,
                ((4.0f - 3.0f * f) * f + 1.0f) * f * 0.5f, (f - 1.0f) * f * f * 0.5f};
    }
};

// ---- tracing back ----------------------------------------------------------------------------------

/// The source with its clipped region, and the way from a destination pixel back to it.
struct Trace {
    const uint8_t* data;
    int32_t step;
    Roi roi;
    double left, right, top, bottom;  // the region's outermost samples
    Direction direction;
    double xShift, yShift;

    Trace(const uint8_t* source, int32_t sourceStep, const Roi& clipped, const Direction& turn, double dx,
          double dy)
        : data(source),
          step(sourceStep),
          roi(clipped),
          left(clipped.x0()),
          right(clipped.x1()),
          top(clipped.y0()),
          bottom(clipped.y1()),
          direction(turn),
          xShift(dx),
          yShift(dy) {}

    double SourceX(double dx, double dy) const { return dx * direction.c - dy * direction.s; }
    double SourceY(double dx, double dy) const { return dx * direction.s + dy * direction.c; }
};

constexpr ptrdiff_t kStretch = 128;  // pixels that are handled at once

/// The sources of the pixels of a stretch. Inner pixels have all their samples in the region.
struct Places {
    std::array<double, kStretch> x, y;
    std::array<int32_t, kStretch> column, row;  // the sample before the position
    std::array<float, kStretch> xFraction, yFraction;
    std::array<int32_t, kStretch> inside, inner;
};

SE_INLINE double Clamp(double position, double low, double high) {
    const double notBelow = position > low ? position : low;
    return notBelow < high ? notBelow : high;
}

/// Traces back the `count` pixels from (column, row) on.
SE_INLINE void FindPlaces(const Trace& trace, int32_t column, int32_t row, ptrdiff_t count,
                          Places& SE_RESTRICT places) {
    const double left = trace.left, right = trace.right, top = trace.top, bottom = trace.bottom;
    const double c = trace.direction.c, s = trace.direction.s;
    const double xShift = trace.xShift, dy = row - trace.yShift;
    // Inner pixels: one sample of the region before theirs, two behind.
    const int32_t firstColumn = trace.roi.x0() + 1, firstRow = trace.roi.y0() + 1;
    const auto columns = static_cast<uint32_t>(std::max(trace.roi.width - 3, 0));
    const auto rows = static_cast<uint32_t>(std::max(trace.roi.height - 3, 0));
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const double dx = column + static_cast<int32_t>(i) - xShift;
        const double x = dx * c - dy * s, y = dx * s + dy * c;
        const double xIn = Clamp(x, left, right), yIn = Clamp(y, top, bottom);
        const auto ix = static_cast<int32_t>(xIn), iy = static_cast<int32_t>(yIn);
        const auto inside = static_cast<int32_t>(xIn == x) & static_cast<int32_t>(yIn == y);
        places.x[i] = x;
        places.y[i] = y;
        places.column[i] = ix;
        places.row[i] = iy;
        places.xFraction[i] = static_cast<float>(xIn - ix);
        places.yFraction[i] = static_cast<float>(yIn - iy);
        places.inside[i] = inside;
    }
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const auto innerColumn = static_cast<uint32_t>(places.column[i] - firstColumn) < columns;
        const auto innerRow = static_cast<uint32_t>(places.row[i] - firstRow) < rows;
        places.inner[i] =
            places.inside[i] & static_cast<int32_t>(innerColumn) & static_cast<int32_t>(innerRow);
    }
}

// ---- mixing ----------------------------------------------------------------------------------------

SE_INLINE uint8_t RoundToByte(float value) {
    const float raised = value + 0.5f;
    const float notBelow = raised > 0.0f ? raised : 0.0f;
    return static_cast<uint8_t>(static_cast<int32_t>(notBelow < 255.0f ? notBelow : 255.0f));
}

/// Four rows of four samples for each pixel of a stretch, the leftmost in the low byte.
using Samples = std::array<std::array<uint32_t, kStretch>, 4>;

/// Mixes the rows first, then the columns.
template <class Kernel>
SE_INLINE void MixSamples(const Samples& SE_RESTRICT samples, const Places& SE_RESTRICT places,
                          ptrdiff_t count, uint8_t* SE_RESTRICT mixed) {
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const Weights across = Kernel::At(places.xFraction[i]), down = Kernel::At(places.yFraction[i]);
        const uint32_t r0 = samples[0][i], r1 = samples[1][i], r2 = samples[2][i], r3 = samples[3][i];
        const auto column = [&](int shift) {
            const auto sample = [shift](uint32_t row) {
                return static_cast<float>(static_cast<int32_t>((row >> shift) & 255));
            };
            return down.Mix(sample(r0), sample(r1), sample(r2), sample(r3));
        };
        mixed[i] = RoundToByte(across.Mix(column(0), column(8), column(16), column(24)));
    }
}

/// Mixes one pixel near the edge of the region; samples outside repeat the edge.
template <class Kernel>
uint8_t MixEdgePixel(const Trace& trace, const Places& places, size_t i) {
    const Roi& roi = trace.roi;
    const Weights across = Kernel::At(places.xFraction[i]), down = Kernel::At(places.yFraction[i]);
    const auto row = [&](int32_t j) {
        return Row(trace.data, trace.step, std::clamp(places.row[i] + j, roi.y0(), roi.y1()));
    };
    const uint8_t *const r0 = row(-1), *const r1 = row(0), *const r2 = row(1), *const r3 = row(2);
    const auto column = [&](int32_t k) {
        const int32_t x = std::clamp(places.column[i] + k, roi.x0(), roi.x1());
        return down.Mix(r0[x], r1[x], r2[x], r3[x]);
    };
    return RoundToByte(across.Mix(column(-1), column(0), column(1), column(2)));
}

/// Weight of the picture at a position in its region with a soft edge: the product of two ramps that rise
/// from 0 on the outermost samples to 1 one sample further in.
double EdgeWeight(const Trace& trace, double x, double y) {
    return std::min(std::min(x - trace.left, trace.right - x), 1.0) *
           std::min(std::min(y - trace.top, trace.bottom - y), 1.0);
}

// ---- the whole -------------------------------------------------------------------------------------

/// Columns of a destination row, measured from the shift; `begin` to `end` without the latter.
struct ColumnRange {
    double begin, end;

    /// Keeps the columns d with low <= offset + slope * d <= high, with a small margin on either side:
    /// callers test each pixel exactly.
    void Narrow(double offset, double slope, double low, double high) {
        constexpr double kMargin = 2.0;
        if (std::fabs(slope) < 1e-9) return;
        const double d0 = (low - offset) / slope;
        const double d1 = (high - offset) / slope;
        begin = std::max(begin, std::min(d0, d1) - kMargin);
        end = std::min(end, std::max(d0, d1) + kMargin);
    }
};

/// Rotates the `count` pixels from (column, row) on into `out`.
template <class Kernel>
void RotateStretch(const Trace& trace, int32_t column, int32_t row, ptrdiff_t count, bool softEdge,
                   uint8_t* out) {
    Places places;
    Samples samples{};
    std::array<uint8_t, kStretch> mixed;
    AtLevel<FindPlaces>(trace, column, row, count, places);
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        if (places.inner[i] == 0) continue;
        const uint8_t* from = Row(trace.data, trace.step, places.row[i] - 1) + (places.column[i] - 1);
        for (auto& line : samples) {
            std::memcpy(&line[i], from, sizeof line[i]);
            from += trace.step;
        }
    }
    AtLevel<MixSamples<Kernel>>(samples, places, count, mixed.data());
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        if (places.inner[i] != 0) {
            out[i] = mixed[i];
        } else if (places.inside[i] != 0) {
            const uint8_t value = MixEdgePixel<Kernel>(trace, places, i);
            const double weight = softEdge ? EdgeWeight(trace, places.x[i], places.y[i]) : 1.0;
            out[i] = RoundToByte(static_cast<float>(out[i] + (value - out[i]) * weight));
        }
    }
}

template <class Kernel>
void RotateInto(const Trace& trace, uint8_t* dst, int32_t dstStep, const Roi& roi, bool softEdge) {
    for (int32_t row = roi.y0(); row <= roi.y1(); ++row) {
        const double dy = row - trace.yShift;
        ColumnRange range{roi.x0() - trace.xShift, roi.x1() + 1 - trace.xShift};
        range.Narrow(trace.SourceX(0.0, dy), trace.direction.c, trace.left, trace.right);
        range.Narrow(trace.SourceY(0.0, dy), trace.direction.s, trace.top, trace.bottom);
        if (!(range.begin < range.end)) continue;
        const auto first = static_cast<int32_t>(std::max<double>(range.begin + trace.xShift, roi.x0()));
        const auto last = static_cast<int32_t>(std::min<double>(range.end + trace.xShift, roi.x1()));
        uint8_t* const out = Row(dst, dstStep, row);
        for (ptrdiff_t column = first; column <= last; column += kStretch) {
            RotateStretch<Kernel>(trace, static_cast<int32_t>(column), row,
                                  std::min<ptrdiff_t>(kStretch, last + 1 - column), softEdge, out + column);
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

    const Trace trace(src, srcStep, prim::ClipRoi(srcRoi, srcWidth, srcHeight), Direction(ReduceAngle(angle)),
                      xShift, yShift);
    const bool rightAngle = trace.direction.c == 0.0 || trace.direction.s == 0.0;
    const bool permutation = rightAngle && xShift == std::trunc(xShift) && yShift == std::trunc(yShift);
    if (permutation) {
        RotateInto<NearestKernel>(trace, dst, dstStep, dstRoi, false);
    } else if (mode == kPrimNearest) {
        RotateInto<NearestKernel>(trace, dst, dstStep, dstRoi, softEdge);
    } else if (mode == kPrimLinear) {
        RotateInto<LinearKernel>(trace, dst, dstStep, dstRoi, softEdge);
    } else {
        RotateInto<CubicKernel>(trace, dst, dstStep, dstRoi, softEdge);
    }
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
