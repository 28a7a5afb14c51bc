// Plane operations of the tone effects' models, built on the plain models of the primitives.
#ifndef SPECIALEFFECTS_TESTS_EFFECTS_TONE_TONEMODELS_H
#define SPECIALEFFECTS_TESTS_EFFECTS_TONE_TONEMODELS_H

#include <cstddef>

#include "tests/imaging/models/GeometryModels.h"
#include "tests/imaging/models/NeighbourhoodModels.h"
#include "tests/support/PlainPlane.h"

/// `src` without its outermost `cut` pixels, scaled to the whole of `dst`; nothing where none are left.
inline void ModelResize(const PlainPlane& src, int cut, PlainPlane& dst) {
    const int w = src.width - 2 * cut, h = src.height - 2 * cut;
    if (w < 1 || h < 1 || dst.pixels.empty()) return;
    model::PrimResize8uC1(src.pixels.data(), src.width, src.height, src.width, cut, cut, w, h,
                          dst.pixels.data(), dst.width, dst.width, dst.height, double{1} * dst.width / w,
                          double{1} * dst.height / h, kPrimLinear);
}

/// A mask of 5 by 5 over `src`; two pixels at each edge keep what they were.
template <class Filter>
PlainPlane Masked5(const PlainPlane& src, Filter filter) {
    PlainPlane dst = src;
    if (src.width > 4 && src.height > 4) {
        const auto first = static_cast<size_t>(2 * src.width + 2);
        filter(&src.pixels[first], src.width, &dst.pixels[first], src.width, src.width - 4, src.height - 4,
               kPrimMask5x5);
    }
    return dst;
}

#endif
