// 3 by 3 dilation and erosion.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "imaging/Morphology.h"
#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimMask.h"
#include "imaging/PrimRow.h"

using prim::CheckPointers;
using prim::CheckSize;
using prim::FirstError;
using prim::Row;

namespace {

SE_INLINE uint8_t Min(uint8_t a, uint8_t b) {
    return a < b ? a : b;
}

SE_INLINE uint8_t Max(uint8_t a, uint8_t b) {
    return a < b ? b : a;
}

PrimStatus CheckMorphologyStep(int32_t step, int32_t width) {
    return step < 1 ? kPrimStepError : step < int64_t{width} + 2 ? kPrimMorphologyStepError : kPrimOk;
}

SE_INLINE void Erode(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                     ptrdiff_t height) {
    prim::FilterSeparable<uint8_t, 1>(
        src, srcStep, dst, dstStep, width, height, prim::Surround::kAsMaskReaches,
        [](uint8_t a, uint8_t b, uint8_t c) { return Min(a, Min(b, c)); },
        [](const uint8_t* line) { return Min(line[0], Min(line[1], line[2])); });
}

SE_INLINE void DilateInto(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                          ptrdiff_t width, ptrdiff_t height) {
    prim::FilterSeparable<uint8_t, 1>(
        src, srcStep, dst, dstStep, width, height, prim::Surround::kAsMaskReaches,
        [](uint8_t a, uint8_t b, uint8_t c) { return Max(a, Max(b, c)); },
        [](const uint8_t* line) { return Max(line[0], Max(line[1], line[2])); });
}

/// A ring of three lines holds the maxima along the rows above, at and below y. The row below is still
/// unfiltered when it enters the ring.
SE_INLINE void Dilate(uint8_t* data, ptrdiff_t step, ptrdiff_t width, ptrdiff_t height,
                      std::array<uint8_t*, 3> ring) {
    const auto enter = [&](ptrdiff_t y) {
        const uint8_t* const from = Row(data, step, y) - 1;
        uint8_t* SE_RESTRICT const line = ring[static_cast<size_t>((y + 1) % 3)];
        for (ptrdiff_t x = 0; x < width; ++x) {
            line[x] = Max(from[x], Max(from[x + 1], from[x + 2]));
        }
    };
    enter(-1);
    enter(0);
    for (ptrdiff_t y = 0; y < height; ++y) {
        enter(y + 1);
        uint8_t* SE_RESTRICT const out = Row(data, step, y);
        for (ptrdiff_t x = 0; x < width; ++x) {
            out[x] = Max(ring[0][x], Max(ring[1][x], ring[2][x]));
        }
    }
}

}  // namespace

void prim::Dilate3x3(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                     ptrdiff_t height) {
    AtLevel<DilateInto>(src, srcStep, dst, dstStep, width, height);
}

PrimStatus PrimErode3x38uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                            int32_t height) {
    if (const PrimStatus status =
            FirstError(CheckPointers(src, dst), CheckSize(width, height),
                       srcStep < 1 || dstStep < 1 ? kPrimStepError : kPrimOk,
                       CheckMorphologyStep(srcStep, width), CheckMorphologyStep(dstStep, width))) {
        return status;
    }
    AtLevel<Erode>(src, srcStep, dst, dstStep, width, height);
    return kPrimOk;
}

PrimStatus PrimDilate3x38uC1(uint8_t* data, int32_t step, int32_t width, int32_t height) {
    if (const PrimStatus status =
            FirstError(CheckPointers(data), CheckSize(width, height), CheckMorphologyStep(step, width))) {
        return status;
    }
    const auto line = static_cast<size_t>(width);
    const std::unique_ptr<uint8_t[]> lines(new (std::nothrow) uint8_t[3 * line]);
    if (!lines) {
        return kPrimMemoryError;
    }
    AtLevel<Dilate>(data, step, width, height, {lines.get(), lines.get() + line, lines.get() + 2 * line});
    return kPrimOk;
}
