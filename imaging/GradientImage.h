// The two gradients of a plane.
#ifndef SPECIALEFFECTS_IMAGING_GRADIENTIMAGE_H
#define SPECIALEFFECTS_IMAGING_GRADIENTIMAGE_H

#include <cstddef>
#include <cstdint>
#include <memory>

class CPlane8u;

/// Two planes of signed 16-bit values with packed rows (row step 2 * width bytes). Owns both; can be moved.
class CGradientImage {
  public:
    CGradientImage() = default;
    CGradientImage(CGradientImage&& other) noexcept { Swap(other); }
    CGradientImage& operator=(CGradientImage&& other) noexcept {
        CGradientImage taken(std::move(other));
        Swap(taken);
        return *this;
    }
    CGradientImage(const CGradientImage&) = delete;
    CGradientImage& operator=(const CGradientImage&) = delete;

    /// Both planes anew, zero-filled; what was there is released first. False, with everything released and
    /// zero, when the allocation fails, a size is below 1 or their product is above 2^30.
    [[nodiscard]] bool Allocate(int32_t imageWidth, int32_t imageHeight);
    void Release();
    void Swap(CGradientImage& other) noexcept;

    /// The 3 by 3 Sobel responses of `plane`: the row below minus the row above into `dx`, the left column
    /// minus the right one into `dy`. The outermost pixels stay as `Allocate` left them. Does nothing when
    /// `plane` is smaller than this in either direction, or this has no interior.
    void ComputeSobel(const CPlane8u& plane);

    int16_t* dx = nullptr;
    int16_t* dy = nullptr;
    int32_t width = 0;
    int32_t height = 0;

  private:
    std::unique_ptr<int16_t[]> storage;  // both planes, dx first
};

#endif
