// Planes as the models of the tone effects use them, on the plain models of the primitives.
#ifndef SPECIALEFFECTS_TESTS_EFFECTS_TONE_TONEMODELS_H
#define SPECIALEFFECTS_TESTS_EFFECTS_TONE_TONEMODELS_H

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "tests/imaging/models/GeometryModels.h"
#include "tests/imaging/models/NeighbourhoodModels.h"

/// Packed rows of bytes.
struct ModelPlane {
    ModelPlane(int w, int h, uint8_t value = 0)
        : width(w), height(h), pixels(static_cast<size_t>(w * h), value) {}
    ModelPlane(int w, int h, std::span<const uint8_t> bytes)
        : width(w), height(h), pixels(bytes.begin(), bytes.end()) {}

    uint8_t& operator()(int x, int y) { return pixels[static_cast<size_t>(y * width + x)]; }
    uint8_t operator()(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }

    void CopyTo(std::span<uint8_t> bytes) const { std::copy(pixels.begin(), pixels.end(), bytes.begin()); }

    int width, height;
    std::vector<uint8_t> pixels;
};

/// `src` without its outermost `cut` pixels, scaled to the whole of `dst`; nothing where none are left.
inline void ModelResize(const ModelPlane& src, int cut, ModelPlane& dst) {
    const int w = src.width - 2 * cut, h = src.height - 2 * cut;
    if (w < 1 || h < 1 || dst.pixels.empty()) return;
    model::PrimResize8uC1(src.pixels.data(), src.width, src.height, src.width, cut, cut, w, h,
                          dst.pixels.data(), dst.width, dst.width, dst.height, double{1} * dst.width / w,
                          double{1} * dst.height / h, kPrimLinear);
}

/// A mask of 5 by 5 over `src`; two pixels at each edge keep what they were.
template <class Filter>
ModelPlane Masked5(const ModelPlane& src, Filter filter) {
    ModelPlane dst = src;
    if (src.width > 4 && src.height > 4) {
        const auto first = static_cast<size_t>(2 * src.width + 2);
        filter(&src.pixels[first], src.width, &dst.pixels[first], src.width, src.width - 4, src.height - 4,
               kPrimMask5x5);
    }
    return dst;
}

#endif
