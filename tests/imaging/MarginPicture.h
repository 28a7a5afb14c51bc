// A picture of any pixel type with a margin, for the tests of the filters.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_MARGINPICTURE_H
#define SPECIALEFFECTS_TESTS_IMAGING_MARGINPICTURE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/support/TestFrame.h"

/// A picture with room for masks around its region.
template <typename T>
class Picture {
  public:
    Picture(int32_t width, int32_t height, int32_t margin, T value = {})
        : width_(width),
          height_(height),
          margin_(margin),
          stride_(width + 2 * margin),
          pixels_(static_cast<size_t>(stride_) * static_cast<size_t>(height + 2 * margin), value) {}

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    int32_t step() const { return stride_ * static_cast<int32_t>(sizeof(T)); }
    T* data() { return &at(0, 0); }
    T& at(int32_t x, int32_t y) {
        return pixels_[static_cast<size_t>(y + margin_) * static_cast<size_t>(stride_) +
                       static_cast<size_t>(x + margin_)];
    }
    std::vector<T>& pixels() { return pixels_; }
    bool operator==(const Picture&) const = default;

  private:
    int32_t width_;
    int32_t height_;
    int32_t margin_;
    int32_t stride_;
    std::vector<T> pixels_;
};

inline Picture<uint8_t> RandomPicture(int32_t width, int32_t height, int32_t margin, uint64_t seed) {
    Picture<uint8_t> picture(width, height, margin);
    TestRandom random(seed);
    std::ranges::generate(picture.pixels(), [&] { return random.Byte(); });
    return picture;
}

#endif
