// Plain models of the primitives of object detection: edge map, integral images, classifier stages.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_MODELS_DETECTIONMODELS_H
#define SPECIALEFFECTS_TESTS_IMAGING_MODELS_DETECTIONMODELS_H

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/models/Common.h"

namespace model {

inline PrimStatus PrimCanny16s8u(const int16_t* dx, int32_t dxStep, const int16_t* dy, int32_t dyStep,
                                 uint8_t* dst, int32_t dstStep, int32_t width, int32_t height,
                                 float lowThresh, float highThresh, uint8_t*) {
    const auto magnitude = [&](int32_t x, int32_t y) {
        if (x < 0 || y < 0 || x >= width || y >= height) {
            return 0.0;
        }
        const double gx = At(dx, dxStep, x, y);
        const double gy = At(dy, dyStep, x, y);
        return std::sqrt(gx * gx + gy * gy);
    };
    const auto survives = [&](int32_t x, int32_t y) {
        const int32_t gx = At(dx, dxStep, x, y);
        const int32_t gy = At(dy, dyStep, x, y);
        const double ax = std::abs(gx);
        const double ay = std::abs(gy);
        int32_t stepX = 1;
        int32_t stepY = 1;
        if (ay <= 0.41421356237309503 * ax) {
            stepY = 0;
        } else if (ay >= 2.414213562373095 * ax) {
            stepX = 0;
        } else if ((gx < 0) == (gy < 0)) {
            stepY = -1;
        }
        return magnitude(x, y) > magnitude(x - stepX, y - stepY) &&
               magnitude(x, y) >= magnitude(x + stepX, y + stepY);
    };
    std::vector<bool> survivor;
    ForEach(width, height, [&](int32_t x, int32_t y) {
        survivor.push_back(survives(x, y));
        At(dst, dstStep, x, y) = survivor.back() && magnitude(x, y) > double{highThresh} ? 255 : 0;
    });
    const auto touchesEdge = [&](int32_t x, int32_t y) {
        for (int32_t ny = y - 1; ny <= y + 1; ++ny) {
            for (int32_t nx = x - 1; nx <= x + 1; ++nx) {
                if (nx >= 0 && ny >= 0 && nx < width && ny < height && At(dst, dstStep, nx, ny) != 0) {
                    return true;
                }
            }
        }
        return false;
    };
    for (bool changed = true; changed;) {
        changed = false;
        const auto extend = [&](int32_t x, int32_t y) {
            uint8_t& pixel = At(dst, dstStep, x, y);
            if (pixel == 0 &&
                survivor[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)] &&
                magnitude(x, y) > double{lowThresh} && touchesEdge(x, y)) {
                pixel = 255;
                changed = true;
            }
        };
        ForEach(width, height, extend);
        // Backwards too, which saves sweeps where an edge climbs.
        ForEach(width, height, [&](int32_t x, int32_t y) { extend(width - 1 - x, height - 1 - y); });
    }
    return 0;
}

inline PrimStatus PrimSqrIntegral8u32s64f(const uint8_t* src, int32_t srcStep, int32_t* sum, int32_t sumStep,
                                          double* sqr, int32_t sqrStep, int32_t width, int32_t height,
                                          int32_t val, double valSqr) {
    std::vector<uint32_t> columnSum(static_cast<size_t>(width) + 1, 0);
    std::vector<uint64_t> columnSqr(static_cast<size_t>(width) + 1, 0);
    for (int32_t y = 0; y <= height; ++y) {
        uint32_t s = 0;
        uint64_t q = 0;
        for (int32_t x = 0; x <= width; ++x) {
            if (y > 0 && x > 0) {
                const uint32_t pixel = At(src, srcStep, x - 1, y - 1);
                columnSum[static_cast<size_t>(x)] += pixel;
                columnSqr[static_cast<size_t>(x)] += pixel * pixel;
            }
            s += columnSum[static_cast<size_t>(x)];
            q += columnSqr[static_cast<size_t>(x)];
            At(sum, sumStep, x, y) = static_cast<int32_t>(static_cast<uint32_t>(val) + s);
            At(sqr, sqrStep, x, y) = valSqr + static_cast<double>(q);
        }
    }
    return 0;
}

/// Sum over a rectangle of pixels from the table of sums, as a whole number; wrap-around cancels.
inline int32_t RectSum(const int32_t* sum, int32_t step, int64_t x, int64_t y, int64_t width,
                       int64_t height) {
    const auto entry = [&](int64_t column, int64_t row) { return int64_t{At(sum, step, column, row)}; };
    return static_cast<int32_t>(static_cast<uint32_t>(entry(x + width, y + height) - entry(x, y + height) -
                                                      entry(x + width, y) + entry(x, y)));
}

inline PrimStatus PrimRectStdDev32s32f(const int32_t* sum, int32_t sumStep, const double* sqr,
                                       int32_t sqrStep, float* dst, int32_t dstStep, int32_t width,
                                       int32_t height, int32_t rectX, int32_t rectY, int32_t rectWidth,
                                       int32_t rectHeight) {
    const double area = static_cast<double>(rectWidth) * rectHeight;
    ForEach(width, height, [&](int32_t x, int32_t y) {
        const int32_t left = x + rectX;
        const int32_t top = y + rectY;
        const double s = RectSum(sum, sumStep, left, top, rectWidth, rectHeight);
        const double q = At(sqr, sqrStep, left + rectWidth, top + rectHeight) -
                         At(sqr, sqrStep, left, top + rectHeight) - At(sqr, sqrStep, left + rectWidth, top) +
                         At(sqr, sqrStep, left, top);
        const double mean = s / area;
        double variance = q / area - mean * mean;
        if (variance < 0) {
            variance = 0;
        }
        At(dst, dstStep, x, y) = std::sqrt(static_cast<float>(variance));
    });
    return 0;
}

/// What a stage is made of.
struct Stage {
    std::vector<PrimRect> rects;
    std::vector<float> weights;
    std::vector<float> thresholds;
    std::vector<float> below;
    std::vector<float> above;
    std::vector<int32_t> counts;
};

inline PrimStatus ApplyStage(const Stage& stage, const int32_t* sum, int32_t sumStep, const float* norm,
                             int32_t normStep, uint8_t* mask, int32_t maskStep, int32_t width, int32_t height,
                             int32_t* positive, float threshold) {
    *positive = 0;
    ForEach(width, height, [&](int32_t x, int32_t y) {
        if (At(mask, maskStep, x, y) == 0) {
            return;
        }
        const double n = At(norm, normStep, x, y);
        double total = 0;
        size_t rect = 0;
        for (size_t c = 0; c < stage.counts.size(); ++c) {
            double t = 0;
            for (int32_t i = 0; i < stage.counts[c]; ++i, ++rect) {
                const PrimRect& r = stage.rects[rect];
                t += double{stage.weights[rect]} *
                     RectSum(sum, sumStep, int64_t{x} + r.x, int64_t{y} + r.y, r.width, r.height);
            }
            total += double{stage.thresholds[c]} * n <= t ? stage.above[c] : stage.below[c];
        }
        if (total < double{threshold}) {
            At(mask, maskStep, x, y) = 0;
        } else {
            ++*positive;
        }
    });
    return 0;
}

}  // namespace model

#endif
