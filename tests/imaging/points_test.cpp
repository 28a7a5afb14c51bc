// The point operations: edge cases, and all inputs where there are few enough to try them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include "imaging/Lookup.h"
#include "imaging/Prim.h"
#include "tests/imaging/models/PointModels.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int32_t kAllScales[] = {std::numeric_limits<int32_t>::min(),
                                  -100,
                                  -9,
                                  -8,
                                  -7,
                                  -6,
                                  -5,
                                  -4,
                                  -3,
                                  -2,
                                  -1,
                                  0,
                                  1,
                                  2,
                                  3,
                                  4,
                                  5,
                                  6,
                                  7,
                                  8,
                                  9,
                                  10,
                                  11,
                                  12,
                                  13,
                                  14,
                                  15,
                                  16,
                                  17,
                                  31,
                                  32,
                                  33,
                                  std::numeric_limits<int32_t>::max()};

/// 256 by 256 pixels that, with Columns(), make all pairs of bytes.
Bytes Rows() {
    Bytes image(65536);
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>(i / 256);
    }
    return image;
}

Bytes Columns() {
    Bytes image(65536);
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>(i % 256);
    }
    return image;
}

// ---- arithmetic ---------------------------------------------------------------------------------

TEST(PointArithmetic, SumsOfAllPairsAtAllScales) {
    const Bytes src = Rows();
    for (const int32_t scale : kAllScales) {
        Bytes fast = Columns();
        Bytes plain = Columns();
        ASSERT_EQ(PrimAddSfs8uC1(src.data(), 256, fast.data(), 256, 256, 256, scale), kPrimOk);
        model::PrimAddSfs8uC1(src.data(), 256, plain.data(), 256, 256, 256, scale);
        ASSERT_EQ(fast, plain) << "scale " << scale;
    }
}

TEST(PointArithmetic, DifferencesOfAllPairsAtAllScales) {
    const Bytes src = Rows();
    for (const int32_t scale : kAllScales) {
        Bytes fast = Columns();
        Bytes plain = Columns();
        ASSERT_EQ(PrimSubSfs8uC1(src.data(), 256, fast.data(), 256, 256, 256, scale), kPrimOk);
        model::PrimSubSfs8uC1(src.data(), 256, plain.data(), 256, 256, 256, scale);
        ASSERT_EQ(fast, plain) << "scale " << scale;
    }
}

TEST(PointArithmetic, MultiplesOfAllBytesByAllFactorsAtAllScales) {
    for (const int32_t scale : kAllScales) {
        for (int32_t value = 0; value < 256; ++value) {
            Bytes fast(256);
            std::iota(fast.begin(), fast.end(), uint8_t{0});
            Bytes plain = fast;
            ASSERT_EQ(PrimMulCSfs8uC1(static_cast<uint8_t>(value), fast.data(), 256, 256, 1, scale), kPrimOk);
            model::PrimMulCSfs8uC1(static_cast<uint8_t>(value), plain.data(), 256, 256, 1, scale);
            ASSERT_EQ(fast, plain) << "scale " << scale << " value " << value;
        }
    }
}

TEST(PointArithmetic, ProductsOfAllPairs) {
    const Bytes src = Rows();
    Bytes fast = Columns();
    Bytes plain = Columns();
    PrimMulScale8uC1(src.data(), 256, fast.data(), 256, 256, 256);
    model::PrimMulScale8uC1(src.data(), 256, plain.data(), 256, 256, 256);
    EXPECT_EQ(fast, plain);
    EXPECT_EQ(fast[255 * 256 + 255], 255);
    EXPECT_EQ(fast[255 * 256 + 9], 9);
}

TEST(PointArithmetic, HalfASumRoundsTiesToEven) {
    const Bytes zero = {0, 0, 0, 0};
    Bytes data = {3, 5, 7, 254};
    PrimAddSfs8uC1(zero.data(), 4, data.data(), 4, 4, 1, 1);
    EXPECT_EQ(data, (Bytes{2, 2, 4, 127}));
}

TEST(PointArithmetic, ScaleTenClearsASum) {
    const Bytes src(6, 255);
    Bytes data(6, 255);
    PrimAddSfs8uC1(src.data(), 3, data.data(), 3, 3, 2, 9);
    EXPECT_EQ(data, Bytes(6, 1));
    PrimAddSfs8uC1(src.data(), 3, data.data(), 3, 3, 2, 10);
    EXPECT_EQ(data, Bytes(6, 0));
}

TEST(PointArithmetic, SubtractingFromAnImageScaledUpBySixteen) {
    const Bytes src = {10, 10, 10, 10};
    Bytes data = {9, 11, 25, 26};
    PrimSubSfs8uC1(src.data(), 4, data.data(), 4, 4, 1, -4);
    EXPECT_EQ(data, (Bytes{0, 16, 240, 255}));
}

TEST(PointArithmetic, AFactorOfZeroClearsWhateverTheScale) {
    for (const int32_t scale : kAllScales) {
        Bytes data(5, 200);
        PrimMulCSfs8uC1(0, data.data(), 5, 5, 1, scale);
        EXPECT_EQ(data, Bytes(5, 0)) << scale;
    }
}

TEST(PointArithmetic, AnImageMayBeCombinedWithItself) {
    Bytes data = {0, 100, 128, 255};
    PrimAddSfs8uC1(data.data(), 4, data.data(), 4, 4, 1, 0);
    EXPECT_EQ(data, (Bytes{0, 200, 255, 255}));
    PrimAnd8uC1(data.data(), 4, data.data(), 4, 4, 1);
    EXPECT_EQ(data, (Bytes{0, 200, 255, 255}));
    PrimSubSfs8uC1(data.data(), 4, data.data(), 4, 4, 1, -9);
    EXPECT_EQ(data, Bytes(4, 0));
}

TEST(PointArithmetic, CopyToItselfIsAllowed) {
    Bytes data = {1, 2, 3, 4};
    EXPECT_EQ(PrimCopy8uC1(data.data(), 2, data.data(), 2, 2, 2), kPrimOk);
    EXPECT_EQ(data, (Bytes{1, 2, 3, 4}));
}

TEST(PointArithmetic, MeanOfMoreThan32Bits) {
    constexpr int32_t kSide = 4500;  // 4500 * 4500 * 255 is above 2^32
    Bytes image(size_t{kSide} * kSide, 255);
    image[7] = 0;
    double mean = 0;
    ASSERT_EQ(PrimMean8uC1(image.data(), kSide, kSide, kSide, &mean), kPrimOk);
    EXPECT_EQ(mean, (255.0 * kSide * kSide - 255) / (1.0 * kSide * kSide));
    ASSERT_EQ(PrimMean8uC1(image.data(), kSide * kSide, kSide * kSide, 1, &mean), kPrimOk);
    EXPECT_EQ(mean, (255.0 * kSide * kSide - 255) / (1.0 * kSide * kSide));
}

// ---- thresholds ---------------------------------------------------------------------------------

TEST(PointThresholds, BlackAndWhitePixelsArePainted) {
    const Bytes src = {0, 1, 2, 127, 253, 254, 255};
    Bytes dst(7, 99);
    PrimThresholdLTValGTVal8uC1(src.data(), 7, dst.data(), 7, 7, 1, 1, 66, 254, 66);
    EXPECT_EQ(dst, (Bytes{66, 1, 2, 127, 253, 254, 66}));
    Bytes data = src;
    PrimThresholdLTValGTValInPlace8uC1(data.data(), 7, 7, 1, 1, 66, 254, 66);
    EXPECT_EQ(data, dst);
}

TEST(PointThresholds, AllBytesAgainstAllThresholds) {
    for (int32_t threshold = 0; threshold < 256; ++threshold) {
        const auto t = static_cast<uint8_t>(threshold);
        Bytes lower(256);
        std::iota(lower.begin(), lower.end(), uint8_t{0});
        Bytes upper = lower;
        PrimThresholdLT8uC1(lower.data(), 256, 256, 1, t);
        PrimThresholdGTVal8uC1(upper.data(), 256, 256, 1, t, 33);
        for (int32_t x = 0; x < 256; ++x) {
            ASSERT_EQ(lower[static_cast<size_t>(x)], x < threshold ? threshold : x);
            ASSERT_EQ(upper[static_cast<size_t>(x)], x > threshold ? 33 : x);
        }
    }
}

TEST(PointThresholds, TheUpperThresholdIsTestedFirst) {
    // With lo above hi refused, a pixel can only be outside on one side; equal bounds leave one value alone.
    Bytes data = {79, 80, 81};
    PrimThresholdLTValGTValInPlace8uC1(data.data(), 3, 3, 1, 80, 0, 80, 255);
    EXPECT_EQ(data, (Bytes{0, 80, 255}));
}

// ---- bit reduction ------------------------------------------------------------------------------

TEST(PointReduceBits, TwoLevelsSplitAtOneHalf) {
    Bytes src(258);
    std::iota(src.begin(), src.end(), uint8_t{0});
    Bytes dst(258);
    ASSERT_EQ(PrimReduceBits8uC3(src.data(), 258, dst.data(), 258, 86, 1, 0, 0, 2), kPrimOk);
    for (size_t i = 0; i < 256; ++i) {
        EXPECT_EQ(dst[i], i < 128 ? 0 : 255) << i;
    }
}

TEST(PointReduceBits, TheEndsStayWithAllLevels) {
    for (int32_t levels = 2; levels <= 256; ++levels) {
        const Bytes src = {0, 255, 0};
        Bytes dst(3, 77);
        ASSERT_EQ(PrimReduceBits8uC3(src.data(), 3, dst.data(), 3, 1, 1, 0, 0, levels), kPrimOk);
        EXPECT_EQ(dst, (Bytes{0, 255, 0})) << levels;
    }
}

// ---- float to bytes -----------------------------------------------------------------------------

Bytes Scaled(const std::vector<float>& values, float lo, float hi) {
    Bytes result(values.size(), 111);
    const auto width = static_cast<int32_t>(values.size());
    EXPECT_EQ(PrimScale32f8u(values.data(), 4 * width, result.data(), width, width, 1, lo, hi), kPrimOk);
    return result;
}

TEST(PointScale, TiesGoToEven) {
    EXPECT_EQ(Scaled({0.5f, 1.5f, 2.5f, 3.5f, 127.5f, 128.5f, 253.5f, 254.5f}, 0, 255),
              (Bytes{0, 2, 2, 4, 128, 128, 254, 254}));
}

TEST(PointScale, TheEndsSaturate) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Scaled({-1e30f, -kInfinity, 2, 1.9999f, 3, 1e30f, kInfinity}, 2, 3),
              (Bytes{0, 0, 0, 0, 255, 255, 255}));
}

TEST(PointScale, WhatIsNotANumberBecomesBlack) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Scaled({kNan, 2, kNan, 3}, 1, 3), (Bytes{0, 128, 0, 255}));
}

TEST(PointScale, AnInfiniteRangeHasOnlyItsEnds) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Scaled({-kInfinity, 0, 4.9f, 5, kInfinity}, -kInfinity, 5), (Bytes{0, 0, 0, 255, 255}));
    EXPECT_EQ(Scaled({-kInfinity, 0, 5, 6, kInfinity}, 5, kInfinity), (Bytes{0, 0, 0, 0, 255}));
}

TEST(PointScale, NarrowRangesAtLargeValuesKeepTheirEnds) {
    const float lo = 16777216;
    const float hi = std::nextafter(lo, 2 * lo);
    EXPECT_EQ(Scaled({lo, hi, std::nextafter(lo, 0.0f)}, lo, hi), (Bytes{0, 255, 0}));
    EXPECT_EQ(Scaled({-hi, -lo}, -hi, -lo), (Bytes{0, 255}));
    const float least = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(Scaled({0, least, 2 * least}, 0, 2 * least), (Bytes{0, 128, 255}));
    const float most = std::numeric_limits<float>::max();
    EXPECT_EQ(Scaled({-most, 0, most}, -most, most), (Bytes{0, 128, 255}));
}

// ---- motion history -----------------------------------------------------------------------------

TEST(PointMotionHistory, OldEntriesFadeAndMotionIsStamped) {
    const Bytes silhouette = {0, 0, 0, 0, 1, 255};
    std::vector<float> history = {9.0f, 8.9999f, 9.5f, -20.0f, 3.0f, 9.5f};
    ASSERT_EQ(PrimUpdateMotionHistory8u32f(silhouette.data(), 6, history.data(), 24, 6, 1, 10, 1), kPrimOk);
    EXPECT_EQ(history, (std::vector<float>{9.0f, 0, 9.5f, 0, 10, 10}));
}

TEST(PointMotionHistory, NegativeEntriesAreOlderThanAnyOther) {
    const Bytes silhouette(3, 0);
    std::vector<float> history = {-0.0f, -1e-30f, 0.0f};
    ASSERT_EQ(PrimUpdateMotionHistory8u32f(silhouette.data(), 3, history.data(), 12, 3, 1, 1, 1), kPrimOk);
    for (const float entry : history) {
        EXPECT_EQ(std::bit_cast<uint32_t>(entry), 0u);
    }
    // Before zero the order holds as well.
    history = {-5.0f, -4.0f, -3.0f};
    ASSERT_EQ(PrimUpdateMotionHistory8u32f(silhouette.data(), 3, history.data(), 12, 3, 1, 1, 5), kPrimOk);
    EXPECT_EQ(history, (std::vector<float>{0, -4, -3}));
}

TEST(PointMotionHistory, ADurationOfZeroKeepsTheMoment) {
    const Bytes silhouette(2, 0);
    std::vector<float> history = {1.0f, 0.99f};
    ASSERT_EQ(PrimUpdateMotionHistory8u32f(silhouette.data(), 2, history.data(), 8, 2, 1, 1, 0), kPrimOk);
    EXPECT_EQ(history, (std::vector<float>{1, 0}));
}

// ---- noise --------------------------------------------------------------------------------------

TEST(PointNoise, WithoutSpreadOnlyTheMeanIsAddedTruncated) {
    Bytes data = {0, 100, 250, 255};
    uint32_t seed = 1;
    ASSERT_EQ(PrimAddGaussNoise8uC1(data.data(), 4, 4, 1, 7.9, 0, &seed), kPrimOk);
    EXPECT_EQ(data, (Bytes{7, 107, 255, 255}));
    ASSERT_EQ(PrimAddGaussNoise8uC1(data.data(), 4, 4, 1, -7.9, 0, &seed), kPrimOk);
    EXPECT_EQ(data, (Bytes{0, 100, 248, 248}));
}

TEST(PointNoise, TheStateGoesBackThroughTheSeed) {
    Bytes first(64, 128);
    Bytes second(64, 128);
    uint32_t seed = 544;
    PrimAddGaussNoise8uC1(first.data(), 8, 8, 8, 0, 20, &seed);
    EXPECT_NE(seed, 544u);
    const uint32_t after = seed;
    PrimAddGaussNoise8uC1(second.data(), 8, 8, 8, 0, 20, &seed);
    EXPECT_NE(first, second);
    Bytes again(64, 128);
    seed = 544;
    PrimAddGaussNoise8uC1(again.data(), 8, 8, 8, 0, 20, &seed);
    EXPECT_EQ(again, first);
    EXPECT_EQ(seed, after);
}

TEST(PointNoise, AnOddRowHandsItsSecondSampleOn) {
    Bytes rows(9, 128);
    Bytes line(9, 128);
    uint32_t seed = 99;
    PrimAddGaussNoise8uC1(rows.data(), 3, 3, 3, 0, 30, &seed);
    uint32_t other = 99;
    PrimAddGaussNoise8uC1(line.data(), 9, 9, 1, 0, 30, &other);
    EXPECT_EQ(rows, line);
    EXPECT_EQ(seed, other);
}

TEST(PointNoise, SamplesSpreadAsAsked) {
    Bytes data(1 << 16, 128);
    uint32_t seed = 3;
    PrimAddGaussNoise8uC1(data.data(), 256, 256, 256, 0, 20, &seed);
    double sum = 0;
    double squares = 0;
    for (const uint8_t v : data) {
        sum += v - 128;
        squares += (v - 128) * (v - 128);
    }
    EXPECT_NEAR(sum / 65536, 0, 0.3);
    EXPECT_NEAR(std::sqrt(squares / 65536), 20, 0.6);
}

TEST(PointNoise, AnySampleIsSafe) {
    for (const double extreme :
         {1e300, -1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        Bytes data = {0, 128, 255};
        uint32_t seed = 5;
        EXPECT_EQ(PrimAddGaussNoise8uC1(data.data(), 3, 3, 1, extreme, 1, &seed), kPrimOk);
        EXPECT_EQ(PrimAddGaussNoise8uC1(data.data(), 3, 3, 1, 0, extreme, &seed), kPrimOk);
    }
    Bytes data = {0, 128, 255};
    uint32_t seed = 5;
    PrimAddGaussNoise8uC1(data.data(), 3, 3, 1, std::numeric_limits<double>::quiet_NaN(), 1, &seed);
    EXPECT_EQ(data, (Bytes{0, 128, 255}));
    PrimAddGaussNoise8uC1(data.data(), 3, 3, 1, 1e300, 1, &seed);
    EXPECT_EQ(data, (Bytes{255, 255, 255}));
    PrimAddGaussNoise8uC1(data.data(), 3, 3, 1, -1e300, 1, &seed);
    EXPECT_EQ(data, (Bytes{0, 0, 0}));
}

// ---- memory -------------------------------------------------------------------------------------

TEST(PrimMemory, BlocksAreAligned) {
    for (const int32_t size : {1, 31, 32, 33, 100000}) {
        void* block = PrimAllocBuffer(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0u);
        std::fill_n(static_cast<uint8_t*>(block), size, uint8_t{1});
        PrimFreeBuffer(block);
    }
    PrimFreeBuffer(nullptr);
    PrimFree(nullptr);
}

TEST(PrimMemory, NoBlockWithoutASize) {
    EXPECT_EQ(PrimAllocBuffer(0), nullptr);
    EXPECT_EQ(PrimAllocBuffer(-1), nullptr);
    EXPECT_EQ(PrimAllocBuffer(std::numeric_limits<int32_t>::min()), nullptr);
}

TEST(PrimMemory, ImagesHaveRowsOfWholeBlocks) {
    for (const auto& [width, rowStep] : {std::pair{1, 32}, {32, 32}, {33, 64}, {640, 640}}) {
        int32_t step = -1;
        uint8_t* image = PrimMalloc8uC1(width, 3, &step);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(step, rowStep);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(image) % 32, 0u);
        std::fill_n(image, 3 * step, uint8_t{1});
        PrimFree(image);
    }
}

TEST(PrimMemory, ImagesThatCannotBe) {
    for (const auto& [width, height] :
         {std::pair{0, 1}, {1, 0}, {-5, 5}, {5, -5}, {std::numeric_limits<int32_t>::max(), 1}}) {
        int32_t step = 77;
        EXPECT_EQ(PrimMalloc8uC1(width, height, &step), nullptr);
        EXPECT_EQ(step, 0);
    }
    EXPECT_EQ(PrimMalloc8uC1(4, 4, nullptr), nullptr);
}

// ---- look-up ------------------------------------------------------------------------------------

TEST(Lookup, AllBytesAtAllPlacesOfAVector) {
    std::array<uint8_t, 256> table;
    uint32_t state = 1;
    for (uint8_t& entry : table) {
        state = state * 1664525 + 1013904223;
        entry = static_cast<uint8_t>(state >> 24);
    }
    for (size_t shift = 0; shift < 64; ++shift) {
        Bytes src(256 + 64);
        for (size_t i = 0; i < src.size(); ++i) {
            src[i] = static_cast<uint8_t>(i + shift);
        }
        Bytes dst(src.size());
        LookupBytes(table.data(), src.data(), dst.data(), src.size());
        for (size_t i = 0; i < src.size(); ++i) {
            ASSERT_EQ(dst[i], table[src[i]]) << "byte " << int{src[i]} << " at " << i;
        }
    }
}

TEST(Lookup, AllCountsInPlace) {
    std::array<uint8_t, 256> table;
    for (size_t i = 0; i < 256; ++i) {
        table[i] = static_cast<uint8_t>(255 - i * i % 251);
    }
    for (size_t count = 0; count <= 300; ++count) {
        Bytes data(302, 9);
        for (size_t i = 0; i < 302; ++i) {
            data[i] = static_cast<uint8_t>(7 * i);
        }
        const Bytes before = data;
        LookupBytes(table.data(), data.data() + 1, count);
        for (size_t i = 0; i < 302; ++i) {
            ASSERT_EQ(data[i], i >= 1 && i <= count ? table[before[i]] : before[i]);
        }
    }
}

}  // namespace
