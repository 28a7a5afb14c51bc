// Plain models of the point operations.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_MODELS_POINTMODELS_H
#define SPECIALEFFECTS_TESTS_IMAGING_MODELS_POINTMODELS_H

#include <bit>
#include <cmath>
#include <cstdint>

#include "imaging/Prim.h"
#include "tests/imaging/models/Common.h"

namespace model {

inline PrimStatus PrimSet8uC1(uint8_t value, uint8_t* dst, int32_t step, int32_t width, int32_t height) {
    ForEach(width, height, [&](int32_t x, int32_t y) { At(dst, step, x, y) = value; });
    return 0;
}

inline PrimStatus PrimCopy8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                               int32_t width, int32_t height) {
    ForEach(width, height, [&](int32_t x, int32_t y) { At(dst, dstStep, x, y) = At(src, srcStep, x, y); });
    return 0;
}

inline PrimStatus PrimMean8uC1(const uint8_t* src, int32_t step, int32_t width, int32_t height,
                               double* mean) {
    int64_t sum = 0;
    ForEach(width, height, [&](int32_t x, int32_t y) { sum += At(src, step, x, y); });
    *mean = static_cast<double>(sum) / (static_cast<double>(width) * height);
    return 0;
}

/// What a scale makes of a value of 0 or more.
inline uint8_t Scaled(int64_t s, int32_t scale, int32_t clearAbove) {
    if (scale > clearAbove) {
        return 0;
    }
    if (scale > 0) {
        return Sat8(EvenShift(s, scale));
    }
    if (scale >= -7) {
        return Sat8(s << -scale);
    }
    return s == 0 ? 0 : 255;
}

inline PrimStatus PrimAddSfs8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                                 int32_t width, int32_t height, int32_t scale) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t& pixel = At(srcDst, srcDstStep, x, y);
        pixel = Scaled(pixel + At(src, srcStep, x, y), scale, 9);
    });
    return 0;
}

inline PrimStatus PrimSubSfs8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                                 int32_t width, int32_t height, int32_t scale) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t& pixel = At(srcDst, srcDstStep, x, y);
        const int32_t difference = pixel - At(src, srcStep, x, y);
        pixel = Scaled(difference < 0 ? 0 : difference, scale, 8);
    });
    return 0;
}

inline PrimStatus PrimMulCSfs8uC1(uint8_t value, uint8_t* data, int32_t step, int32_t width, int32_t height,
                                  int32_t scale) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t& pixel = At(data, step, x, y);
        pixel = Scaled(pixel * value, scale, 16);
    });
    return 0;
}

inline PrimStatus PrimMulScale8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                                   int32_t width, int32_t height) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t& pixel = At(srcDst, srcDstStep, x, y);
        const int32_t p = pixel * At(src, srcStep, x, y);
        pixel = static_cast<uint8_t>((p + (p >> 8) + 1) >> 8);
    });
    return 0;
}

inline PrimStatus PrimAnd8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                              int32_t width, int32_t height) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t& pixel = At(srcDst, srcDstStep, x, y);
        pixel = static_cast<uint8_t>(pixel & At(src, srcStep, x, y));
    });
    return 0;
}

inline PrimStatus PrimNot8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t& pixel = At(data, step, x, y);
        pixel = static_cast<uint8_t>(pixel ^ 255);
    });
    return 0;
}

inline PrimStatus PrimThresholdLT8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                      uint8_t threshold) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        if (At(data, step, x, y) < threshold) {
            At(data, step, x, y) = threshold;
        }
    });
    return 0;
}

inline PrimStatus PrimThresholdGTVal8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                         uint8_t threshold, uint8_t value) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        if (At(data, step, x, y) > threshold) {
            At(data, step, x, y) = value;
        }
    });
    return 0;
}

inline PrimStatus PrimThresholdLTValGTVal8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                              int32_t dstStep, int32_t width, int32_t height, uint8_t lo,
                                              uint8_t loValue, uint8_t hi, uint8_t hiValue) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        const uint8_t pixel = At(src, srcStep, x, y);
        if (pixel > hi) {
            At(dst, dstStep, x, y) = hiValue;
        } else if (pixel < lo) {
            At(dst, dstStep, x, y) = loValue;
        } else {
            At(dst, dstStep, x, y) = pixel;
        }
    });
    return 0;
}

inline PrimStatus PrimThresholdLTValGTValInPlace8uC1(uint8_t* data, int32_t step, int32_t width,
                                                     int32_t height, uint8_t lo, uint8_t loValue, uint8_t hi,
                                                     uint8_t hiValue) {
    return PrimThresholdLTValGTVal8uC1(data, step, data, step, width, height, lo, loValue, hi, hiValue);
}

inline PrimStatus PrimReduceBits8uC3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t, int32_t, int32_t levels) {
    ForEach(3 * width, height, [&](int32_t x, int32_t y) {
        const double l = levels - 1;
        const double q = At(src, srcStep, x, y) / 255.0;
        double k = std::trunc(l * q) / l;
        if (q - k >= 0.5 / l) {
            k += 1 / l;
        }
        const double result = std::trunc(k * 255);
        At(dst, dstStep, x, y) = static_cast<uint8_t>(result > 255 ? 255 : result);
    });
    return 0;
}

inline PrimStatus PrimScale32f8u(const float* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                 int32_t width, int32_t height, float lo, float hi) {
    const double f = 255.0 / (static_cast<double>(hi) - static_cast<double>(lo));
    ForEach(width, height, [&](int32_t x, int32_t y) {
        const float value = At(src, srcStep, x, y);
        int32_t result = 0;
        if (value >= hi) {
            result = 255;
        } else if (value > lo) {
            const double raised = value * f + (0.5 - f * lo);
            result = static_cast<int32_t>(raised);
            if (result % 2 == 1 && result == raised) {
                --result;
            }
        }
        At(dst, dstStep, x, y) = static_cast<uint8_t>(result);
    });
    return 0;
}

/// Whether a comes before b in the order of bit patterns: all negative numbers before all others, more
/// negative ones first.
inline bool OlderPattern(float a, float b) {
    const auto rank = [](float v) {
        const auto bits = std::bit_cast<uint32_t>(v);
        return (bits >> 31) != 0 ? ~bits : bits | 0x80000000u;
    };
    return rank(a) < rank(b);
}

inline PrimStatus PrimUpdateMotionHistory8u32f(const uint8_t* silhouette, int32_t silhouetteStep, float* mhi,
                                               int32_t mhiStep, int32_t width, int32_t height,
                                               float timestamp, float duration) {
    const float oldest = timestamp - duration;
    ForEach(width, height, [&](int32_t x, int32_t y) {
        float& entry = At(mhi, mhiStep, x, y);
        if (At(silhouette, silhouetteStep, x, y) != 0) {
            entry = timestamp;
        } else if (OlderPattern(entry, oldest)) {
            entry = 0;
        }
    });
    return 0;
}

inline PrimStatus PrimAddGaussNoise8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                        double mean, double stdDev, uint32_t* seed) {
    uint32_t a = *seed;
    uint32_t b = a * 69069 + 1013904243;
    uint32_t c = b * 69069 + 1013904243;
    uint32_t d = 1131199209;
    int32_t borrow = -1;
    bool pending = false;
    double second = 0;
    ForEach(width, height, [&](int32_t x, int32_t y) {
        double sample = second;
        if (pending) {
            pending = false;
        } else {
            double u = 0;
            double v = 0;
            double r = 0;
            do {
                const uint32_t e = b - c + static_cast<uint32_t>(borrow);
                const bool eNegative = static_cast<int32_t>(e) < 0;
                c = a;
                const uint32_t f = a - b - (eNegative ? 1 : 0);
                const bool fNegative = static_cast<int32_t>(f) < 0;
                b = e - (eNegative ? 18 : 0);
                const uint32_t g = b + d * 69069 + 1013904243;
                d = d * 475559465 + 924302730;
                borrow = static_cast<int32_t>(f) >> 31;
                a = f - (fNegative ? 18 : 0);
                u = static_cast<int32_t>(g) * 4.656612873077e-10;
                v = static_cast<int32_t>(a + d) * 4.656612873077e-10;
                r = u * u + v * v;
            } while (r >= 1 || r == 0);
            const double m = std::sqrt(std::log(r) * -2 / r);
            sample = stdDev * m * u + mean;
            second = stdDev * m * v + mean;
            pending = true;
        }
        uint8_t& pixel = At(data, step, x, y);
        pixel = Sat8(pixel + static_cast<int64_t>(sample));
    });
    *seed = a;
    return 0;
}

}  // namespace model

#endif
