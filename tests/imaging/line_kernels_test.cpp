// One-dimensional kernels and edge operators: what the comparison with the models on small pictures does not
// reach.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/MarginPicture.h"
#include "tests/imaging/models/NeighbourhoodModels.h"

namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();

// ---- one-dimensional kernels -----------------------------------------------------------------------------

TEST(LineKernels, DivisorZeroWritesNothing) {
    Picture<uint8_t> src = RandomPicture(8, 8, 1, 1);
    Picture<uint8_t> dst = RandomPicture(8, 8, 0, 2);
    const Picture<uint8_t> before = dst;
    const int32_t taps[] = {1, 2, 1};
    EXPECT_EQ(PrimFilterColumn8uC1(src.data(), src.step(), dst.data(), dst.step(), 8, 8, taps, 3, 1, 0),
              kPrimDivisorError);
    EXPECT_EQ(dst, before);
}

TEST(LineKernels, NegativeSumsGiveZero) {
    const Picture<uint8_t> black(64, 4, 0, 0);
    Picture<uint8_t> src(64, 4, 1, 200);
    const int32_t taps[] = {-1, -2, -1};
    for (const int32_t divisor : {1, 2, 4, 3, 5, 1000, kMost, 1 << 30}) {
        for (const auto filter : {PrimFilterColumn8uC1, PrimFilterRow8uC1}) {
            Picture<uint8_t> dst(64, 4, 0, 99);
            ASSERT_EQ(filter(src.data(), src.step(), dst.data(), dst.step(), 64, 4, taps, 3, 1, divisor),
                      kPrimOk);
            EXPECT_EQ(dst, black) << divisor;
        }
    }
    // A negative divisor makes them positive.
    Picture<uint8_t> dst(64, 4, 0, 99);
    PrimFilterRow8uC1(src.data(), src.step(), dst.data(), dst.step(), 64, 4, taps, 3, 1, -4);
    EXPECT_EQ(dst, Picture<uint8_t>(64, 4, 0, 200));
}

TEST(LineKernels, TapsRunAgainstThePixels) {
    Picture<uint8_t> src(5, 5, 4);
    src.at(2, 2) = 1;
    const int32_t taps[] = {10, 20, 30, 40};
    Picture<uint8_t> row(5, 5, 0);
    PrimFilterRow8uC1(src.data(), src.step(), row.data(), row.step(), 5, 5, taps, 4, 1, 1);
    Picture<uint8_t> column(5, 5, 0);
    PrimFilterColumn8uC1(src.data(), src.step(), column.data(), column.step(), 5, 5, taps, 4, 1, 1);
    for (int32_t k = 0; k < 4; ++k) {
        EXPECT_EQ(row.at(1 + k, 2), taps[k]);
        EXPECT_EQ(column.at(2, 1 + k), taps[k]);
    }
}

/// Compares the quotients of all sums from 0 to 65535.
void ExpectQuotients(int32_t divisor) {
    // Pairs of a low and a high byte; every other pixel is the sum of a whole pair.
    static Picture<uint8_t> src = [] {
        Picture<uint8_t> pairs(2 * 256, 256, 1);
        for (int32_t high = 0; high < 256; ++high) {
            for (int32_t low = 0; low < 256; ++low) {
                pairs.at(2 * low, high) = static_cast<uint8_t>(low);
                pairs.at(2 * low + 1, high) = static_cast<uint8_t>(high);
            }
        }
        return pairs;
    }();
    const int32_t taps[] = {256, 1};
    Picture<uint8_t> fast(2 * 256, 256, 0);
    ASSERT_EQ(PrimFilterRow8uC1(src.data(), src.step(), fast.data(), fast.step(), 2 * 256, 256, taps, 2, 1,
                                divisor),
              kPrimOk);
    for (int32_t sum = 0; sum < 65536; ++sum) {
        ASSERT_EQ(fast.at(2 * (sum % 256), sum / 256), model::Divided(sum, divisor))
            << sum << " / " << divisor;
    }
}

TEST(LineKernels, QuotientsOfAllSumsOf16Bits) {
    for (int32_t divisor = 1; divisor <= 300; ++divisor) {
        ExpectQuotients(divisor);
    }
    for (const int32_t divisor : {451, 902, 1000, 4096, 4510, 9999, 16384, 20000, 65535, 65536, 1 << 20,
                                  kMost, -1, -2, -7, -256, -300, kLeast}) {
        ExpectQuotients(divisor);
    }
}

TEST(LineKernels, TapsAtTheEndsOfTheirRange) {
    // 16-bit taps, the first that are too large for that, sums at the end of 30, 31 and 32 bits, and more.
    const std::vector<std::vector<int32_t>> kernels = {
        {32767, -32768, 32767}, {32768, 1, -32769}, {4210752, 0, 0},   {4210753, 0, 0},    {8421504, 0, 0},
        {8421505, 0, 0},        {-8421505, 0, 1},   {kMost, kMost, 5}, {kLeast, kLeast, 1}};
    Picture<uint8_t> src = RandomPicture(67, 5, 2, 3);
    std::fill_n(&src.at(0, 2), 67, uint8_t{255});
    for (const std::vector<int32_t>& kernel : kernels) {
        for (const int32_t divisor : {1, 2, 3, 16384, 65535, 1 << 30, 1234567, kMost, -5, kLeast}) {
            Picture<uint8_t> fast(67, 5, 0);
            Picture<uint8_t> model(67, 5, 0);
            ASSERT_EQ(PrimFilterRow8uC1(src.data(), src.step(), fast.data(), fast.step(), 67, 5,
                                        kernel.data(), 3, 1, divisor),
                      kPrimOk);
            model::PrimFilterRow8uC1(src.data(), src.step(), model.data(), model.step(), 67, 5, kernel.data(),
                                     3, 1, divisor);
            EXPECT_EQ(fast, model) << kernel[0] << ' ' << divisor;
        }
    }
}

TEST(LineKernels, MoreTapsThanPixels) {
    Picture<uint8_t> src = RandomPicture(70, 3, 200, 4);
    for (const int32_t size : {63, 64, 65, 66, 199}) {
        std::vector<int32_t> kernel(static_cast<size_t>(size));
        std::iota(kernel.begin(), kernel.end(), -20);
        const auto expectSame = [&](auto filter, auto plain) {
            Picture<uint8_t> fast(70, 3, 0);
            Picture<uint8_t> model(70, 3, 0);
            ASSERT_EQ(filter(src.data(), src.step(), fast.data(), fast.step(), 70, 3, kernel.data(), size,
                             size / 3, 40 * size),
                      kPrimOk);
            plain(src.data(), src.step(), model.data(), model.step(), 70, 3, kernel.data(), size, size / 3,
                  40 * size);
            EXPECT_EQ(fast, model) << size;
        };
        expectSame(PrimFilterColumn8uC1, model::PrimFilterColumn8uC1);
        expectSame(PrimFilterRow8uC1, model::PrimFilterRow8uC1);
    }
}

// ---- edge operators --------------------------------------------------------------------------------------

TEST(Gradients, SignsAndWeights) {
    // White below and to the right of the pixel.
    Picture<uint8_t> below(1, 1, 2);
    Picture<uint8_t> right(1, 1, 2);
    for (int32_t i = -2; i <= 2; ++i) {
        for (int32_t k = 1; k <= 2; ++k) {
            below.at(i, k) = 255;
            right.at(k, i) = 255;
        }
    }
    int16_t gradient = 0;
    PrimFilterSobelHoriz8u16s(below.data(), below.step(), &gradient, 2, 1, 1, kPrimMask3x3);
    EXPECT_EQ(gradient, 4 * 255);
    PrimFilterSobelVert8u16s(right.data(), right.step(), &gradient, 2, 1, 1, kPrimMask3x3);
    EXPECT_EQ(gradient, -4 * 255);
    PrimFilterSobelHoriz8u16s(below.data(), below.step(), &gradient, 2, 1, 1, kPrimMask5x5);
    EXPECT_EQ(gradient, 48 * 255);
    PrimFilterSobelVert8u16s(right.data(), right.step(), &gradient, 2, 1, 1, kPrimMask5x5);
    EXPECT_EQ(gradient, -48 * 255);
}

TEST(Gradients, BorderOperatorsSeeNothingInAFlatPicture) {
    for (const int32_t size : {1, 2, 3, 40}) {
        const std::vector<uint8_t> flat(static_cast<size_t>(size * size), 201);
        uint8_t buffer[16];
        for (const int32_t mask : {kPrimMask3x3, kPrimMask5x5}) {
            for (const auto filter : {PrimSobelHorizBorder8u16s, PrimSobelVertBorder8u16s}) {
                Picture<int16_t> dst(size, size, 0, 5);
                filter(flat.data(), size, dst.data(), dst.step(), size, size, mask, 1, 0, buffer);
                EXPECT_EQ(dst, Picture<int16_t>(size, size, 0, 0));
            }
        }
        for (const auto filter : {PrimScharrHorizBorder8u16s, PrimScharrVertBorder8u16s}) {
            Picture<int16_t> dst(size, size, 0, 5);
            filter(flat.data(), size, dst.data(), dst.step(), size, size, 1, 0, buffer);
            EXPECT_EQ(dst, Picture<int16_t>(size, size, 0, 0));
        }
    }
}

}  // namespace
