// Integral images and the deviation of rectangles.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/StatusOrder.h"
#include "tests/support/TestFrame.h"

namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();

size_t Area(int32_t width, int32_t height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

// ---- integral images -------------------------------------------------------------------------------------

struct IntegralArguments {
    const uint8_t* src;
    int32_t srcStep = 8;
    int32_t* sum;
    int32_t sumStep = 40;
    double* sqr;
    int32_t sqrStep = 80;
    int32_t width = 8;
    int32_t height = 4;
};

TEST(SqrIntegral, Statuses) {
    std::vector<uint8_t> src(32, 3);
    std::vector<int32_t> sum(60, 9);
    std::vector<double> sqr(60, 9);
    const auto sumBefore = sum;
    const auto sqrBefore = sqr;
    using A = IntegralArguments;
    ExpectStatusesInOrder<A>(
        {.src = src.data(), .sum = sum.data(), .sqr = sqr.data()},
        [](const A& a) {
            return PrimSqrIntegral8u32s64f(a.src, a.srcStep, a.sum, a.sumStep, a.sqr, a.sqrStep, a.width,
                                           a.height, 0, 0);
        },
        {{"null source", kPrimNullError, [](A& a) { a.src = nullptr; }},
         {"null sums", kPrimNullError, [](A& a) { a.sum = nullptr; }},
         {"null squares", kPrimNullError, [](A& a) { a.sqr = nullptr; }},
         {"width 0", kPrimSizeError, [](A& a) { a.width = 0; }},
         {"height 0", kPrimSizeError, [](A& a) { a.height = 0; }},
         {"width past all steps", kPrimStepError, [](A& a) { a.width = kMost; }},
         {"source step", kPrimStepError, [](A& a) { a.srcStep = 7; }},
         {"sum step", kPrimStepError, [](A& a) { a.sumStep = 32; }},
         {"square step", kPrimStepError, [](A& a) { a.sqrStep = 64; }},
         {"misaligned sum step", kPrimAlignmentError, [](A& a) { a.sumStep = 42; }},
         {"misaligned square step", kPrimAlignmentError, [](A& a) { a.sqrStep = 76; }}},
        [&] { return sum != sumBefore || sqr != sqrBefore; });
}

TEST(SqrIntegral, LongRowsOfWhite) {
    // The squares of a row pass 32 bits.
    constexpr int32_t kWidth = 70001;
    const std::vector<uint8_t> src(2 * kWidth, 255);
    std::vector<int32_t> sum(3 * (kWidth + 1));
    std::vector<double> sqr(3 * (kWidth + 1));
    ASSERT_EQ(PrimSqrIntegral8u32s64f(src.data(), kWidth, sum.data(), 4 * (kWidth + 1), sqr.data(),
                                      8 * (kWidth + 1), kWidth, 2, -5, 0.5),
              kPrimOk);
    for (int32_t y = 0; y <= 2; ++y) {
        for (int32_t x = 0; x <= kWidth; ++x) {
            const size_t entry = Area(kWidth + 1, y) + static_cast<size_t>(x);
            ASSERT_EQ(sum[entry], -5 + 255 * x * y) << x << ' ' << y;
            ASSERT_EQ(sqr[entry], 0.5 + 65025.0 * x * y) << x << ' ' << y;
        }
    }
}

// ---- deviation -------------------------------------------------------------------------------------------

struct DeviationArguments {
    const int32_t* sum;
    int32_t sumStep = 40;
    const double* sqr;
    int32_t sqrStep = 80;
    float* dst;
    int32_t dstStep = 24;
    int32_t width = 6;
    int32_t height = 3;
    int32_t rectX = 1;
    int32_t rectY = 1;
    int32_t rectWidth = 2;
    int32_t rectHeight = 1;
};

TEST(RectStdDev, Statuses) {
    const std::vector<int32_t> sum(60, 1);
    const std::vector<double> sqr(60, 1);
    std::vector<float> dst(18, 7);
    const auto before = dst;
    using A = DeviationArguments;
    ExpectStatusesInOrder<A>(
        {.sum = sum.data(), .sqr = sqr.data(), .dst = dst.data()},
        [](const A& a) {
            return PrimRectStdDev32s32f(a.sum, a.sumStep, a.sqr, a.sqrStep, a.dst, a.dstStep, a.width,
                                        a.height, a.rectX, a.rectY, a.rectWidth, a.rectHeight);
        },
        {{"null sums", kPrimNullError, [](A& a) { a.sum = nullptr; }},
         {"null squares", kPrimNullError, [](A& a) { a.sqr = nullptr; }},
         {"null destination", kPrimNullError, [](A& a) { a.dst = nullptr; }},
         {"width 0", kPrimSizeError, [](A& a) { a.width = 0; }},
         {"height 0", kPrimSizeError, [](A& a) { a.height = kLeast; }},
         {"sum step", kPrimStepError, [](A& a) { a.sumStep = 23; }},
         {"square step", kPrimStepError, [](A& a) { a.sqrStep = 47; }},
         {"destination step", kPrimStepError, [](A& a) { a.dstStep = 23; }},
         {"misaligned sum step", kPrimAlignmentError, [](A& a) { a.sumStep = 41; }},
         {"misaligned square step", kPrimAlignmentError, [](A& a) { a.sqrStep = 84; }},
         {"misaligned destination step", kPrimAlignmentError, [](A& a) { a.dstStep = 26; }},
         {"negative corner", kPrimSizeError, [](A& a) { a.rectX = -1; }},
         {"rectangle of no width", kPrimSizeError, [](A& a) { a.rectWidth = 0; }},
         {"rectangle of no height", kPrimSizeError, [](A& a) { a.rectHeight = 0; }},
         {"rectangle past all numbers", kPrimSizeError, [](A& a) { a.rectY = kMost; }}},
        [&] { return dst != before; });
}

TEST(RectStdDev, OfPixels) {
    // Against the deviation taken from the pixels themselves.
    constexpr int32_t kSide = 30;
    TestRandom random(5);
    std::vector<uint8_t> src(kSide * kSide);
    std::ranges::generate(src, [&] { return random.Byte(); });
    std::vector<int32_t> sum((kSide + 1) * (kSide + 1));
    std::vector<double> sqr((kSide + 1) * (kSide + 1));
    PrimSqrIntegral8u32s64f(src.data(), kSide, sum.data(), 4 * (kSide + 1), sqr.data(), 8 * (kSide + 1),
                            kSide, kSide, kMost, 0);
    std::vector<float> deviation(20 * 20);
    ASSERT_EQ(PrimRectStdDev32s32f(sum.data(), 4 * (kSide + 1), sqr.data(), 8 * (kSide + 1), deviation.data(),
                                   80, 20, 20, 2, 1, 8, 9),
              kPrimOk);
    for (int32_t y = 0; y < 20; ++y) {
        for (int32_t x = 0; x < 20; ++x) {
            double s = 0;
            double q = 0;
            for (int32_t row = y + 1; row < y + 10; ++row) {
                for (int32_t column = x + 2; column < x + 10; ++column) {
                    const double pixel = src[static_cast<size_t>(row * kSide + column)];
                    s += pixel;
                    q += pixel * pixel;
                }
            }
            const double variance = q / 72 - (s / 72) * (s / 72);
            ASSERT_EQ(deviation[static_cast<size_t>(y * 20 + x)], std::sqrt(static_cast<float>(variance)));
        }
    }
}

TEST(RectStdDev, OfAFlatPictureIsNothing) {
    const std::vector<uint8_t> src(64, 251);
    std::vector<int32_t> sum(81);
    std::vector<double> sqr(81);
    PrimSqrIntegral8u32s64f(src.data(), 8, sum.data(), 36, sqr.data(), 72, 8, 8, -16777216, 0);
    std::vector<float> deviation(36, 5);
    PrimRectStdDev32s32f(sum.data(), 36, sqr.data(), 72, deviation.data(), 24, 6, 6, 0, 0, 3, 3);
    EXPECT_EQ(deviation, std::vector<float>(36, 0.0f));
}

}  // namespace
