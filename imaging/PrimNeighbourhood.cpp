// Fixed smoothing masks, one-dimensional kernels, box mean, median, 3 by 3 morphology and edge operators.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "imaging/Prim.h"

namespace {

/// Row y of an image whose rows lie `step` bytes apart.
template <class T>
T* Row(T* image, int32_t step, ptrdiff_t y) {
    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(image) + y * step);
}

/// The checks that every primitive with one source and one destination begins with.
template <class T>
PrimStatus CheckImages(const uint8_t* src, int32_t srcStep, const T* dst, int32_t dstStep, int32_t width,
                       int32_t height) {
    constexpr auto kSize = static_cast<int32_t>(sizeof(T));
    if (src == nullptr || dst == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (srcStep < width || dstStep < int64_t{width} * kSize) return kPrimStepError;
    if (dstStep % kSize != 0) return kPrimAlignmentError;
    return kPrimOk;
}

/// dst(x, y) = pixel(p, step), p being the source pixel at (x, y).
template <class T, class Pixel>
PrimStatus ForEachPixel(const uint8_t* src, int32_t srcStep, T* dst, int32_t dstStep, int32_t width,
                        int32_t height, Pixel pixel) {
    for (ptrdiff_t y = 0; y < height; ++y) {
        const uint8_t* from = Row(src, srcStep, y);
        T* to = Row(dst, dstStep, y);
        for (ptrdiff_t x = 0; x < width; ++x) to[x] = static_cast<T>(pixel(from + x, ptrdiff_t{srcStep}));
    }
    return kPrimOk;
}

/// Sum of the square neighbourhood of p under weights in row order.
template <class Sum, size_t N>
Sum WeightedSum(const uint8_t* p, ptrdiff_t step, const std::array<Sum, N>& weights) {
    constexpr ptrdiff_t kReach = N == 9 ? 1 : 2;
    Sum sum = 0;
    auto weight = weights.begin();
    for (ptrdiff_t dy = -kReach; dy <= kReach; ++dy)
        for (ptrdiff_t dx = -kReach; dx <= kReach; ++dx) sum += *weight++ * Sum{p[dy * step + dx]};
    return sum;
}

// clang-format off
constexpr std::array<uint32_t, 9> kGauss3x3 = {1, 2, 1,
                                               2, 4, 2,
                                               1, 2, 1};
constexpr std::array<uint32_t, 25> kGauss5x5 = {2,  7,  12,  7,  2,
                                                7,  31, 52,  31, 7,
                                                12, 52, 127, 52, 12,
                                                7,  31, 52,  31, 7,
                                                2,  7,  12,  7,  2};
constexpr std::array<uint32_t, 9> kMean3x3 = {1, 1, 1,
                                              1, 1, 1,
                                              1, 1, 1};
constexpr std::array<uint32_t, 25> kMean5x5 = {1, 1, 1, 1, 1,
                                               1, 1, 1, 1, 1,
                                               1, 1, 1, 1, 1,
                                               1, 1, 1, 1, 1,
                                               1, 1, 1, 1, 1};
constexpr std::array<int32_t, 9> kSobelHoriz3x3 = {-1, -2, -1,
                                                   0,  0,  0,
                                                   1,  2,  1};
constexpr std::array<int32_t, 9> kSobelVert3x3 = {1, 0, -1,
                                                  2, 0, -2,
                                                  1, 0, -1};
constexpr std::array<int32_t, 9> kScharrHoriz3x3 = {-3, -10, -3,
                                                    0,  0,   0,
                                                    3,  10,  3};
constexpr std::array<int32_t, 9> kScharrVert3x3 = {3,  0, -3,
                                                   10, 0, -10,
                                                   3,  0, -3};
constexpr std::array<int32_t, 25> kSobelHoriz5x5 = {-1, -4, -6,  -4, -1,
                                                    -2, -8, -12, -8, -2,
                                                    0,  0,  0,   0,  0,
                                                    2,  8,  12,  8,  2,
                                                    1,  4,  6,   4,  1};
constexpr std::array<int32_t, 25> kSobelVert5x5 = {1, 2,  0, -2,  -1,
                                                   4, 8,  0, -8,  -4,
                                                   6, 12, 0, -12, -6,
                                                   4, 8,  0, -8,  -4,
                                                   1, 2,  0, -2,  -1};
// clang-format on

}  // namespace

// ---- smoothing -------------------------------------------------------------------------------------------

PrimStatus PrimFilterGauss8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                               int32_t width, int32_t height, int32_t mask) {
    if (const PrimStatus status = CheckImages(src, srcStep, dst, dstStep, width, height)) return status;
    switch (mask) {
        case kPrimMask3x3:
            return ForEachPixel(src, srcStep, dst, dstStep, width, height,
                                [](const uint8_t* p, ptrdiff_t step) {
                                    const uint32_t s = WeightedSum(p, step, kGauss3x3);
                                    return (s + ((s >> 4) & 1) + 7) >> 4;
                                });
        case kPrimMask5x5:
            return ForEachPixel(src, srcStep, dst, dstStep, width, height,
                                [](const uint8_t* p, ptrdiff_t step) {
                                    return ((WeightedSum(p, step, kGauss5x5) + 286) * 29382) >> 24;
                                });
        default:
            return kPrimMaskError;
    }
}

PrimStatus PrimFilterLowpass8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                 int32_t width, int32_t height, int32_t mask) {
    if (const PrimStatus status = CheckImages(src, srcStep, dst, dstStep, width, height)) return status;
    switch (mask) {
        case kPrimMask3x3:
            return ForEachPixel(src, srcStep, dst, dstStep, width, height,
                                [](const uint8_t* p, ptrdiff_t step) {
                                    return ((WeightedSum(p, step, kMean3x3) + 5) * 455) >> 12;
                                });
        case kPrimMask5x5:
            return ForEachPixel(src, srcStep, dst, dstStep, width, height,
                                [](const uint8_t* p, ptrdiff_t step) {
                                    return ((WeightedSum(p, step, kMean5x5) + 13) * 10485) >> 18;
                                });
        default:
            return kPrimMaskError;
    }
}

PrimStatus PrimFilterBox8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, int32_t maskWidth,
                             int32_t maskHeight, int32_t anchorX, int32_t anchorY) {
    if (data == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (step < width) return kPrimStepError;
    if (maskWidth < 1 || maskHeight < 1 || maskWidth >= width || maskHeight >= height) return kPrimMaskError;
    if (anchorX < 0 || anchorX >= maskWidth || anchorY < 0 || anchorY >= maskHeight) return kPrimAnchorError;

    // One running sum per column under the mask, and the unfiltered rows that are already overwritten but
    // not yet left by the mask: row y is kept at y % (anchorY + 1).
    const ptrdiff_t columns = ptrdiff_t{width} + maskWidth - 1;
    const ptrdiff_t kept = ptrdiff_t{anchorY} + 1;
    const auto ring =
        std::unique_ptr<uint8_t[]>(new (std::nothrow) uint8_t[static_cast<size_t>(kept * columns)]);
    const auto sums =
        std::unique_ptr<uint32_t[]>(new (std::nothrow) uint32_t[static_cast<size_t>(columns)]());
    if (!ring || !sums) return kPrimMemoryError;

    const uint8_t* corner = data - anchorX;
    for (ptrdiff_t y = -anchorY; y < maskHeight - anchorY - 1; ++y) {
        const uint8_t* entering = Row(corner, step, y);
        for (ptrdiff_t x = 0; x < columns; ++x) sums[static_cast<size_t>(x)] += entering[x];
    }
    const uint64_t area = uint64_t(maskWidth) * uint64_t(maskHeight);
    for (ptrdiff_t y = 0; y < height; ++y) {
        const uint8_t* entering = Row(corner, step, y - anchorY + maskHeight - 1);
        for (ptrdiff_t x = 0; x < columns; ++x) sums[static_cast<size_t>(x)] += entering[x];
        std::memcpy(ring.get() + y % kept * columns, Row(corner, step, y), static_cast<size_t>(columns));

        uint8_t* to = Row(data, step, y);
        uint64_t sum = area / 2;
        for (ptrdiff_t x = 0; x < maskWidth - 1; ++x) sum += sums[static_cast<size_t>(x)];
        for (ptrdiff_t x = 0; x < width; ++x) {
            sum += sums[static_cast<size_t>(x + maskWidth - 1)];
            to[x] = static_cast<uint8_t>(sum / area);
            sum -= sums[static_cast<size_t>(x)];
        }
        const ptrdiff_t left = y - anchorY;
        const uint8_t* leaving = left < 0 ? Row(corner, step, left) : ring.get() + left % kept * columns;
        for (ptrdiff_t x = 0; x < columns; ++x) sums[static_cast<size_t>(x)] -= leaving[x];
    }
    return kPrimOk;
}

PrimStatus PrimFilterMedian8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                int32_t width, int32_t height, int32_t maskWidth, int32_t maskHeight,
                                int32_t anchorX, int32_t anchorY) {
    if (const PrimStatus status = CheckImages(src, srcStep, dst, dstStep, width, height)) return status;
    if (maskWidth < 1 || maskHeight < 1 || maskWidth % 2 == 0 || maskHeight % 2 == 0) return kPrimMaskError;
    if (anchorX < 0 || anchorX >= maskWidth || anchorY < 0 || anchorY >= maskHeight) return kPrimAnchorError;

    const int64_t rank = int64_t{maskWidth} * maskHeight / 2;
    for (ptrdiff_t y = 0; y < height; ++y) {
        uint8_t* to = Row(dst, dstStep, y);
        const uint8_t* corner = Row(src, srcStep, y - anchorY) - anchorX;
        std::array<int64_t, 256> histogram = {};
        const auto count = [&](ptrdiff_t column, int64_t weight) {
            for (ptrdiff_t k = 0; k < maskHeight; ++k) histogram[corner[k * srcStep + column]] += weight;
        };
        for (ptrdiff_t x = 0; x < maskWidth - 1; ++x) count(x, 1);
        for (ptrdiff_t x = 0; x < width; ++x) {
            count(x + maskWidth - 1, 1);
            int64_t below = 0;
            size_t value = 0;
            while ((below += histogram[value]) <= rank) ++value;
            to[x] = static_cast<uint8_t>(value);
            count(x, -1);
        }
    }
    return kPrimOk;
}

// ---- one-dimensional kernels -----------------------------------------------------------------------------

namespace {

/// A sum of taps divided by the divisor, saturated.
class Quotient {
  public:
    explicit Quotient(int32_t divisor)
        : shift_(divisor > 0 && std::has_single_bit(static_cast<uint32_t>(divisor))
                     ? std::countr_zero(static_cast<uint32_t>(divisor))
                     : -1),
          reciprocal_(1.0f / static_cast<float>(divisor)) {}

    uint8_t operator()(int64_t sum) const {
        if (shift_ >= 0) {
            if (sum < 1) return 0;
            const int64_t half = (int64_t{1} << shift_) >> 1;
            return static_cast<uint8_t>(std::min<int64_t>((sum + half) >> shift_, 255));
        }
        const double value = static_cast<double>(sum) * reciprocal_;
        if (!(value > 0)) return 0;
        return static_cast<uint8_t>(std::min(value + 0.5, 255.0));
    }

  private:
    int shift_;
    double reciprocal_;
};

PrimStatus FilterLine(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                      int32_t height, const int32_t* kernel, int32_t kernelSize, int32_t anchor,
                      int32_t divisor, ptrdiff_t direction) {
    if (src == nullptr || dst == nullptr || kernel == nullptr) return kPrimNullError;
    if (width < 1 || height < 1 || kernelSize < 1) return kPrimSizeError;
    if (srcStep < width || dstStep < width) return kPrimStepError;
    if (anchor < 0 || anchor >= kernelSize) return kPrimAnchorError;
    if (divisor == 0) return kPrimDivisorError;

    const Quotient quotient(divisor);
    return ForEachPixel(src, srcStep, dst, dstStep, width, height, [&](const uint8_t* p, ptrdiff_t) {
        int64_t sum = 0;
        for (ptrdiff_t k = 0; k < kernelSize; ++k) sum += int64_t{kernel[k]} * p[(anchor - k) * direction];
        return quotient(sum);
    });
}

}  // namespace

PrimStatus PrimFilterColumn8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                int32_t width, int32_t height, const int32_t* kernel, int32_t kernelSize,
                                int32_t anchor, int32_t divisor) {
    return FilterLine(src, srcStep, dst, dstStep, width, height, kernel, kernelSize, anchor, divisor,
                      srcStep);
}

PrimStatus PrimFilterRow8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                             int32_t width, int32_t height, const int32_t* kernel, int32_t kernelSize,
                             int32_t anchor, int32_t divisor) {
    return FilterLine(src, srcStep, dst, dstStep, width, height, kernel, kernelSize, anchor, divisor, 1);
}

// ---- morphology ------------------------------------------------------------------------------------------

PrimStatus PrimDilate3x38uC1(uint8_t* data, int32_t step, int32_t width, int32_t height) {
    if (data == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (step < 1) return kPrimStepError;
    if (step < int64_t{width} + 2) return kPrimMorphologyStepError;

    // Row maxima of the undilated rows above, at and below y, in a ring.
    const auto size = static_cast<size_t>(width);
    const auto buffer = std::unique_ptr<uint8_t[]>(new (std::nothrow) uint8_t[3 * size]);
    if (!buffer) return kPrimMemoryError;
    const std::array<uint8_t*, 3> ring = {buffer.get(), buffer.get() + size, buffer.get() + 2 * size};
    const auto fill = [&](ptrdiff_t y) {
        const uint8_t* from = Row(data, step, y);
        uint8_t* to = ring[static_cast<size_t>((y + 1) % 3)];
        for (ptrdiff_t x = 0; x < width; ++x) to[x] = std::max({from[x - 1], from[x], from[x + 1]});
    };
    fill(-1);
    fill(0);
    for (ptrdiff_t y = 0; y < height; ++y) {
        fill(y + 1);
        uint8_t* to = Row(data, step, y);
        for (size_t x = 0; x < size; ++x) to[x] = std::max({ring[0][x], ring[1][x], ring[2][x]});
    }
    return kPrimOk;
}

PrimStatus PrimErode3x38uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                            int32_t height) {
    if (src == nullptr || dst == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (srcStep < 1 || dstStep < 1) return kPrimStepError;
    if (srcStep < int64_t{width} + 2 || dstStep < int64_t{width} + 2) return kPrimMorphologyStepError;
    return ForEachPixel(src, srcStep, dst, dstStep, width, height, [](const uint8_t* p, ptrdiff_t step) {
        return std::min(
            {p[-step - 1], p[-step], p[-step + 1], p[-1], p[0], p[1], p[step - 1], p[step], p[step + 1]});
    });
}

// ---- edge operators --------------------------------------------------------------------------------------

namespace {

PrimStatus FilterSobel(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, int32_t width,
                       int32_t height, int32_t mask, const std::array<int32_t, 9>& weights3x3,
                       const std::array<int32_t, 25>& weights5x5) {
    if (const PrimStatus status = CheckImages(src, srcStep, dst, dstStep, width, height)) return status;
    switch (mask) {
        case kPrimMask3x3:
            return ForEachPixel(
                src, srcStep, dst, dstStep, width, height,
                [&](const uint8_t* p, ptrdiff_t step) { return WeightedSum(p, step, weights3x3); });
        case kPrimMask5x5:
            return ForEachPixel(
                src, srcStep, dst, dstStep, width, height,
                [&](const uint8_t* p, ptrdiff_t step) { return WeightedSum(p, step, weights5x5); });
        default:
            return kPrimMaskError;
    }
}

PrimStatus BorderBufferSize(int32_t width, int32_t height, int32_t* size) {
    if (size == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    *size = 1;
    return kPrimOk;
}

PrimStatus BorderBufferSize(int32_t width, int32_t height, int32_t mask, int32_t* size) {
    if (size == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (mask != kPrimMask3x3 && mask != kPrimMask5x5) return kPrimMaskError;
    return BorderBufferSize(width, height, size);
}

template <size_t N>
PrimStatus FilterReplicated(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, int32_t width,
                            int32_t height, const std::array<int32_t, N>& weights) {
    constexpr ptrdiff_t kSide = N == 9 ? 3 : 5;
    for (ptrdiff_t y = 0; y < height; ++y) {
        int16_t* to = Row(dst, dstStep, y);
        for (ptrdiff_t x = 0; x < width; ++x) {
            std::array<uint8_t, N> window;
            for (ptrdiff_t k = 0; k < static_cast<ptrdiff_t>(N); ++k) {
                const ptrdiff_t sy = std::clamp<ptrdiff_t>(y + k / kSide - kSide / 2, 0, height - 1);
                const ptrdiff_t sx = std::clamp<ptrdiff_t>(x + k % kSide - kSide / 2, 0, width - 1);
                window[static_cast<size_t>(k)] = Row(src, srcStep, sy)[sx];
            }
            to[x] = static_cast<int16_t>(WeightedSum(window.data() + N / 2, kSide, weights));
        }
    }
    return kPrimOk;
}

PrimStatus SobelBorder(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, int32_t width,
                       int32_t height, int32_t mask, const uint8_t* buffer,
                       const std::array<int32_t, 9>& weights3x3, const std::array<int32_t, 25>& weights5x5) {
    if (buffer == nullptr) return kPrimNullError;
    if (const PrimStatus status = CheckImages(src, srcStep, dst, dstStep, width, height)) return status;
    switch (mask) {
        case kPrimMask3x3:
            return FilterReplicated(src, srcStep, dst, dstStep, width, height, weights3x3);
        case kPrimMask5x5:
            return FilterReplicated(src, srcStep, dst, dstStep, width, height, weights5x5);
        default:
            return kPrimMaskError;
    }
}

PrimStatus ScharrBorder(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, int32_t width,
                        int32_t height, const uint8_t* buffer, const std::array<int32_t, 9>& weights) {
    if (buffer == nullptr) return kPrimNullError;
    if (const PrimStatus status = CheckImages(src, srcStep, dst, dstStep, width, height)) return status;
    return FilterReplicated(src, srcStep, dst, dstStep, width, height, weights);
}

}  // namespace

PrimStatus PrimFilterSobelHoriz8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t mask) {
    return FilterSobel(src, srcStep, dst, dstStep, width, height, mask, kSobelHoriz3x3, kSobelHoriz5x5);
}

PrimStatus PrimFilterSobelVert8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                    int32_t width, int32_t height, int32_t mask) {
    return FilterSobel(src, srcStep, dst, dstStep, width, height, mask, kSobelVert3x3, kSobelVert5x5);
}

PrimStatus PrimSobelHorizBorderGetBufferSize(int32_t width, int32_t height, int32_t mask, int32_t* size) {
    return BorderBufferSize(width, height, mask, size);
}

PrimStatus PrimSobelVertBorderGetBufferSize(int32_t width, int32_t height, int32_t mask, int32_t* size) {
    return BorderBufferSize(width, height, mask, size);
}

PrimStatus PrimScharrHorizBorderGetBufferSize(int32_t width, int32_t height, int32_t* size) {
    return BorderBufferSize(width, height, size);
}

PrimStatus PrimScharrVertBorderGetBufferSize(int32_t width, int32_t height, int32_t* size) {
    return BorderBufferSize(width, height, size);
}

PrimStatus PrimSobelHorizBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t mask, int32_t /*borderType*/,
                                     uint8_t /*borderValue*/, uint8_t* buffer) {
    return SobelBorder(src, srcStep, dst, dstStep, width, height, mask, buffer, kSobelHoriz3x3,
                       kSobelHoriz5x5);
}

PrimStatus PrimSobelVertBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                    int32_t width, int32_t height, int32_t mask, int32_t /*borderType*/,
                                    uint8_t /*borderValue*/, uint8_t* buffer) {
    return SobelBorder(src, srcStep, dst, dstStep, width, height, mask, buffer, kSobelVert3x3, kSobelVert5x5);
}

PrimStatus PrimScharrHorizBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                      int32_t width, int32_t height, int32_t /*borderType*/,
                                      uint8_t /*borderValue*/, uint8_t* buffer) {
    return ScharrBorder(src, srcStep, dst, dstStep, width, height, buffer, kScharrHoriz3x3);
}

PrimStatus PrimScharrVertBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t /*borderType*/,
                                     uint8_t /*borderValue*/, uint8_t* buffer) {
    return ScharrBorder(src, srcStep, dst, dstStep, width, height, buffer, kScharrVert3x3);
}
