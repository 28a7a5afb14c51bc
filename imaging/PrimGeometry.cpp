// Mirrors and replicated borders.
#include <algorithm>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRow.h"

namespace {

using prim::Row;

void FlipRows(uint8_t* data, int32_t step, int32_t width, int32_t height) {
    for (int32_t top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
        uint8_t* const a = Row(data, step, top);
        std::swap_ranges(a, a + width, Row(data, step, bottom));
    }
}

/// Swaps the `count` bytes from `left` on upwards with those from `right` on downwards. They do not overlap.
SE_INLINE void SwapReversed(uint8_t* SE_RESTRICT left, uint8_t* SE_RESTRICT right, ptrdiff_t count) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        const uint8_t byte = left[i];
        left[i] = right[-i];
        right[-i] = byte;
    }
}

void FlipColumns(uint8_t* data, int32_t step, int32_t width, int32_t height) {
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* const row = Row(data, step, y);
        AtLevel<SwapReversed>(row, row + width - 1, width / 2);
    }
}

void FlipBoth(uint8_t* data, int32_t step, int32_t width, int32_t height) {
    for (int32_t top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
        AtLevel<SwapReversed>(Row(data, step, top), Row(data, step, bottom) + width - 1, width);
    }
    if (height % 2 != 0) FlipColumns(Row(data, step, height / 2), step, width, 1);
}

/// Fills `left` bytes before and `right` bytes after the pixels row[0] to row[width - 1] with the nearest
/// pixel.
void ExtendRow(uint8_t* row, int32_t width, int32_t left, int32_t right) {
    std::memset(row - left, row[0], static_cast<size_t>(left));
    std::memset(row + width, row[width - 1], static_cast<size_t>(right));
}

/// Sizes of an inner rectangle in a full one; 64 bits wide, so that no sum overflows.
struct BorderSizes {
    int64_t innerWidth, innerHeight, fullWidth, fullHeight, top, left;

    PrimStatus Check() const {
        return innerWidth < 1 || innerHeight < 1 || top < 0 || left < 0 || fullWidth < innerWidth + left ||
                       fullHeight < innerHeight + top
                   ? kPrimSizeError
                   : kPrimOk;
    }
    int32_t Right() const { return static_cast<int32_t>(fullWidth - innerWidth - left); }
    int32_t Bottom() const { return static_cast<int32_t>(fullHeight - innerHeight - top); }
};

/// Fills the bands around the inner rectangle, whose first pixel is `inner`.
void FillBands(uint8_t* inner, int32_t step, int32_t innerWidth, int32_t innerHeight,
               const BorderSizes& sizes) {
    const auto left = static_cast<int32_t>(sizes.left);
    const auto fullWidth = static_cast<size_t>(sizes.fullWidth);
    for (int32_t y = 0; y < innerHeight; ++y) ExtendRow(Row(inner, step, y), innerWidth, left, sizes.Right());
    uint8_t* const first = inner - left;
    uint8_t* const last = Row(first, step, innerHeight - 1);
    for (int32_t y = 1; y <= sizes.top; ++y) std::memcpy(Row(first, step, -y), first, fullWidth);
    for (int32_t y = 1; y <= sizes.Bottom(); ++y) std::memcpy(Row(last, step, y), last, fullWidth);
}

}  // namespace

PrimStatus PrimMirror8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, int32_t axis) {
    const PrimStatus status = prim::CheckImage(data, step, width, height);
    if (status != kPrimOk) return status;
    switch (axis) {
        case kPrimMirrorRows:
            FlipRows(data, step, width, height);
            return kPrimOk;
        case kPrimMirrorColumns:
            FlipColumns(data, step, width, height);
            return kPrimOk;
        case kPrimMirrorBoth:
            FlipBoth(data, step, width, height);
            return kPrimOk;
        default:
            return kPrimAxisError;
    }
}

PrimStatus PrimCopyReplicateBorder8uC1(const uint8_t* src, int32_t srcStep, int32_t srcWidth,
                                       int32_t srcHeight, uint8_t* dst, int32_t dstStep, int32_t dstWidth,
                                       int32_t dstHeight, int32_t topBorder, int32_t leftBorder) {
    const BorderSizes sizes{srcWidth, srcHeight, dstWidth, dstHeight, topBorder, leftBorder};
    const PrimStatus status =
        prim::FirstError(prim::CheckPointers(src, dst), sizes.Check(), prim::CheckStep(srcStep, srcWidth),
                         prim::CheckStep(dstStep, dstWidth));
    if (status != kPrimOk) return status;
    uint8_t* const inner = Row(dst, dstStep, topBorder) + leftBorder;
    for (int32_t y = 0; y < srcHeight; ++y) {
        std::memcpy(Row(inner, dstStep, y), Row(src, srcStep, y), static_cast<size_t>(srcWidth));
    }
    FillBands(inner, dstStep, srcWidth, srcHeight, sizes);
    return kPrimOk;
}

PrimStatus PrimReplicateBorderInPlace8uC1(uint8_t* inner, int32_t step, int32_t innerWidth,
                                          int32_t innerHeight, int32_t fullWidth, int32_t fullHeight,
                                          int32_t topBorder, int32_t leftBorder) {
    const BorderSizes sizes{innerWidth, innerHeight, fullWidth, fullHeight, topBorder, leftBorder};
    const PrimStatus status =
        prim::FirstError(prim::CheckPointers(inner), sizes.Check(), prim::CheckStep(step, fullWidth));
    if (status != kPrimOk) return status;
    FillBands(inner, step, innerWidth, innerHeight, sizes);
    return kPrimOk;
}
