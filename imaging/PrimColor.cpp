// Colour twist and the conversions between packed pixels and planar YUV 4:2:0.
#include <algorithm>
#include <cstddef>

#include "imaging/Multiversion.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"

using prim::CheckPointers;
using prim::CheckSize;
using prim::CheckStep;
using prim::FirstError;

namespace {

SE_INLINE uint8_t Saturate(int32_t v) {
    return static_cast<uint8_t>(std::clamp(v, 0, 255));
}

/// 0..255, half to even.
SE_INLINE uint8_t RoundHalfToEven(double value) {
    const double bounded = value > 0 ? std::min(value, 255.0) : 0.0;
    const double raised = bounded + 0.5;
    const auto whole = static_cast<int32_t>(raised);
    return static_cast<uint8_t>(whole - (static_cast<double>(whole) == raised ? whole & 1 : 0));
}

void TwistRow(uint8_t* row, ptrdiff_t width, const double* m) {
    for (ptrdiff_t x = 0; x < width; ++x, row += 3) {
        const double p0 = row[0];
        const double p1 = row[1];
        const double p2 = row[2];
        row[0] = RoundHalfToEven(m[0] * p0 + m[1] * p1 + m[2] * p2 + m[3]);
        row[1] = RoundHalfToEven(m[4] * p0 + m[5] * p1 + m[6] * p2 + m[7]);
        row[2] = RoundHalfToEven(m[8] * p0 + m[9] * p1 + m[10] * p2 + m[11]);
    }
}

}  // namespace

PrimStatus PrimColorTwist8uC3(uint8_t* data, int32_t step, int32_t width, int32_t height,
                              const float* matrix) {
    if (const PrimStatus error =
            FirstError(CheckPointers(data, matrix), CheckSize(width, height), CheckStep(step, width, 3))) {
        return error;
    }
    double m[12];
    std::copy_n(matrix, 12, m);
    for (int32_t y = 0; y < height; ++y, data += step) {
        TwistRow(data, width, m);
    }
    return kPrimOk;
}

namespace {

/// A pixel, or the sum of several: its bytes, and its luma times 2^16.
struct LumaSum {
    int32_t p0 = 0;
    int32_t p2 = 0;
    int32_t luma = 0;

    void operator+=(const LumaSum& other) {
        p0 += other.p0;
        p2 += other.p2;
        luma += other.luma;
    }
};

LumaSum WeighPixel(const uint8_t* p) {
    return {p[0], p[2], 19595 * p[0] + 38470 * p[1] + 7471 * p[2]};
}

/// Chroma of a block whose sums are four, two or one pixels' for the shifts 18, 17 and 16.
void StoreChroma(const LumaSum& sum, int32_t bias, int32_t shift, uint8_t* u, uint8_t* v) {
    const int32_t difference2 = ((sum.p2 << 16) - sum.luma + bias) >> 16;
    const int32_t difference0 = ((sum.p0 << 16) - sum.luma + bias) >> 16;
    *u = static_cast<uint8_t>(((difference2 * 32244) >> shift) - 128);
    *v = Saturate(((difference0 * 57475) >> shift) + 128);
}

}  // namespace

PrimStatus PrimRgbToYuv420(const uint8_t* src, uint8_t* const planes[3], int32_t width, int32_t height) {
    if (const PrimStatus error = CheckPointers(src, planes)) {
        return error;
    }
    if (const PrimStatus error =
            FirstError(CheckPointers(planes[0], planes[1], planes[2]), CheckSize(width, height))) {
        return error;
    }
    const ptrdiff_t chromaStep = (ptrdiff_t{width} + 1) / 2;
    for (ptrdiff_t y = 0; y < height; y += 2) {
        for (ptrdiff_t x = 0; x < width; x += 2) {
            const ptrdiff_t blockWidth = std::min<ptrdiff_t>(2, width - x);
            const ptrdiff_t blockHeight = std::min<ptrdiff_t>(2, height - y);
            LumaSum sum;
            for (ptrdiff_t j = 0; j < blockHeight; ++j) {
                for (ptrdiff_t i = 0; i < blockWidth; ++i) {
                    const ptrdiff_t pixel = (y + j) * width + x + i;
                    const LumaSum weighed = WeighPixel(src + 3 * pixel);
                    planes[0][pixel] = static_cast<uint8_t>(weighed.luma >> 16);
                    sum += weighed;
                }
            }
            const ptrdiff_t count = blockWidth * blockHeight;
            const ptrdiff_t chroma = y / 2 * chromaStep + x / 2;
            StoreChroma(sum, count == 4 ? 0x1ffff : 0,
                        count == 4   ? 18
                        : count == 2 ? 17
                                     : 16,
                        planes[1] + chroma, planes[2] + chroma);
        }
    }
    return kPrimOk;
}

PrimStatus PrimYuv420ToRgb(const uint8_t* const planes[3], uint8_t* dst, int32_t width, int32_t height) {
    if (const PrimStatus error = CheckPointers(planes, dst)) {
        return error;
    }
    if (const PrimStatus error =
            FirstError(CheckPointers(planes[0], planes[1], planes[2]), CheckSize(width, height))) {
        return error;
    }
    const ptrdiff_t chromaStep = (ptrdiff_t{width} + 1) / 2;
    for (ptrdiff_t y = 0; y < height; ++y) {
        const uint8_t* luma = planes[0] + y * width;
        const uint8_t* uRow = planes[1] + y / 2 * chromaStep;
        const uint8_t* vRow = planes[2] + y / 2 * chromaStep;
        for (ptrdiff_t x = 0; x < width; ++x, dst += 3) {
            const int32_t scaled = luma[x] << 16;
            const int32_t u = uRow[x / 2] - 128;
            const int32_t v = vRow[x / 2] - 128;
            dst[0] = Saturate((scaled + 74711 * v) >> 16);
            dst[1] = Saturate((scaled - 38076 * v - 25821 * u) >> 16);
            dst[2] = Saturate((scaled + 133169 * u) >> 16);
        }
    }
    return kPrimOk;
}
