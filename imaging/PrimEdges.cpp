// Edge operators: Sobel and Scharr, of the interior and with a replicated border.
#include <cstddef>
#include <cstdint>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimMask.h"

using prim::CheckAlignment;
using prim::CheckMask;
using prim::CheckPointers;
using prim::CheckSize;
using prim::CheckStep;
using prim::FilterSeparable;
using prim::FirstError;
using prim::Surround;

namespace {

using Operator = void (*)(const uint8_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep,
                          ptrdiff_t width, ptrdiff_t height, Surround surround);

SE_INLINE void SobelHoriz3x3(const uint8_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep,
                             ptrdiff_t width, ptrdiff_t height, Surround surround) {
    FilterSeparable<int16_t, 1>(
        src, srcStep, dst, dstStep, width, height, surround, [](int a, int, int c) { return c - a; },
        [](const int16_t* line) { return line[0] + 2 * line[1] + line[2]; });
}

SE_INLINE void SobelVert3x3(const uint8_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep,
                            ptrdiff_t width, ptrdiff_t height, Surround surround) {
    FilterSeparable<int16_t, 1>(
        src, srcStep, dst, dstStep, width, height, surround,
        [](int a, int b, int c) { return a + 2 * b + c; },
        [](const int16_t* line) { return line[0] - line[2]; });
}

SE_INLINE void SobelHoriz5x5(const uint8_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep,
                             ptrdiff_t width, ptrdiff_t height, Surround surround) {
    FilterSeparable<int16_t, 2>(
        src, srcStep, dst, dstStep, width, height, surround,
        [](int a, int b, int, int d, int e) { return e - a + 2 * (d - b); },
        [](const int16_t* line) { return line[0] + line[4] + 4 * (line[1] + line[3]) + 6 * line[2]; });
}

SE_INLINE void SobelVert5x5(const uint8_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep,
                            ptrdiff_t width, ptrdiff_t height, Surround surround) {
    FilterSeparable<int16_t, 2>(
        src, srcStep, dst, dstStep, width, height, surround,
        [](int a, int b, int c, int d, int e) { return a + e + 4 * (b + d) + 6 * c; },
        [](const int16_t* line) { return line[0] - line[4] + 2 * (line[1] - line[3]); });
}

SE_INLINE void ScharrHoriz3x3(const uint8_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep,
                              ptrdiff_t width, ptrdiff_t height, Surround surround) {
    FilterSeparable<int16_t, 1>(
        src, srcStep, dst, dstStep, width, height, surround, [](int a, int, int c) { return c - a; },
        [](const int16_t* line) { return 3 * (line[0] + line[2]) + 10 * line[1]; });
}

SE_INLINE void ScharrVert3x3(const uint8_t* src, ptrdiff_t srcStep, int16_t* dst, ptrdiff_t dstStep,
                             ptrdiff_t width, ptrdiff_t height, Surround surround) {
    FilterSeparable<int16_t, 1>(
        src, srcStep, dst, dstStep, width, height, surround,
        [](int a, int b, int c) { return 3 * (a + c) + 10 * b; },
        [](const int16_t* line) { return line[0] - line[2]; });
}

PrimStatus CheckGradient(const uint8_t* src, int32_t srcStep, const int16_t* dst, int32_t dstStep,
                         int32_t width, int32_t height) {
    return FirstError(CheckPointers(src, dst), CheckSize(width, height), CheckStep(srcStep, width),
                      CheckStep(dstStep, width, 2), CheckAlignment(dstStep, 2));
}

PrimStatus Sobel(Operator operator3x3, Operator operator5x5, const uint8_t* src, int32_t srcStep,
                 int16_t* dst, int32_t dstStep, int32_t width, int32_t height, int32_t mask,
                 Surround surround) {
    if (const PrimStatus status =
            FirstError(CheckGradient(src, srcStep, dst, dstStep, width, height), CheckMask(mask))) {
        return status;
    }
    (mask == kPrimMask3x3 ? operator3x3 : operator5x5)(src, srcStep, dst, dstStep, width, height, surround);
    return kPrimOk;
}

PrimStatus Scharr(Operator operator3x3, const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                  int32_t width, int32_t height) {
    if (const PrimStatus status = CheckGradient(src, srcStep, dst, dstStep, width, height)) {
        return status;
    }
    operator3x3(src, srcStep, dst, dstStep, width, height, Surround::kNone);
    return kPrimOk;
}

/// The operators keep their lines on the stack, so one byte is enough.
PrimStatus BufferSize(int32_t width, int32_t height, PrimStatus maskStatus, int32_t* size) {
    if (const PrimStatus status = FirstError(CheckPointers(size), CheckSize(width, height), maskStatus)) {
        return status;
    }
    *size = 1;
    return kPrimOk;
}

}  // namespace

PrimStatus PrimFilterSobelHoriz8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t mask) {
    return Sobel(AtLevel<SobelHoriz3x3>, AtLevel<SobelHoriz5x5>, src, srcStep, dst, dstStep, width, height,
                 mask, Surround::kAsMaskReaches);
}

PrimStatus PrimFilterSobelVert8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                    int32_t width, int32_t height, int32_t mask) {
    return Sobel(AtLevel<SobelVert3x3>, AtLevel<SobelVert5x5>, src, srcStep, dst, dstStep, width, height,
                 mask, Surround::kAsMaskReaches);
}

PrimStatus PrimSobelHorizBorderGetBufferSize(int32_t width, int32_t height, int32_t mask, int32_t* size) {
    return BufferSize(width, height, CheckMask(mask), size);
}

PrimStatus PrimSobelVertBorderGetBufferSize(int32_t width, int32_t height, int32_t mask, int32_t* size) {
    return BufferSize(width, height, CheckMask(mask), size);
}

PrimStatus PrimScharrHorizBorderGetBufferSize(int32_t width, int32_t height, int32_t* size) {
    return BufferSize(width, height, kPrimOk, size);
}

PrimStatus PrimScharrVertBorderGetBufferSize(int32_t width, int32_t height, int32_t* size) {
    return BufferSize(width, height, kPrimOk, size);
}

PrimStatus PrimSobelHorizBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t mask, int32_t /*borderType*/,
                                     uint8_t /*borderValue*/, uint8_t* buffer) {
    if (const PrimStatus status = CheckPointers(buffer)) {
        return status;
    }
    return Sobel(AtLevel<SobelHoriz3x3>, AtLevel<SobelHoriz5x5>, src, srcStep, dst, dstStep, width, height,
                 mask, Surround::kNone);
}

PrimStatus PrimSobelVertBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                    int32_t width, int32_t height, int32_t mask, int32_t /*borderType*/,
                                    uint8_t /*borderValue*/, uint8_t* buffer) {
    if (const PrimStatus status = CheckPointers(buffer)) {
        return status;
    }
    return Sobel(AtLevel<SobelVert3x3>, AtLevel<SobelVert5x5>, src, srcStep, dst, dstStep, width, height,
                 mask, Surround::kNone);
}

PrimStatus PrimScharrHorizBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                      int32_t width, int32_t height, int32_t /*borderType*/,
                                      uint8_t /*borderValue*/, uint8_t* buffer) {
    if (const PrimStatus status = CheckPointers(buffer)) {
        return status;
    }
    return Scharr(AtLevel<ScharrHoriz3x3>, src, srcStep, dst, dstStep, width, height);
}

PrimStatus PrimScharrVertBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t /*borderType*/,
                                     uint8_t /*borderValue*/, uint8_t* buffer) {
    if (const PrimStatus status = CheckPointers(buffer)) {
        return status;
    }
    return Scharr(AtLevel<ScharrVert3x3>, src, srcStep, dst, dstStep, width, height);
}
