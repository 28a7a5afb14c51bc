// Planes as models use them: packed rows by coordinates, and the few filters that many models take as given,
// as their definitions say.
#ifndef SPECIALEFFECTS_TESTS_SUPPORT_PLAINPLANE_H
#define SPECIALEFFECTS_TESTS_SUPPORT_PLAINPLANE_H

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/Plane8u.h"
#include "tests/imaging/models/GeometryModels.h"
#include "tests/support/TestFrame.h"

struct PlainPlane {
    PlainPlane() = default;
    PlainPlane(int w, int h, uint8_t value = 0)
        : width(w), height(h), pixels(static_cast<size_t>(std::max(w, 0) * std::max(h, 0)), value) {}
    PlainPlane(int w, int h, std::span<const uint8_t> bytes)
        : width(w), height(h), pixels(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(w) * h) {}

    uint8_t& operator()(int x, int y) { return pixels[static_cast<size_t>(y * width + x)]; }
    int operator()(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
    int At(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
    void WriteTo(std::span<uint8_t> bytes) const { std::copy(pixels.begin(), pixels.end(), bytes.begin()); }

    int width = 0, height = 0;
    std::vector<uint8_t> pixels;
};

inline PlainPlane LumaOf(TestFrame& frame) {
    return {frame.width(), frame.height(), frame.plane(0)};
}
inline PlainPlane ChromaOf(TestFrame& frame, int plane) {
    return {frame.width() / 2, frame.height() / 2, frame.plane(plane)};
}

/// 1 2 1 / 2 4 2 / 1 2 1 over 16, ties to even; the outermost pixels keep what `dst` has.
inline void PlainGauss3(const PlainPlane& src, PlainPlane& dst) {
    for (int y = 1; y < src.height - 1; ++y) {
        for (int x = 1; x < src.width - 1; ++x) {
            int sum = 0;
            for (int j = -1; j <= 1; ++j) {
                for (int i = -1; i <= 1; ++i) {
                    sum += (2 - std::abs(i)) * (2 - std::abs(j)) * src.At(x + i, y + j);
                }
            }
            dst(x, y) = static_cast<uint8_t>((sum + ((sum >> 4) & 1) + 7) >> 4);
        }
    }
}

/// The whole of `src` to the whole of `dst`, linearly.
inline void PlainResize(const PlainPlane& src, PlainPlane& dst) {
    if (src.pixels.empty() || dst.pixels.empty()) return;
    model::PrimResize8uC1(src.pixels.data(), src.width, src.height, src.width, 0, 0, src.width, src.height,
                          dst.pixels.data(), dst.width, dst.width, dst.height,
                          static_cast<double>(dst.width) / src.width,
                          static_cast<double>(dst.height) / src.height, 2);
}

/// Mean of size by size in place, over the interior; ties up. Nothing when the mask is not smaller than the
/// region. Column sums first, since masks can be large.
inline void PlainBox(PlainPlane& plane, int size) {
    const int r = size / 2, w = plane.width - 2 * r, h = plane.height - 2 * r;
    if (size >= w || size >= h) return;
    const PlainPlane src = plane;
    for (int y = r; y < r + h; ++y) {
        std::vector<int> columns(static_cast<size_t>(plane.width));
        for (int x = 0; x < plane.width; ++x) {
            for (int j = 0; j < size; ++j) columns[static_cast<size_t>(x)] += src.At(x, y - r + j);
        }
        for (int x = r; x < r + w; ++x) {
            int sum = 0;
            for (int i = 0; i < size; ++i) sum += columns[static_cast<size_t>(x - r + i)];
            plane(x, y) = static_cast<uint8_t>((sum + size * size / 2) / (size * size));
        }
    }
}

#endif
