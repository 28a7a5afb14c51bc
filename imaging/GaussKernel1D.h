// A one-dimensional Gaussian in integers, applied along columns or rows.
#ifndef SPECIALEFFECTS_IMAGING_GAUSSKERNEL1D_H
#define SPECIALEFFECTS_IMAGING_GAUSSKERNEL1D_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "imaging/Plane8u.h"

/// Owns its taps; can be moved.
class CGaussKernel1D {
  public:
    CGaussKernel1D() = default;
    CGaussKernel1D(CGaussKernel1D&& other) noexcept { Swap(other); }
    CGaussKernel1D& operator=(CGaussKernel1D&& other) noexcept {
        CGaussKernel1D taken(std::move(other));
        Swap(taken);
        return *this;
    }
    CGaussKernel1D(const CGaussKernel1D&) = delete;
    CGaussKernel1D& operator=(const CGaussKernel1D&) = delete;

    /// Makes a kernel of standard deviation `sigma` whose outermost tap is about 2. `kernelSize` 0 stands for
    /// sigma * 6 + 1, truncated and made odd; any other size is used as it is, even when even. What was there
    /// is released first. False, with an empty kernel, where there is no such kernel: a sigma not above 0, a
    /// size below 0 or above 32767, a divisor or a tap beyond 32 bits. A bell so narrow that its divisor is 0
    /// filters nothing.
    [[nodiscard]] bool Build(double sigma, int32_t kernelSize);

    /// Filters along the columns (rows) with the kernel's middle on each pixel. The size/2 pixels of `dst` at
    /// either end are not reached: they stay as they are or, in two planes of one size, are copied. Made for
    /// two different planes of one size; a `dst` for which `src` lacks pixels, or that has no room for the
    /// result, is left alone. The empty kernel does nothing, or copies all.
    void FilterColumns(const CPlane8u& src, CPlane8u& dst, FilterRing ends = FilterRing::kKept) const;
    void FilterRows(const CPlane8u& src, CPlane8u& dst, FilterRing ends = FilterRing::kKept) const;

    void Release();
    void Swap(CGaussKernel1D& other) noexcept;

    int32_t* taps = nullptr;
    int32_t size = 0;
    int32_t divisor = 0;

  private:
    std::unique_ptr<int32_t[]> storage;  // what `taps` points to
};

#endif
