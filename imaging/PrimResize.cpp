// Scaling of a region to another size.
//
// Both axes are treated alike and alone: where the samples of a destination row or column come from is worked
// out once for the row and once for the column, then source rows are scaled along x into line buffers, and
// the buffers are combined along y.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <span>

#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRoi.h"

namespace {

using prim::Roi;
using prim::RowAt;

/// One axis of a scaling: `length` source samples, `count` destination samples that are written.
struct Axis {
    int32_t length;
    int32_t count;
    double factor;
    double step;  // source samples from one destination sample to the next, the outermost ones coinciding

    Axis(int32_t sourceLength, double scale, int32_t destinationLength)
        : length(sourceLength), factor(scale) {
        const double scaled = length * factor;
        count = scaled + 1e-7 < destinationLength ? static_cast<int32_t>(scaled + 1e-7) : destinationLength;
        if (count == 0 && scaled >= 0.5) count = 1;
        step = scaled > 1.0 ? (length - 1) / (scaled - 1.0) : 0.0;
    }

    int32_t NearestSample(int32_t k) const {
        const double position = (k + 0.5) * (1.0 / factor) + 1e-7;
        return position < length - 1 ? static_cast<int32_t>(position) : length - 1;
    }

    /// The sample at or before destination sample k, and how far k lies behind it (never below 0).
    struct Position {
        int32_t sample;
        double fraction;
    };
    Position Interpolated(int32_t k) const {
        const double position = k * step;
        const int32_t sample =
            position + 1e-7 < length - 1 ? static_cast<int32_t>(position + 1e-7) : length - 1;
        return {sample, std::clamp(position - sample, 0.0, 1.0)};
    }
};

struct Image {
    const uint8_t* src;  // first pixel of the clipped region
    int32_t srcStep;
    uint8_t* dst;
    int32_t dstStep;
    Axis x, y;
};

/// Line buffers from the heap, freed with the object.
template <class T>
class LineBuffers {
  public:
    LineBuffers(size_t lines, size_t length)
        : length_(length), storage_(new (std::nothrow) T[lines * length]) {}

    explicit operator bool() const { return storage_ != nullptr; }
    T* Line(size_t index) { return storage_.get() + index * length_; }

  private:
    size_t length_;
    std::unique_ptr<T[]> storage_;
};

// ---- nearest ---------------------------------------------------------------------------------------

PrimStatus ResizeNearest(const Image& image) {
    LineBuffers<int32_t> columns(1, static_cast<size_t>(image.x.count));
    if (!columns) return kPrimMemoryError;
    int32_t* const column = columns.Line(0);
    for (int32_t k = 0; k < image.x.count; ++k) column[k] = image.x.NearestSample(k);
    for (int32_t y = 0; y < image.y.count; ++y) {
        const uint8_t* const row = RowAt(image.src, image.srcStep, image.y.NearestSample(y));
        uint8_t* const out = RowAt(image.dst, image.dstStep, y);
        for (int32_t k = 0; k < image.x.count; ++k) out[k] = row[column[k]];
    }
    return kPrimOk;
}

// ---- linear ----------------------------------------------------------------------------------------

constexpr int32_t kOne = 1 << 14;  // a weight of 1

int32_t Weight(double fraction) {
    return static_cast<int32_t>(fraction * kOne + 0.5);
}

struct LinearColumn {
    int32_t first, second;
    int32_t weight;  // of the second sample
};

/// Scales one row along x into values with 6 fraction bits.
void InterpolateRow(const uint8_t* row, const LinearColumn* columns, int32_t count, uint16_t* line) {
    for (int32_t k = 0; k < count; ++k) {
        const LinearColumn& column = columns[k];
        const int32_t sum = (kOne - column.weight) * row[column.first] + column.weight * row[column.second];
        line[k] = static_cast<uint16_t>((sum + 128) >> 8);
    }
}

void BlendLines(const uint16_t* line1, const uint16_t* line2, int32_t weight, uint8_t* out, int32_t count) {
    for (int32_t k = 0; k < count; ++k)
        out[k] = static_cast<uint8_t>((line2[k] * weight + line1[k] * (kOne - weight) + 0x80000) >> 20);
}

PrimStatus ResizeLinear(const Image& image) {
    const auto count = static_cast<size_t>(image.x.count);
    LineBuffers<LinearColumn> table(1, count);
    LineBuffers<uint16_t> lines(2, count);
    if (!table || !lines) return kPrimMemoryError;
    LinearColumn* const columns = table.Line(0);
    for (int32_t k = 0; k < image.x.count; ++k) {
        const auto [sample, fraction] = image.x.Interpolated(k);
        columns[k] = {sample, std::min(sample + 1, image.x.length - 1), Weight(fraction)};
    }

    // The two scaled rows at hand. Row i lies in lines[i % 2], so that the lower row of one destination row
    // can serve as the upper one of the next.
    std::array<int32_t, 2> held{-1, -1};
    const auto scaledRow = [&](int32_t i) {
        const auto slot = static_cast<size_t>(i % 2);
        if (held[slot] != i) {
            InterpolateRow(RowAt(image.src, image.srcStep, i), columns, image.x.count, lines.Line(slot));
            held[slot] = i;
        }
        return lines.Line(slot);
    };
    for (int32_t y = 0; y < image.y.count; ++y) {
        const auto [sample, fraction] = image.y.Interpolated(y);
        const uint16_t* const upper = scaledRow(sample);
        const uint16_t* const lower = scaledRow(std::min(sample + 1, image.y.length - 1));
        BlendLines(upper, lower, Weight(fraction), RowAt(image.dst, image.dstStep, y), image.x.count);
    }
    return kPrimOk;
}

// ---- Lanczos ---------------------------------------------------------------------------------------

constexpr int kTaps = 6;  // at the offsets -2 to 3 from the sample before the position

using LanczosWeights = std::array<float, kTaps>;

/// The window's value at 0.00, 0.01, ... 3.00.
const std::array<float, 301>& LanczosTable() {
    static const std::array<float, 301> table = [] {
        constexpr double pi = 3.14159265358979323846;
        const auto sinc = [](double t) { return t == 0.0 ? 1.0 : std::sin(pi * t) / (pi * t); };
        std::array<float, 301> values{};
        for (size_t i = 0; i < values.size(); ++i) {
            const double d = static_cast<double>(i) / 100.0;
            values[i] = i < 300 ? static_cast<float>(sinc(d) * sinc(d / 3.0)) : 0.0f;
        }
        return values;
    }();
    return table;
}

double LanczosWindow(double distance) {
    const std::array<float, 301>& table = LanczosTable();
    const double position = std::fabs(distance) * 100.0;
    if (position >= 300.0) return 0.0;
    const auto i = static_cast<size_t>(position);
    return table[i] + (position - static_cast<double>(i)) * (table[i + 1] - table[i]);
}

LanczosWeights WeightsAt(double fraction) {
    std::array<double, kTaps> raw{};
    double sum = 0.0;
    for (int t = 0; t < kTaps; ++t) {
        raw[static_cast<size_t>(t)] = LanczosWindow(t - 2 - fraction);
        sum += raw[static_cast<size_t>(t)];
    }
    LanczosWeights weights{};
    for (size_t t = 0; t < kTaps; ++t) weights[t] = static_cast<float>(raw[t] / sum);
    return weights;
}

struct LanczosColumn {
    int32_t first;  // leftmost tap; may lie outside the row
    LanczosWeights weights;
};

PrimStatus ResizeLanczos(const Image& image) {
    const auto count = static_cast<size_t>(image.x.count);
    LineBuffers<LanczosColumn> table(1, count);
    LineBuffers<float> lines(kTaps, count);
    if (!table || !lines) return kPrimMemoryError;
    LanczosColumn* const columns = table.Line(0);
    for (int32_t k = 0; k < image.x.count; ++k) {
        const auto [sample, fraction] = image.x.Interpolated(k);
        columns[k] = {sample - 2, WeightsAt(fraction)};
    }

    std::array<int32_t, kTaps> held;
    held.fill(-1);
    const auto scaledRow = [&](int32_t i) {
        const auto slot = static_cast<size_t>(i % kTaps);
        float* const line = lines.Line(slot);
        if (held[slot] == i) return line;
        held[slot] = i;
        const uint8_t* const row = RowAt(image.src, image.srcStep, i);
        for (int32_t k = 0; k < image.x.count; ++k) {
            float sum = 0.0f;
            for (int32_t t = 0; t < kTaps; ++t) {
                const int32_t x = std::clamp(columns[k].first + t, 0, image.x.length - 1);
                sum += columns[k].weights[static_cast<size_t>(t)] * static_cast<float>(row[x]);
            }
            line[k] = sum;
        }
        return line;
    };
    for (int32_t y = 0; y < image.y.count; ++y) {
        const auto [sample, fraction] = image.y.Interpolated(y);
        const LanczosWeights weights = WeightsAt(fraction);
        std::array<const float*, kTaps> rows{};
        for (int32_t t = 0; t < kTaps; ++t)
            rows[static_cast<size_t>(t)] = scaledRow(std::clamp(sample - 2 + t, 0, image.y.length - 1));
        uint8_t* const out = RowAt(image.dst, image.dstStep, y);
        for (int32_t k = 0; k < image.x.count; ++k) {
            float sum = 0.0f;
            for (size_t t = 0; t < kTaps; ++t) sum += weights[t] * rows[t][k];
            out[k] = static_cast<uint8_t>(std::clamp(sum + 0.5f, 0.0f, 255.0f));
        }
    }
    return kPrimOk;
}

/// The mode that a source of this size is scaled with.
int32_t EffectiveMode(int32_t interpolation, int32_t width, int32_t height) {
    const int32_t side = std::min(width, height);
    if (interpolation == kPrimLanczos && side < 8) interpolation = kPrimCubic;
    if (interpolation == kPrimCubic && side < 4) interpolation = kPrimLinear;
    return side < 2 ? kPrimNearest : interpolation;
}

}  // namespace

PrimStatus PrimResize8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                          int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight, uint8_t* dst,
                          int32_t dstStep, int32_t dstWidth, int32_t dstHeight, double xFactor,
                          double yFactor, int32_t interpolation) {
    const Roi roi{roiX, roiY, roiWidth, roiHeight};
    const bool goodFactors = xFactor > 0.0 && yFactor > 0.0;
    const bool knownMode = interpolation == kPrimNearest || interpolation == kPrimLinear ||
                           interpolation == kPrimCubic || interpolation == kPrimArea ||
                           interpolation == kPrimLanczos;
    const PrimStatus status = prim::FirstError(
        prim::CheckPointers(src, dst), prim::CheckSize(srcWidth, srcHeight), prim::CheckRoiSize(roi),
        prim::CheckRoiInside(roi, srcWidth, srcHeight), prim::CheckSize(dstWidth, dstHeight),
        prim::CheckStep(srcStep, srcWidth), prim::CheckStep(dstStep, dstWidth),
        goodFactors ? kPrimOk : kPrimSizeError, knownMode ? kPrimOk : kPrimInterpolationError);
    if (status != kPrimOk) return status;

    const Roi clipped = prim::ClipRoi(roi, srcWidth, srcHeight);
    const Image image{RowAt(src, srcStep, clipped.y) + clipped.x,
                      srcStep,
                      dst,
                      dstStep,
                      Axis(clipped.width, xFactor, dstWidth),
                      Axis(clipped.height, yFactor, dstHeight)};
    if (image.x.count == 0 || image.y.count == 0) return kPrimOk;
    switch (EffectiveMode(interpolation, srcWidth, srcHeight)) {
        case kPrimNearest:
            return ResizeNearest(image);
        case kPrimLanczos:
            return ResizeLanczos(image);
        default:
            return ResizeLinear(image);
    }
}
