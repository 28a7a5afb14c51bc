// Scaling with Lanczos' window of six taps.
#include <array>
#include <cmath>

#include "imaging/PrimRoi.h"
#include "imaging/ResizeAxis.h"

namespace resize {
namespace {

using prim::RowAt;

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

}  // namespace

PrimStatus Lanczos(const Image& image) {
    const auto count = static_cast<size_t>(image.x.count);
    Buffer<LanczosColumn> table(count);
    Buffer<float> lines(kTaps * count);
    if (!table || !lines) return kPrimMemoryError;
    LanczosColumn* const columns = table.data();
    for (int32_t k = 0; k < image.x.count; ++k) {
        const auto [sample, fraction] = image.x.Interpolated(k);
        columns[k] = {sample - 2, WeightsAt(fraction)};
    }

    std::array<int32_t, kTaps> held;
    held.fill(-1);
    const auto scaledRow = [&](int32_t i) {
        const auto slot = static_cast<size_t>(i % kTaps);
        float* const line = lines.data() + slot * count;
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

}  // namespace resize
