// The fixed smoothing masks, Gauss and lowpass. All sums are of 16 bits.
#include <cstddef>
#include <cstdint>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimDivide.h"
#include "imaging/PrimMask.h"
#include "imaging/PrimRow.h"

using prim::CheckImages;
using prim::CheckMask;
using prim::FilterSeparable;
using prim::FirstError;
using prim::kStrip;
using prim::Row;
using prim::Surround;

namespace {

SE_INLINE uint16_t U16(int v) {
    return static_cast<uint16_t>(v);
}

SE_INLINE void Gauss3x3(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                        ptrdiff_t width, ptrdiff_t height) {
    FilterSeparable<uint16_t, 1>(
        src, srcStep, dst, dstStep, width, height, Surround::kAsMaskReaches,
        [](int a, int b, int c) { return a + 2 * b + c; },
        [](const uint16_t* line) {
            const uint16_t s = U16(line[0] + 2 * line[1] + line[2]);
            return (s + ((s >> 4) & 1) + 7) >> 4;
        });
}

SE_INLINE void Lowpass3x3(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                          ptrdiff_t width, ptrdiff_t height) {
    FilterSeparable<uint16_t, 1>(
        src, srcStep, dst, dstStep, width, height, Surround::kAsMaskReaches,
        [](int a, int b, int c) { return a + b + c; },
        [](const uint16_t* line) { return prim::NinthOf(U16(line[0] + line[1] + line[2] + 5)); });
}

/// The sums down the columns run on from row to row.
SE_INLINE void Lowpass5x5(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                          ptrdiff_t width, ptrdiff_t height) {
    for (const auto [begin, end] : prim::Strips(width)) {
        const ptrdiff_t count = end - begin;
        uint16_t line[kStrip + 4];
        uint16_t pairs[kStrip + 2];
        for (ptrdiff_t y = 0; y < height; ++y) {
            const uint8_t* const p = Row(src, srcStep, y - 2) + begin - 2;
            if (y == 0) {
                for (ptrdiff_t x = 0; x < count + 4; ++x) {
                    line[x] = U16(p[x] + p[x + srcStep] + p[x + 2 * srcStep] + p[x + 3 * srcStep] +
                                  p[x + 4 * srcStep]);
                }
            } else {
                const uint8_t* const entering = p + 4 * srcStep;
                const uint8_t* const leaving = p - srcStep;
                for (ptrdiff_t x = 0; x < count + 4; ++x) {
                    line[x] = U16(line[x] + entering[x] - leaving[x]);
                }
            }
            for (ptrdiff_t x = 0; x < count + 2; ++x) {
                pairs[x] = U16(line[x] + line[x + 1]);
            }
            uint8_t* const out = Row(dst, dstStep, y) + begin;
            for (ptrdiff_t x = 0; x < count; ++x) {
                const uint16_t sum = U16(pairs[x] + pairs[x + 2] + line[x + 4]);
                out[x] = static_cast<uint8_t>(prim::TwentyFifthOf(U16(sum + 13)));
            }
        }
    }
}

/// The mask does not separate, but it is symmetric: three sums down each column serve the five places that
/// the column has in a mask. Each fits 16 bits; their total does not, and ((s + 286) * 29382) >> 24, which is
/// (s + 285) / 571, is found from parts of it.
SE_INLINE void Gauss5x5(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                        ptrdiff_t width, ptrdiff_t height) {
    for (const auto [begin, end] : prim::Strips(width)) {
        const ptrdiff_t count = end - begin;
        uint16_t outer[kStrip + 4];
        uint16_t inner[kStrip + 4];
        uint16_t centre[kStrip + 4];
        for (ptrdiff_t y = 0; y < height; ++y) {
            const uint8_t* const p = Row(src, srcStep, y - 2) + begin - 2;
            for (ptrdiff_t x = 0; x < count + 4; ++x) {
                const uint16_t far = U16(p[x] + p[x + 4 * srcStep]);
                const uint16_t near = U16(p[x + srcStep] + p[x + 3 * srcStep]);
                const uint16_t at = p[x + 2 * srcStep];
                outer[x] = U16(2 * far + 7 * near + 12 * at);
                inner[x] = U16(7 * far + 31 * near + 52 * at);
                centre[x] = U16(12 * far + 52 * near + 127 * at);
            }
            uint8_t* const out = Row(dst, dstStep, y) + begin;
            for (ptrdiff_t x = 0; x < count; ++x) {
                const uint16_t a = U16(outer[x] + outer[x + 4] + 285);
                const uint16_t b = U16(inner[x + 1] + inner[x + 3]);
                const uint16_t c = centre[x + 2];
                out[x] =
                    static_cast<uint8_t>(prim::By571(U16(a + b + c), U16((a >> 2) + (b >> 2) + (c >> 2))));
            }
        }
    }
}

}  // namespace

PrimStatus PrimFilterGauss8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                               int32_t width, int32_t height, int32_t mask) {
    if (const PrimStatus status =
            FirstError(CheckImages(src, srcStep, dst, dstStep, width, height), CheckMask(mask))) {
        return status;
    }
    (mask == kPrimMask3x3 ? AtLevel<Gauss3x3> : AtLevel<Gauss5x5>)(src, srcStep, dst, dstStep, width, height);
    return kPrimOk;
}

PrimStatus PrimFilterLowpass8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                 int32_t width, int32_t height, int32_t mask) {
    if (const PrimStatus status =
            FirstError(CheckImages(src, srcStep, dst, dstStep, width, height), CheckMask(mask))) {
        return status;
    }
    (mask == kPrimMask3x3 ? AtLevel<Lowpass3x3> : AtLevel<Lowpass5x5>)(src, srcStep, dst, dstStep, width,
                                                                       height);
    return kPrimOk;
}
