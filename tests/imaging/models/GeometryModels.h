// Plain models of the geometric primitives and of operations on slopes and histograms of planes.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_MODELS_GEOMETRYMODELS_H
#define SPECIALEFFECTS_TESTS_IMAGING_MODELS_GEOMETRYMODELS_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/models/Common.h"

namespace model {

// ---- mirror, borders -------------------------------------------------------------------------------

inline PrimStatus PrimMirror8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, int32_t axis) {
    const std::vector<uint8_t> before(data, data + static_cast<ptrdiff_t>(step) * (height - 1) + width);
    ForEach(width, height, [&](int32_t x, int32_t y) {
        At(data, step, x, y) =
            At(before.data(), step, axis == 0 ? x : width - 1 - x, axis == 1 ? y : height - 1 - y);
    });
    return 0;
}

inline PrimStatus PrimCopyReplicateBorder8uC1(const uint8_t* src, int32_t srcStep, int32_t srcWidth,
                                              int32_t srcHeight, uint8_t* dst, int32_t dstStep,
                                              int32_t dstWidth, int32_t dstHeight, int32_t topBorder,
                                              int32_t leftBorder) {
    ForEach(dstWidth, dstHeight, [&](int32_t x, int32_t y) {
        At(dst, dstStep, x, y) = At(src, srcStep, std::clamp(x - leftBorder, 0, srcWidth - 1),
                                    std::clamp(y - topBorder, 0, srcHeight - 1));
    });
    return 0;
}

inline PrimStatus PrimReplicateBorderInPlace8uC1(uint8_t* inner, int32_t step, int32_t innerWidth,
                                                 int32_t innerHeight, int32_t fullWidth, int32_t fullHeight,
                                                 int32_t topBorder, int32_t leftBorder) {
    ForEach(fullWidth, fullHeight, [&](int32_t x, int32_t y) {
        const int32_t column = x - leftBorder, row = y - topBorder;
        At(inner, step, column, row) =
            At(inner, step, std::clamp(column, 0, innerWidth - 1), std::clamp(row, 0, innerHeight - 1));
    });
    return 0;
}

// ---- remap -----------------------------------------------------------------------------------------

inline PrimStatus Remap(int32_t channels, const uint8_t* src, int32_t srcWidth, int32_t srcHeight,
                        int32_t srcStep, int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight,
                        const float* xMap, int32_t xMapStep, const float* yMap, int32_t yMapStep,
                        uint8_t* dst, int32_t dstStep, int32_t dstWidth, int32_t dstHeight,
                        int32_t interpolation) {
    const int32_t x0 = roiX, x1 = roiX + std::min(srcWidth - roiX, roiWidth) - 1;
    const int32_t y0 = roiY, y1 = roiY + std::min(srcHeight - roiY, roiHeight) - 1;
    const bool nearest = interpolation == 1 || srcWidth == 1 || srcHeight == 1;
    ForEach(dstWidth, dstHeight, [&](int32_t column, int32_t row) {
        const double x = At(xMap, xMapStep, column, row);
        const double y = At(yMap, yMapStep, column, row);
        if (!(x >= x0 && x <= x1 && y >= y0 && y <= y1)) {
            return;
        }
        for (int32_t c = 0; c < channels; ++c) {
            const auto p = [&](int64_t px, int64_t py) -> double {
                return At(src, srcStep, channels * std::max<int64_t>(px, 0) + c, std::max<int64_t>(py, 0));
            };
            uint8_t& out = At(dst, dstStep, int64_t{channels} * column + c, row);
            if (nearest) {
                out = static_cast<uint8_t>(p(static_cast<int64_t>(x + 0.5), static_cast<int64_t>(y + 0.5)));
                continue;
            }
            auto ix = static_cast<int64_t>(x + 1e-7), iy = static_cast<int64_t>(y + 1e-7);
            double fx = x - static_cast<double>(ix), fy = y - static_cast<double>(iy);
            if (ix >= x1) {
                ix = x1 - 1;
                fx = 1;
            }
            if (iy >= y1) {
                iy = y1 - 1;
                fy = 1;
            }
            const double top = p(ix, iy) + (p(ix + 1, iy) - p(ix, iy)) * fx;
            const double bottom = p(ix, iy + 1) + (p(ix + 1, iy + 1) - p(ix, iy + 1)) * fx;
            out = static_cast<uint8_t>(0.5 + top + fy * (bottom - top));
        }
    });
    return 0;
}

inline PrimStatus PrimRemap8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                                int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight,
                                const float* xMap, int32_t xMapStep, const float* yMap, int32_t yMapStep,
                                uint8_t* dst, int32_t dstStep, int32_t dstWidth, int32_t dstHeight,
                                int32_t interpolation) {
    return Remap(1, src, srcWidth, srcHeight, srcStep, roiX, roiY, roiWidth, roiHeight, xMap, xMapStep, yMap,
                 yMapStep, dst, dstStep, dstWidth, dstHeight, interpolation);
}

inline PrimStatus PrimRemap8uC3(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                                int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight,
                                const float* xMap, int32_t xMapStep, const float* yMap, int32_t yMapStep,
                                uint8_t* dst, int32_t dstStep, int32_t dstWidth, int32_t dstHeight,
                                int32_t interpolation) {
    return Remap(3, src, srcWidth, srcHeight, srcStep, roiX, roiY, roiWidth, roiHeight, xMap, xMapStep, yMap,
                 yMapStep, dst, dstStep, dstWidth, dstHeight, interpolation);
}

// ---- resize ----------------------------------------------------------------------------------------

/// Destination samples that an axis of n source samples writes.
inline int32_t ResizeCount(int32_t n, double factor, int32_t dstLength) {
    const double v = n * factor;
    const double count = std::trunc(v + 1e-7);
    if (count < 1.0) {
        return v >= 0.5 ? 1 : 0;
    }
    return static_cast<int32_t>(std::min<double>(count, dstLength));
}

struct ResizeTap {
    int32_t sample;   // at most the last
    double fraction;  // not below 0
};

inline ResizeTap ResizeTapAt(int32_t k, int32_t n, double factor) {
    const double v = n * factor;
    const double step = v > 1.0 ? (n - 1) / (v - 1.0) : 0.0;
    const double p = k * step;
    const auto i = static_cast<int32_t>(p + 1e-7);
    return {std::min(i, n - 1), std::max(p - i, 0.0)};
}

inline int32_t NearestSample(int32_t k, int32_t n, double factor) {
    return static_cast<int32_t>(std::min<double>((k + 0.5) * (1.0 / factor) + 1e-7, n - 1));
}

/// The window sinc(d) * sinc(d / 3) at d = 0.00, 0.01, ... 3.00, in single precision.
inline const std::array<float, 301>& LanczosTable() {
    static const std::array<float, 301> table = [] {
        constexpr double pi = 3.14159265358979323846;
        std::array<float, 301> values{};
        values[0] = 1.0f;
        for (size_t i = 1; i < 300; ++i) {
            const double d = static_cast<double>(i) / 100.0;
            values[i] = static_cast<float>(std::sin(pi * d) / (pi * d) *
                                           (std::sin(pi * (d / 3.0)) / (pi * (d / 3.0))));
        }
        return values;
    }();
    return table;
}

/// The six taps of each sample of an axis.
struct LanczosTaps {
    int32_t sample;
    std::array<float, 6> weights;
};

inline std::vector<LanczosTaps> LanczosAxis(int32_t count, int32_t n, double factor) {
    std::vector<LanczosTaps> axis;
    for (int32_t k = 0; k < count; ++k) {
        const ResizeTap tap = ResizeTapAt(k, n, factor);
        std::array<double, 6> w{};
        double sum = 0.0;
        for (int32_t t = 0; t < 6; ++t) {
            const double position = std::fabs(t - 2 - tap.fraction) * 100.0;
            const auto i = static_cast<size_t>(position);
            if (position < 300.0) {
                const float low = LanczosTable()[i], high = LanczosTable()[i + 1];
                w[static_cast<size_t>(t)] = low + (position - static_cast<double>(i)) * (high - low);
            }
            sum += w[static_cast<size_t>(t)];
        }
        axis.push_back({tap.sample, {}});
        for (size_t t = 0; t < 6; ++t) {
            axis.back().weights[t] = static_cast<float>(w[t] / sum);
        }
    }
    return axis;
}

inline PrimStatus PrimResize8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                                 int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight,
                                 uint8_t* dst, int32_t dstStep, int32_t dstWidth, int32_t dstHeight,
                                 double xFactor, double yFactor, int32_t interpolation) {
    const int32_t width = std::min(roiWidth, srcWidth - roiX);
    const int32_t height = std::min(roiHeight, srcHeight - roiY);
    const int32_t side = std::min(srcWidth, srcHeight);
    const auto p = [&](int32_t x, int32_t y) {
        return At(src, srcStep, roiX + std::clamp(x, 0, width - 1), roiY + std::clamp(y, 0, height - 1));
    };
    const int32_t columns = ResizeCount(width, xFactor, dstWidth);
    const int32_t rows = ResizeCount(height, yFactor, dstHeight);
    if (interpolation == 16 && side >= 8) {
        const std::vector<LanczosTaps> across = LanczosAxis(columns, width, xFactor);
        const std::vector<LanczosTaps> down = LanczosAxis(rows, height, yFactor);
        ForEach(columns, rows, [&](int32_t column, int32_t row) {
            const LanczosTaps& h = across[static_cast<size_t>(column)];
            const LanczosTaps& v = down[static_cast<size_t>(row)];
            float sum = 0.0f;
            for (int32_t j = 0; j < 6; ++j) {
                float along = 0.0f;
                for (int32_t i = 0; i < 6; ++i) {
                    along += h.weights[static_cast<size_t>(i)] *
                             static_cast<float>(p(h.sample - 2 + i, v.sample - 2 + j));
                }
                sum += v.weights[static_cast<size_t>(j)] * along;
            }
            At(dst, dstStep, column, row) = Sat8(static_cast<int64_t>(std::floor(sum + 0.5f)));
        });
        return 0;
    }
    ForEach(columns, rows, [&](int32_t column, int32_t row) {
        uint8_t& out = At(dst, dstStep, column, row);
        if (interpolation == 1 || side < 2) {
            out = p(NearestSample(column, width, xFactor), NearestSample(row, height, yFactor));
            return;
        }
        const ResizeTap h = ResizeTapAt(column, width, xFactor);
        const ResizeTap v = ResizeTapAt(row, height, yFactor);
        const auto wx = static_cast<int32_t>(h.fraction * 16384 + 0.5);
        const auto wy = static_cast<int32_t>(v.fraction * 16384 + 0.5);
        const auto along = [&](int32_t y) {
            return ((16384 - wx) * p(h.sample, y) + wx * p(h.sample + 1, y) + 128) >> 8;
        };
        out =
            static_cast<uint8_t>((along(v.sample + 1) * wy + along(v.sample) * (16384 - wy) + 0x80000) >> 20);
    });
    return 0;
}

// ---- rotate ----------------------------------------------------------------------------------------

/// The angle is one of 0 to 360 here.
inline PrimStatus PrimRotate8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                                 int32_t srcRoiX, int32_t srcRoiY, int32_t srcRoiWidth, int32_t srcRoiHeight,
                                 uint8_t* dst, int32_t dstStep, int32_t dstRoiX, int32_t dstRoiY,
                                 int32_t dstRoiWidth, int32_t dstRoiHeight, double angle, double xShift,
                                 double yShift, uint32_t interpolation) {
    const int32_t x0 = srcRoiX, x1 = srcRoiX + std::min(srcRoiWidth, srcWidth - srcRoiX) - 1;
    const int32_t y0 = srcRoiY, y1 = srcRoiY + std::min(srcRoiHeight, srcHeight - srcRoiY) - 1;
    const bool right = angle == 0 || angle == 90 || angle == 180 || angle == 270;
    const double radians = angle * 3.14159265358979323846 / 180.0;
    const double c = right ? std::round(std::cos(radians)) : std::cos(radians);
    const double s = right ? std::round(std::sin(radians)) : std::sin(radians);
    const bool exact = right && xShift == std::floor(xShift) && yShift == std::floor(yShift);
    const uint32_t mode = exact ? 1 : interpolation & 0x7fffffff;
    const bool soft = !exact && (interpolation & 0x80000000) != 0;

    const auto p = [&](int32_t x, int32_t y) -> float {
        return At(src, srcStep, std::clamp(x, x0, x1), std::clamp(y, y0, y1));
    };
    // Mixes four samples, of which the position lies between the middle two, in single precision.
    const auto mix = [mode](float f, float a, float b, float d, float e) {
        std::array<float, 4> w = {0.0f, f < 0.5f ? 1.0f : 0.0f, f < 0.5f ? 0.0f : 1.0f, 0.0f};
        if (mode == 2) {
            w = {0.0f, 1.0f - f, f, 0.0f};
        } else if (mode == 4) {
            w = {((2.0f - f) * f - 1.0f) * f * 0.5f, ((3.0f * f - 5.0f) * f * f + 2.0f) * 0.5f,
                 ((4.0f - 3.0f * f) * f + 1.0f) * f * 0.5f, (f - 1.0f) * f * f * 0.5f};
        }
        return w[0] * a + w[1] * b + w[2] * d + w[3] * e;
    };
    ForEach(dstRoiWidth, dstRoiHeight, [&](int32_t column, int32_t row) {
        const double dx = dstRoiX + column - xShift, dy = dstRoiY + row - yShift;
        const double x = dx * c - dy * s, y = dx * s + dy * c;
        if (!(x >= x0 && x <= x1 && y >= y0 && y <= y1)) {
            return;
        }
        const auto ix = static_cast<int32_t>(x), iy = static_cast<int32_t>(y);
        const auto fx = static_cast<float>(x - ix), fy = static_cast<float>(y - iy);
        std::array<float, 4> columns{};
        for (int32_t i = 0; i < 4; ++i) {
            columns[static_cast<size_t>(i)] = mix(fy, p(ix - 1 + i, iy - 1), p(ix - 1 + i, iy),
                                                  p(ix - 1 + i, iy + 1), p(ix - 1 + i, iy + 2));
        }
        const float value = mix(fx, columns[0], columns[1], columns[2], columns[3]);
        const auto round = [](float v) { return Sat8(static_cast<int64_t>(std::floor(v + 0.5f))); };
        uint8_t& out = At(dst, dstStep, dstRoiX + column, dstRoiY + row);
        const uint8_t sampled = round(value);
        const double weight = std::min({x - x0, x1 - x, 1.0}) * std::min({y - y0, y1 - y, 1.0});
        out = soft ? round(static_cast<float>(out + (sampled - out) * weight)) : sampled;
    });
    return 0;
}

// ---- planes: packed rows, one size -----------------------------------------------------------------

inline void EqualizeHistogram(uint8_t* data, int64_t size) {
    std::array<int64_t, 256> count{};
    for (int64_t i = 0; i < size; ++i) {
        ++count[data[i]];
    }
    std::array<uint8_t, 256> table{};
    int64_t sum = 0;
    for (size_t level = 0; level < 256; ++level) {
        sum += count[level];
        table[level] = static_cast<uint8_t>(sum * 255 / size);
    }
    for (int64_t i = 0; i < size; ++i) {
        data[i] = table[data[i]];
    }
}

inline void DisplaceByGradient(const uint8_t* bump, const uint8_t* src, uint8_t* dst, int32_t width,
                               int32_t height) {
    if (width < 2 || height < 2) {
        return;
    }
    for (int32_t y = 1; y < height - 1; ++y) {
        for (int32_t x = 1; x < width - 1; ++x) {
            const int32_t gx = At(bump, width, x - 1, y) - At(bump, width, x + 1, y);
            const int32_t gy = At(bump, width, x, y - 1) - At(bump, width, x, y + 1);
            const int32_t sx = std::clamp(x + gx, 0, width - 1);
            const int32_t sy = std::clamp(y + gy, 0, height - 1);
            At(dst, width, x, y) = Sat8(At(src, width, sx, sy) + gx);
        }
    }
    for (int32_t x = 0; x < width - 1; ++x) {
        At(dst, width, x, 0) = At(dst, width, x, 1);
        At(dst, width, x, height - 1) = At(dst, width, x, height - 2);
    }
    for (int32_t y = 0; y < height; ++y) {
        At(dst, width, 0, y) = At(dst, width, 1, y);
    }
}

inline uint8_t ShadeEntry(int32_t row, int32_t column) {
    if (row == 128 && column == 128) {
        return 255;
    }
    const float a = static_cast<float>(row - 128) / 128.0f;
    const float b = static_cast<float>(column - 128) / 128.0f;
    const float v = 1.0f - std::sqrt(a * a + b * b);
    return v < 0.0f ? uint8_t{0} : static_cast<uint8_t>(v * 256.0f);
}

inline void ShadeByGradient(const uint8_t* src, uint8_t* dst, int32_t width, int32_t height, int32_t bias) {
    const auto index = [bias](int32_t difference) {
        const int64_t g = int64_t{difference} - bias + 128;
        return static_cast<int32_t>(g < 0 || g > 255 ? 0 : g);
    };
    for (int32_t y = 1; y < height - 1; ++y) {
        for (int32_t x = 1; x < width - 1; ++x) {
            At(dst, width, x, y) = ShadeEntry(index(At(src, width, x, y + 1) - At(src, width, x, y - 1)),
                                              index(At(src, width, x + 1, y) - At(src, width, x - 1, y)));
        }
    }
}

/// Pixel i of dst = pixel index[i] of src, where there is one.
inline void GatherPixels(const uint8_t* src, size_t srcPixels, const uint32_t* index, uint8_t* dst,
                         size_t count, size_t pixelBytes) {
    for (size_t i = 0; i < count; ++i) {
        for (size_t c = 0; c < pixelBytes && index[i] < srcPixels; ++c) {
            dst[i * pixelBytes + c] = src[index[i] * pixelBytes + c];
        }
    }
}

}  // namespace model

#endif
