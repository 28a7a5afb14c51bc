// Plain models of the filters whose pixels depend on a window of pixels.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_MODELS_NEIGHBOURHOODMODELS_H
#define SPECIALEFFECTS_TESTS_IMAGING_MODELS_NEIGHBOURHOODMODELS_H

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/models/Common.h"

namespace model {

/// Sum of the pixels around (x, y) under a square of weights in row order. pixel(x, y) reads the image.
template <typename Pixel>
int64_t WeightedSum(const std::vector<int32_t>& weights, int32_t x, int32_t y, Pixel pixel) {
    const int32_t side = weights.size() == 9 ? 3 : 5;
    int64_t sum = 0;
    for (int32_t row = 0; row < side; ++row) {
        for (int32_t column = 0; column < side; ++column) {
            const int32_t weight = weights[static_cast<size_t>(row * side + column)];
            sum += int64_t{weight} * pixel(x + column - side / 2, y + row - side / 2);
        }
    }
    return sum;
}

// ---- smoothing masks -------------------------------------------------------------------------------------

inline PrimStatus PrimFilterGauss8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                      int32_t width, int32_t height, int32_t mask) {
    const auto pixel = [&](int32_t x, int32_t y) { return At(src, srcStep, x, y); };
    ForEach(width, height, [&](int32_t x, int32_t y) {
        if (mask == 33) {
            const int64_t s = WeightedSum({1, 2, 1, 2, 4, 2, 1, 2, 1}, x, y, pixel);
            At(dst, dstStep, x, y) = Sat8((s + ((s >> 4) & 1) + 7) >> 4);
        } else {
            const int64_t s = WeightedSum(
                {2, 7, 12, 7, 2, 7, 31, 52, 31, 7, 12, 52, 127, 52, 12, 7, 31, 52, 31, 7, 2, 7, 12, 7, 2}, x,
                y, pixel);
            At(dst, dstStep, x, y) = static_cast<uint8_t>(((static_cast<uint32_t>(s) + 286) * 29382) >> 24);
        }
    });
    return 0;
}

inline PrimStatus PrimFilterLowpass8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                        int32_t width, int32_t height, int32_t mask) {
    const auto pixel = [&](int32_t x, int32_t y) { return At(src, srcStep, x, y); };
    ForEach(width, height, [&](int32_t x, int32_t y) {
        if (mask == 33) {
            const int64_t s = WeightedSum(std::vector<int32_t>(9, 1), x, y, pixel);
            At(dst, dstStep, x, y) = Sat8(((s + 5) * 455) >> 12);
        } else {
            const int64_t s = WeightedSum(std::vector<int32_t>(25, 1), x, y, pixel);
            At(dst, dstStep, x, y) = Sat8(((s + 13) * 10485) >> 18);
        }
    });
    return 0;
}

// ---- windows of any size ---------------------------------------------------------------------------------

/// The region and what a window reads around it, copied.
class Copy {
  public:
    Copy(const uint8_t* image, int32_t step, int32_t width, int32_t height, int32_t maskWidth,
         int32_t maskHeight, int32_t anchorX, int32_t anchorY)
        : width_(width + maskWidth - 1), anchorX_(anchorX), anchorY_(anchorY) {
        for (int32_t y = 0; y < height + maskHeight - 1; ++y) {
            for (int32_t x = 0; x < width_; ++x) {
                pixels_.push_back(At(image, step, x - anchorX, y - anchorY));
            }
        }
    }

    uint8_t at(int32_t x, int32_t y) const {
        return pixels_[static_cast<size_t>((y + anchorY_) * width_ + x + anchorX_)];
    }

  private:
    int32_t width_;
    int32_t anchorX_;
    int32_t anchorY_;
    std::vector<uint8_t> pixels_;
};

inline PrimStatus PrimFilterBox8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                    int32_t maskWidth, int32_t maskHeight, int32_t anchorX, int32_t anchorY) {
    const Copy unfiltered(data, step, width, height, maskWidth, maskHeight, anchorX, anchorY);
    const int64_t n = int64_t{maskWidth} * maskHeight;
    ForEach(width, height, [&](int32_t x, int32_t y) {
        int64_t sum = 0;
        ForEach(maskWidth, maskHeight, [&](int32_t column, int32_t row) {
            sum += unfiltered.at(x - anchorX + column, y - anchorY + row);
        });
        At(data, step, x, y) = Sat8((sum + n / 2) / n);
    });
    return 0;
}

inline PrimStatus PrimFilterMedian8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                       int32_t width, int32_t height, int32_t maskWidth, int32_t maskHeight,
                                       int32_t anchorX, int32_t anchorY) {
    std::vector<uint8_t> window;
    ForEach(width, height, [&](int32_t x, int32_t y) {
        window.clear();
        ForEach(maskWidth, maskHeight, [&](int32_t column, int32_t row) {
            window.push_back(At(src, srcStep, x - anchorX + column, y - anchorY + row));
        });
        const auto middle = window.begin() + static_cast<ptrdiff_t>(window.size() / 2);
        std::nth_element(window.begin(), middle, window.end());
        At(dst, dstStep, x, y) = *middle;
    });
    return 0;
}

/// Each bit is that of most of the 25 pixels around.
inline void FilterMajority5(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                            ptrdiff_t width, ptrdiff_t height) {
    for (ptrdiff_t y = 0; y < height; ++y) {
        for (ptrdiff_t x = 0; x < width; ++x) {
            unsigned result = 0;
            for (unsigned bit = 1; bit < 256; bit *= 2) {
                int votes = 0;
                for (ptrdiff_t i = 0; i < 25; ++i) {
                    votes += (src[(y + i / 5 - 2) * srcStep + x + i % 5 - 2] & bit) != 0 ? 1 : 0;
                }
                if (votes >= 13) result |= bit;
            }
            dst[y * dstStep + x] = static_cast<uint8_t>(result);
        }
    }
}

// ---- one-dimensional kernels -----------------------------------------------------------------------------

inline uint8_t Divided(int64_t s, int32_t divisor) {
    if (divisor == 1) {
        return Sat8(s);
    }
    if (divisor > 0 && std::has_single_bit(static_cast<uint32_t>(divisor))) {
        const int n = std::countr_zero(static_cast<uint32_t>(divisor));
        return s < 1 ? 0 : Sat8((s + (int64_t{1} << (n - 1))) >> n);
    }
    const double value = static_cast<double>(s) * double{1.0f / static_cast<float>(divisor)};
    return value > 0 ? static_cast<uint8_t>(std::min(value + 0.5, 255.0)) : 0;
}

inline PrimStatus PrimFilterColumn8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                       int32_t width, int32_t height, const int32_t* kernel,
                                       int32_t kernelSize, int32_t anchor, int32_t divisor) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        int64_t s = 0;
        for (int32_t k = 0; k < kernelSize; ++k) {
            s += int64_t{kernel[k]} * At(src, srcStep, x, y + anchor - k);
        }
        At(dst, dstStep, x, y) = Divided(s, divisor);
    });
    return 0;
}

inline PrimStatus PrimFilterRow8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                    int32_t width, int32_t height, const int32_t* kernel, int32_t kernelSize,
                                    int32_t anchor, int32_t divisor) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        int64_t s = 0;
        for (int32_t k = 0; k < kernelSize; ++k) {
            s += int64_t{kernel[k]} * At(src, srcStep, x + anchor - k, y);
        }
        At(dst, dstStep, x, y) = Divided(s, divisor);
    });
    return 0;
}

// ---- morphology ------------------------------------------------------------------------------------------

inline PrimStatus PrimDilate3x38uC1(uint8_t* data, int32_t step, int32_t width, int32_t height) {
    const Copy undilated(data, step, width, height, 3, 3, 1, 1);
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t most = 0;
        ForEach(3, 3, [&](int32_t column, int32_t row) {
            most = std::max(most, undilated.at(x - 1 + column, y - 1 + row));
        });
        At(data, step, x, y) = most;
    });
    return 0;
}

inline PrimStatus PrimErode3x38uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                   int32_t width, int32_t height) {
    ForEach(width, height, [&](int32_t x, int32_t y) {
        uint8_t least = 255;
        ForEach(3, 3, [&](int32_t column, int32_t row) {
            least = std::min(least, At(src, srcStep, x - 1 + column, y - 1 + row));
        });
        At(dst, dstStep, x, y) = least;
    });
    return 0;
}

// ---- edge operators --------------------------------------------------------------------------------------

/// Row differences under a mask of 33 or 55, or 10 for the Scharr weights.
inline std::vector<int32_t> HorizWeights(int32_t mask) {
    switch (mask) {
        case 33:
            return {-1, -2, -1, 0, 0, 0, 1, 2, 1};
        case 10:
            return {-3, -10, -3, 0, 0, 0, 3, 10, 3};
        default:
            return {-1, -4, -6, -4, -1, -2, -8, -12, -8, -2, 0, 0, 0, 0, 0, 2, 8, 12, 8, 2, 1, 4, 6, 4, 1};
    }
}

/// Column differences, left minus right.
inline std::vector<int32_t> VertWeights(int32_t mask) {
    switch (mask) {
        case 33:
            return {1, 0, -1, 2, 0, -2, 1, 0, -1};
        case 10:
            return {3, 0, -3, 10, 0, -10, 3, 0, -3};
        default:
            return {1, 2, 0, -2, -1, 4, 8, 0, -8, -4, 6, 12, 0, -12, -6, 4, 8, 0, -8, -4, 1, 2, 0, -2, -1};
    }
}

inline PrimStatus Gradient(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, int32_t width,
                           int32_t height, const std::vector<int32_t>& weights, bool replicate) {
    const auto pixel = [&](int32_t x, int32_t y) {
        return replicate ? At(src, srcStep, std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1))
                         : At(src, srcStep, x, y);
    };
    ForEach(width, height, [&](int32_t x, int32_t y) {
        At(dst, dstStep, x, y) = static_cast<int16_t>(WeightedSum(weights, x, y, pixel));
    });
    return 0;
}

inline PrimStatus PrimFilterSobelHoriz8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, int32_t width, int32_t height, int32_t mask) {
    return Gradient(src, srcStep, dst, dstStep, width, height, HorizWeights(mask), false);
}

inline PrimStatus PrimFilterSobelVert8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                           int32_t width, int32_t height, int32_t mask) {
    return Gradient(src, srcStep, dst, dstStep, width, height, VertWeights(mask), false);
}

inline PrimStatus PrimSobelHorizBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, int32_t width, int32_t height, int32_t mask,
                                            int32_t, uint8_t, uint8_t*) {
    return Gradient(src, srcStep, dst, dstStep, width, height, HorizWeights(mask), true);
}

inline PrimStatus PrimSobelVertBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                           int32_t width, int32_t height, int32_t mask, int32_t, uint8_t,
                                           uint8_t*) {
    return Gradient(src, srcStep, dst, dstStep, width, height, VertWeights(mask), true);
}

inline PrimStatus PrimScharrHorizBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                             int32_t dstStep, int32_t width, int32_t height, int32_t, uint8_t,
                                             uint8_t*) {
    return Gradient(src, srcStep, dst, dstStep, width, height, HorizWeights(10), true);
}

inline PrimStatus PrimScharrVertBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                            int32_t dstStep, int32_t width, int32_t height, int32_t, uint8_t,
                                            uint8_t*) {
    return Gradient(src, srcStep, dst, dstStep, width, height, VertWeights(10), true);
}

}  // namespace model

#endif
