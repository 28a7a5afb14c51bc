// Plain models of the colour operations.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_MODELS_COLORMODELS_H
#define SPECIALEFFECTS_TESTS_IMAGING_MODELS_COLORMODELS_H

#include <cstdint>

#include "imaging/Prim.h"
#include "tests/imaging/models/Common.h"

namespace model {

/// One output of the colour twist.
inline uint8_t Twisted(const float* row, uint8_t p0, uint8_t p1, uint8_t p2) {
    const double m0 = row[0];
    const double m1 = row[1];
    const double m2 = row[2];
    const double m3 = row[3];
    const double out = m0 * p0 + m1 * p1 + m2 * p2 + m3;
    if (out >= 255) {
        return 255;
    }
    return out > 0 ? static_cast<uint8_t>(HalfToEven(out)) : uint8_t{0};
}

inline PrimStatus PrimColorTwist8uC3(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                     const float* matrix) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t* p = &At(data, step, 3 * x, y);
        const uint8_t p0 = p[0];
        const uint8_t p1 = p[1];
        const uint8_t p2 = p[2];
        for (int32_t c = 0; c < 3; ++c) {
            p[c] = Twisted(matrix + 4 * c, p0, p1, p2);
        }
    });
    return 0;
}

inline PrimStatus PrimRgbToYuv420(const uint8_t* src, uint8_t* const planes[3], int32_t width,
                                  int32_t height) {
    const auto byte = [&](int32_t x, int32_t y, int32_t c) -> int32_t {
        return At(src, 3 * width, 3 * x + c, y);
    };
    const auto luma = [&](int32_t x, int32_t y) {
        return 19595 * byte(x, y, 0) + 38470 * byte(x, y, 1) + 7471 * byte(x, y, 2);
    };
    ForEach(width, height, [&](int32_t x, int32_t y) {
        At(planes[0], width, x, y) = static_cast<uint8_t>(luma(x, y) >> 16);
    });
    const int32_t chromaWidth = (width + 1) / 2;
    ForEach(chromaWidth, (height + 1) / 2, [&](int32_t cx, int32_t cy) {
        int32_t count = 0;
        int32_t s0 = 0;
        int32_t s2 = 0;
        int32_t lumaSum = 0;
        for (int32_t y = 2 * cy; y < 2 * cy + 2 && y < height; ++y) {
            for (int32_t x = 2 * cx; x < 2 * cx + 2 && x < width; ++x) {
                ++count;
                s0 += byte(x, y, 0);
                s2 += byte(x, y, 2);
                lumaSum += luma(x, y);
            }
        }
        const int32_t bias = count == 4 ? 0x1ffff : 0;
        const int32_t shift = count == 4 ? 18 : count == 2 ? 17 : 16;
        const int32_t u = ((((s2 << 16) - lumaSum + bias) >> 16) * 32244 >> shift) - 128;
        const int32_t v = ((((s0 << 16) - lumaSum + bias) >> 16) * 57475 >> shift) + 128;
        At(planes[1], chromaWidth, cx, cy) = static_cast<uint8_t>(u & 255);
        At(planes[2], chromaWidth, cx, cy) = Sat8(v);
    });
    return 0;
}

inline PrimStatus PrimYuv420ToRgb(const uint8_t* const planes[3], uint8_t* dst, int32_t width,
                                  int32_t height) {
    const int32_t chromaWidth = (width + 1) / 2;
    ForEach(width, height, [&](int32_t x, int32_t y) {
        const int32_t y16 = At(planes[0], width, x, y) << 16;
        const int32_t u = At(planes[1], chromaWidth, x / 2, y / 2) - 128;
        const int32_t v = At(planes[2], chromaWidth, x / 2, y / 2) - 128;
        uint8_t* p = &At(dst, 3 * width, 3 * x, y);
        p[0] = Sat8((y16 + 74711 * v) >> 16);
        p[1] = Sat8((y16 - 38076 * v - 25821 * u) >> 16);
        p[2] = Sat8((y16 + 133169 * u) >> 16);
    });
    return 0;
}

}  // namespace model

#endif
