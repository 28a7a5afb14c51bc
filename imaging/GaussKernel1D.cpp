#include "imaging/GaussKernel1D.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "imaging/Prim.h"

namespace {

constexpr int32_t kMaxSize = 32767;

bool FitsInt32(double value) {
    // False for NaN too.
    return value > -2147483649.0 && value < 2147483648.0;
}

bool SameSize(const CPlane8u& a, const CPlane8u& b) {
    return a.width == b.width && a.height == b.height;
}

}  // namespace

bool CGaussKernel1D::Build(double sigma, int32_t kernelSize) {
    Release();
    if (!(sigma > 0.0)) return false;
    if (kernelSize == 0) {
        const double wanted = sigma * 6.0 + 1.0;
        if (wanted > kMaxSize) return false;
        kernelSize = static_cast<int32_t>(wanted);
        if (kernelSize % 2 == 0) ++kernelSize;
    }
    if (kernelSize < 1 || kernelSize > kMaxSize) return false;

    const int32_t half = kernelSize / 2;
    const double c = std::sqrt(6.2831852) * sigma;  // exactly this value of 2 pi, on purpose
    const double d = sigma * (sigma + sigma);
    const auto bell = [c, d](int32_t x) { return std::exp(-(x * x / d)) / c; };
    const double wantedDivisor = 2.0 / bell(half);
    if (!FitsInt32(wantedDivisor)) return false;
    const auto wholeDivisor = static_cast<int32_t>(wantedDivisor);

    auto newTaps = std::make_unique<int32_t[]>(static_cast<size_t>(kernelSize));
    for (int32_t i = 0; i < kernelSize; ++i) {
        const double tap = bell(i - half) * wholeDivisor;
        if (!FitsInt32(tap)) return false;
        newTaps[static_cast<size_t>(i)] = static_cast<int32_t>(tap);
    }
    storage = std::move(newTaps);
    taps = storage.get();
    size = kernelSize;
    divisor = wholeDivisor;
    return true;
}

void CGaussKernel1D::FilterColumns(const CPlane8u& src, CPlane8u& dst, FilterRing ends) const {
    const int32_t half = size / 2;
    if (ends == FilterRing::kCopied && !src.Empty() && SameSize(src, dst)) {
        if (divisor == 0 || dst.height <= 2 * half) {
            dst.CopyPixels(src);
        } else {
            const int32_t below = dst.height - half;
            const auto bytes = static_cast<size_t>(half) * static_cast<size_t>(dst.width);
            std::memcpy(dst.data, src.data, bytes);
            std::memcpy(dst.Row(below), src.Row(below), bytes);
        }
    }
    if (src.Empty() || dst.Empty() || src.width > dst.width || src.height < dst.height ||
        dst.height <= 2 * half) {
        return;
    }
    PrimFilterColumn8uC1(src.Row(half), src.width, dst.Row(half), dst.width, src.width, dst.height - 2 * half,
                         taps, size, half, divisor);
}

void CGaussKernel1D::FilterRows(const CPlane8u& src, CPlane8u& dst, FilterRing ends) const {
    const int32_t half = size / 2;
    if (ends == FilterRing::kCopied && !src.Empty() && SameSize(src, dst)) {
        if (divisor == 0 || dst.width <= 2 * half) {
            dst.CopyPixels(src);
        } else {
            const int32_t right = dst.width - half;
            const auto bytes = static_cast<size_t>(half);
            for (int32_t y = 0; y < dst.height; ++y) {
                std::memcpy(dst.Row(y), src.Row(y), bytes);
                std::memcpy(dst.Row(y) + right, src.Row(y) + right, bytes);
            }
        }
    }
    if (src.Empty() || dst.Empty() || src.width < dst.width || src.height > dst.height ||
        dst.width <= 2 * half) {
        return;
    }
    PrimFilterRow8uC1(src.data + half, src.width, dst.data + half, dst.width, dst.width - 2 * half,
                      src.height, taps, size, half, divisor);
}

void CGaussKernel1D::Release() {
    storage.reset();
    taps = nullptr;
    size = 0;
    divisor = 0;
}

void CGaussKernel1D::Swap(CGaussKernel1D& other) noexcept {
    std::swap(taps, other.taps);
    std::swap(size, other.size);
    std::swap(divisor, other.divisor);
    std::swap(storage, other.storage);
}
