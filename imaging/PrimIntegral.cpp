// Integral images and the deviation of the pixels in a rectangle.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRow.h"
#include "imaging/PrimScan.h"

using prim::CheckAlignment;
using prim::CheckPointers;
using prim::CheckRect;
using prim::CheckSize;
using prim::CheckStep;
using prim::FirstError;
using prim::kSize;
using prim::Row;

namespace {

/// Squares of so many pixels sum to less than 2^31.
constexpr ptrdiff_t kSquares = 32768;

/// One row of the two tables, behind its first column: the row above plus the running sums of the pixels.
SE_INLINE void IntegralRow(const uint8_t* SE_RESTRICT src, const uint32_t* SE_RESTRICT sumAbove,
                           uint32_t* SE_RESTRICT sum, const double* SE_RESTRICT sqrAbove,
                           double* SE_RESTRICT sqr, ptrdiff_t width) {
    using Bytes = uint8_t __attribute__((vector_size(4)));
    using Signed = int32_t __attribute__((vector_size(16)));
    using Doubles = double __attribute__((vector_size(32)));
    prim::Lanes pixelSum = {};
    double squareSum = 0;
    ptrdiff_t x = 0;
    for (ptrdiff_t begin = 0; begin < width; begin += kSquares) {
        const ptrdiff_t end = std::min(begin + kSquares, width);
        prim::Lanes squares = {};
        const Doubles before = {squareSum, squareSum, squareSum, squareSum};
        for (; x + 4 <= end; x += 4) {
            Bytes bytes;
            std::memcpy(&bytes, src + x, sizeof(bytes));
            const auto pixels = __builtin_convertvector(bytes, prim::Lanes);
            const prim::Lanes sums = pixelSum + prim::Scan(pixels);
            squares += prim::Scan(pixels * pixels);
            prim::StoreLanes(sum + x, prim::LoadLanes(sumAbove + x) + sums);
            Doubles above;
            std::memcpy(&above, sqrAbove + x, sizeof(above));
            above += before + __builtin_convertvector(reinterpret_cast<const Signed&>(squares), Doubles);
            std::memcpy(sqr + x, &above, sizeof(above));
            pixelSum = prim::SpreadLast(sums);
            squares = prim::SpreadLast(squares);
        }
        squareSum += squares[0];
    }
    uint32_t pixels = pixelSum[0];
    for (; x < width; ++x) {
        pixels += src[x];
        squareSum += src[x] * src[x];
        sum[x] = sumAbove[x] + pixels;
        sqr[x] = sqrAbove[x] + squareSum;
    }
}

/// A rectangle that moves along a row of a table: sum over it when its left column is x.
template <typename T>
struct Corners {
    const T* top;
    const T* bottom;
    ptrdiff_t width;

    SE_INLINE T sum(ptrdiff_t x) const { return bottom[x + width] - bottom[x] - top[x + width] + top[x]; }
};

SE_INLINE void VarianceRow(Corners<uint32_t> sum, Corners<double> sqr, double area, float* SE_RESTRICT dst,
                           ptrdiff_t width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        const double mean = static_cast<int32_t>(sum.sum(x)) / area;
        const double variance = sqr.sum(x) / area - mean * mean;
        dst[x] = static_cast<float>(variance < 0.0 ? 0.0 : variance);
    }
}

}  // namespace

PrimStatus PrimSqrIntegral8u32s64f(const uint8_t* src, int32_t srcStep, int32_t* sum, int32_t sumStep,
                                   double* sqr, int32_t sqrStep, int32_t width, int32_t height, int32_t val,
                                   double valSqr) {
    // The tables have a column more than the picture; of a picture as wide as numbers go they cannot.
    const int32_t tableWidth = width < INT32_MAX ? width + 1 : width;
    if (const PrimStatus status = FirstError(
            CheckPointers(src, sum), CheckPointers(sqr), CheckSize(width, height), CheckStep(srcStep, width),
            CheckStep(sumStep, tableWidth, kSize<int32_t>), CheckStep(sqrStep, tableWidth, kSize<double>),
            CheckAlignment(sumStep, kSize<int32_t>), CheckAlignment(sqrStep, kSize<double>))) {
        return status;
    }
    std::fill_n(sum, ptrdiff_t{width} + 1, val);
    std::fill_n(sqr, ptrdiff_t{width} + 1, valSqr);
    auto* const wrapping = reinterpret_cast<uint32_t*>(sum);
    for (ptrdiff_t y = 0; y < height; ++y) {
        uint32_t* const sumRow = Row(wrapping, sumStep, y + 1);
        double* const sqrRow = Row(sqr, sqrStep, y + 1);
        sumRow[0] = static_cast<uint32_t>(val);
        sqrRow[0] = valSqr;
        AtLevel<IntegralRow>(Row(src, srcStep, y), Row(wrapping, sumStep, y) + 1, sumRow + 1,
                             Row(sqr, sqrStep, y) + 1, sqrRow + 1, width);
    }
    return kPrimOk;
}

PrimStatus PrimRectStdDev32s32f(const int32_t* sum, int32_t sumStep, const double* sqr, int32_t sqrStep,
                                float* dst, int32_t dstStep, int32_t width, int32_t height, int32_t rectX,
                                int32_t rectY, int32_t rectWidth, int32_t rectHeight) {
    if (const PrimStatus status =
            FirstError(CheckPointers(sum), CheckPointers(sqr), CheckPointers(dst), CheckSize(width, height),
                       CheckStep(sumStep, width, kSize<int32_t>), CheckStep(sqrStep, width, kSize<double>),
                       CheckStep(dstStep, width, kSize<float>), CheckAlignment(sumStep, kSize<int32_t>),
                       CheckAlignment(sqrStep, kSize<double>), CheckAlignment(dstStep, kSize<float>),
                       CheckRect({rectX, rectY, rectWidth, rectHeight}))) {
        return status;
    }
    const double area = static_cast<double>(rectWidth) * rectHeight;
    const auto* const wrapping = reinterpret_cast<const uint32_t*>(sum);
    for (ptrdiff_t y = 0; y < height; ++y) {
        const ptrdiff_t top = y + rectY;
        const ptrdiff_t bottom = top + rectHeight;
        float* const out = Row(dst, dstStep, y);
        AtLevel<VarianceRow>(
            {Row(wrapping, sumStep, top) + rectX, Row(wrapping, sumStep, bottom) + rectX, rectWidth},
            {Row(sqr, sqrStep, top) + rectX, Row(sqr, sqrStep, bottom) + rectX, rectWidth}, area, out, width);
        std::transform(out, out + width, out, [](float variance) { return std::sqrt(variance); });
    }
    return kPrimOk;
}
