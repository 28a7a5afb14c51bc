// Masks, box mean and median: what the comparison with the models on small pictures does not reach.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

// ---- smoothing masks -------------------------------------------------------------------------------------

TEST(FixedMasks, KeepFlatPictures) {
    for (int32_t value = 0; value < 256; ++value) {
        Picture<uint8_t> src(40, 3, 2, static_cast<uint8_t>(value));
        for (const int32_t mask : {kPrimMask3x3, kPrimMask5x5}) {
            for (const auto filter : {PrimFilterGauss8uC1, PrimFilterLowpass8uC1}) {
                Picture<uint8_t> dst(40, 3, 0, 99);
                ASSERT_EQ(filter(src.data(), src.step(), dst.data(), dst.step(), 40, 3, mask), kPrimOk);
                ASSERT_EQ(dst, Picture<uint8_t>(40, 3, 0, static_cast<uint8_t>(value))) << mask;
            }
        }
    }
}

TEST(FixedMasks, GaussRoundsTiesToEven) {
    // Sums of 8 + 16 k, which lie in the middle between k and k + 1.
    for (int32_t k = 0; k < 254; ++k) {
        Picture<uint8_t> src(1, 1, 1, static_cast<uint8_t>(k));
        src.at(0, -1) = static_cast<uint8_t>(std::min(k + 4, 255));
        src.at(0, 1) = static_cast<uint8_t>(2 * (k + 2) - src.at(0, -1));
        uint8_t dst = 0;
        ASSERT_EQ(PrimFilterGauss8uC1(src.data(), src.step(), &dst, 1, 1, 1, kPrimMask3x3), kPrimOk);
        EXPECT_EQ(dst, k % 2 == 0 ? k : k + 1);
    }
}

TEST(FixedMasks, LowpassRoundsUpFromFourNinths) {
    Picture<uint8_t> src(1, 1, 1, 100);
    uint8_t dst = 0;
    PrimFilterLowpass8uC1(src.data(), src.step(), &dst, 1, 1, 1, kPrimMask3x3);
    EXPECT_EQ(dst, 100);
    src.at(1, 1) = 103;  // (903 + 5) * 455 is just below 101 << 12
    PrimFilterLowpass8uC1(src.data(), src.step(), &dst, 1, 1, 1, kPrimMask3x3);
    EXPECT_EQ(dst, 100);
    src.at(1, 1) = 105;
    PrimFilterLowpass8uC1(src.data(), src.step(), &dst, 1, 1, 1, kPrimMask3x3);
    EXPECT_EQ(dst, 101);
}

// ---- rows that take several strips -----------------------------------------------------------------------

constexpr std::array<int32_t, 6> kWidths = {2047, 2048, 2049, 2050, 4096, 4099};

TEST(WideRows, FixedMasks) {
    for (const int32_t width : kWidths) {
        Picture<uint8_t> src = RandomPicture(width, 3, 2, static_cast<uint64_t>(width));
        for (const int32_t mask : {kPrimMask3x3, kPrimMask5x5}) {
            const auto expectSame = [&](auto filter, auto plain) {
                Picture<uint8_t> fast(width, 3, 1, 7);
                Picture<uint8_t> model(width, 3, 1, 7);
                filter(src.data(), src.step(), fast.data(), fast.step(), width, 3, mask);
                plain(src.data(), src.step(), model.data(), model.step(), width, 3, mask);
                ASSERT_EQ(fast, model) << width << ' ' << mask;
            };
            expectSame(PrimFilterGauss8uC1, model::PrimFilterGauss8uC1);
            expectSame(PrimFilterLowpass8uC1, model::PrimFilterLowpass8uC1);
        }
    }
}

TEST(WideRows, Gradients) {
    for (const int32_t width : kWidths) {
        Picture<uint8_t> src = RandomPicture(width, 3, 2, static_cast<uint64_t>(width));
        uint8_t buffer[16];  // GetBufferSize gives less
        const auto expectSame = [&](auto filter, auto plain, auto... own) {
            Picture<int16_t> fast(width, 3, 1, 7);
            Picture<int16_t> model(width, 3, 1, 7);
            ASSERT_EQ(filter(src.data(), src.step(), fast.data(), fast.step(), width, 3, own...), kPrimOk);
            plain(src.data(), src.step(), model.data(), model.step(), width, 3, own...);
            ASSERT_EQ(fast, model) << width;
        };
        for (const int32_t mask : {kPrimMask3x3, kPrimMask5x5}) {
            expectSame(PrimFilterSobelHoriz8u16s, model::PrimFilterSobelHoriz8u16s, mask);
            expectSame(PrimFilterSobelVert8u16s, model::PrimFilterSobelVert8u16s, mask);
            expectSame(PrimSobelHorizBorder8u16s, model::PrimSobelHorizBorder8u16s, mask, 1, uint8_t{9},
                       buffer);
            expectSame(PrimSobelVertBorder8u16s, model::PrimSobelVertBorder8u16s, mask, 1, uint8_t{9},
                       buffer);
        }
        expectSame(PrimScharrHorizBorder8u16s, model::PrimScharrHorizBorder8u16s, 1, uint8_t{9}, buffer);
        expectSame(PrimScharrVertBorder8u16s, model::PrimScharrVertBorder8u16s, 1, uint8_t{9}, buffer);
    }
}

TEST(WideRows, MedianErosionAndKernels) {
    const std::vector<int32_t> small = {3, -1, 70, 5};
    const std::vector<int32_t> large = {kMost, 12, kLeast};
    for (const int32_t width : kWidths) {
        Picture<uint8_t> src = RandomPicture(width, 3, 2, static_cast<uint64_t>(width));
        const auto expectSame = [&](auto filter, auto plain, auto... own) {
            Picture<uint8_t> fast(width, 3, 1, 7);
            Picture<uint8_t> model(width, 3, 1, 7);
            ASSERT_EQ(filter(src.data(), src.step(), fast.data(), fast.step(), width, 3, own...), kPrimOk);
            plain(src.data(), src.step(), model.data(), model.step(), width, 3, own...);
            ASSERT_EQ(fast, model) << width;
        };
        expectSame(PrimFilterMedian8uC1, model::PrimFilterMedian8uC1, 5, 5, 2, 2);
        expectSame(PrimErode3x38uC1, model::PrimErode3x38uC1);
        for (const int32_t divisor : {77, -77, 64}) {
            expectSame(PrimFilterRow8uC1, model::PrimFilterRow8uC1, small.data(), 4, 2, divisor);
            expectSame(PrimFilterColumn8uC1, model::PrimFilterColumn8uC1, small.data(), 4, 1, divisor);
            expectSame(PrimFilterRow8uC1, model::PrimFilterRow8uC1, large.data(), 3, 1, divisor);
            expectSame(PrimFilterColumn8uC1, model::PrimFilterColumn8uC1, large.data(), 3, 1, divisor);
        }
    }
}

// ---- box mean --------------------------------------------------------------------------------------------

TEST(Box, MaskAsLargeAsTheRegionIsRefused) {
    Picture<uint8_t> picture = RandomPicture(9, 9, 9, 1);
    const Picture<uint8_t> before = picture;
    EXPECT_EQ(PrimFilterBox8uC1(picture.data(), picture.step(), 9, 9, 9, 9, 4, 4), kPrimMaskError);
    EXPECT_EQ(picture, before);
}

TEST(Box, TiesGoUp) {
    Picture<uint8_t> picture(3, 3, 1, 0);
    picture.at(1, 1) = 2;  // a mean of a half in the four windows of 2 by 2 around it
    ASSERT_EQ(PrimFilterBox8uC1(picture.data(), picture.step(), 3, 3, 2, 2, 0, 0), kPrimOk);
    EXPECT_EQ(picture.at(0, 0), 1);
    EXPECT_EQ(picture.at(1, 1), 1);
    EXPECT_EQ(picture.at(2, 2), 0);
}

/// Window sums from a table of sums, for masks for which the plain model is too slow.
void ExpectBoxMean(int32_t size, int32_t maskWidth, int32_t maskHeight, int32_t anchorX, int32_t anchorY) {
    const int32_t margin = std::max(maskWidth, maskHeight);
    Picture<uint8_t> picture(size, size, margin);
    TestRandom random(static_cast<uint64_t>(maskWidth));
    // Mostly bright, so that the sums are near their largest.
    std::ranges::generate(picture.pixels(), [&] {
        return static_cast<uint8_t>(255 - random.Below(9) / 8 * random.Below(256));
    });
    Picture<uint64_t> sums(size, size, margin + 1);
    for (int32_t y = -margin; y < size + margin; ++y) {
        for (int32_t x = -margin; x < size + margin; ++x) {
            sums.at(x, y) = picture.at(x, y) + sums.at(x - 1, y) + sums.at(x, y - 1) - sums.at(x - 1, y - 1);
        }
    }
    Picture<uint8_t> expected = picture;
    const auto n = static_cast<uint64_t>(maskWidth) * static_cast<uint64_t>(maskHeight);
    for (int32_t y = 0; y < size; ++y) {
        for (int32_t x = 0; x < size; ++x) {
            const int32_t left = x - anchorX - 1;
            const int32_t top = y - anchorY - 1;
            const uint64_t sum = sums.at(left + maskWidth, top + maskHeight) -
                                 sums.at(left, top + maskHeight) - sums.at(left + maskWidth, top) +
                                 sums.at(left, top);
            expected.at(x, y) = static_cast<uint8_t>((sum + n / 2) / n);
        }
    }
    ASSERT_EQ(PrimFilterBox8uC1(picture.data(), picture.step(), size, size, maskWidth, maskHeight, anchorX,
                                anchorY),
              kPrimOk);
    EXPECT_TRUE(picture == expected) << maskWidth << 'x' << maskHeight;
}

TEST(Box, LargeMasks) {
    ExpectBoxMean(200, 127, 129, 63, 64);  // the largest area for which single precision is used
    ExpectBoxMean(200, 128, 128, 0, 127);  // the smallest for which it is not
    ExpectBoxMean(300, 299, 1, 150, 0);
    ExpectBoxMean(300, 1, 299, 0, 298);
    ExpectBoxMean(300, 299, 299, 298, 0);
}

TEST(Box, SumsOfMoreThan32Bits) {
    constexpr int32_t kSide = 4106;
    static_assert(int64_t{kSide - 1} * (kSide - 1) * 255 > std::numeric_limits<uint32_t>::max());
    std::vector<uint8_t> pixels(size_t{2 * kSide} * size_t{2 * kSide}, 255);
    pixels[0] = 0;
    uint8_t* const region = pixels.data();
    ASSERT_EQ(PrimFilterBox8uC1(region, 2 * kSide, kSide, kSide, kSide - 1, kSide - 1, 0, 0), kPrimOk);
    EXPECT_EQ(region[0], 255);
    EXPECT_EQ(region[kSide - 1], 255);
    EXPECT_EQ(region[size_t{2 * kSide} * (kSide - 1)], 255);
    std::ranges::fill(pixels, uint8_t{0});
    ASSERT_EQ(PrimFilterBox8uC1(region, 2 * kSide, kSide, kSide, kSide - 1, kSide - 1, 0, 0), kPrimOk);
    EXPECT_EQ(region[0], 0);
}

// ---- median ----------------------------------------------------------------------------------------------

TEST(Median, EveryArrangementOfSmallAndLargeInSortedColumns) {
    // A network of minima and maxima that is right for all windows of two values is right for all windows.
    // The columns are sorted first, so that only the numbers of large values in each matter; that sorting is
    // covered by all arrangements in one column.
    std::vector<std::array<int, 5>> windows;
    std::array<int, 5> counts;
    for (int i = 0; i < 6 * 6 * 6 * 6 * 6; ++i) {
        int rest = i;
        for (int& count : counts) {
            count = rest % 6;
            rest /= 6;
        }
        windows.push_back(counts);
    }
    const auto width = static_cast<int32_t>(5 * windows.size());
    Picture<uint8_t> src(width, 1, 2);
    for (size_t i = 0; i < windows.size(); ++i) {
        for (int32_t column = 0; column < 5; ++column) {
            for (int32_t row = 0; row < windows[i][static_cast<size_t>(column)]; ++row) {
                // Unsorted columns: the large values start at another row in each window.
                const auto start = static_cast<int32_t>(i % 5);
                src.at(static_cast<int32_t>(5 * i) + column, (row + start) % 5 - 2) = 200;
            }
        }
    }
    Picture<uint8_t> dst(width, 1, 0);
    ASSERT_EQ(PrimFilterMedian8uC1(src.data(), src.step(), dst.data(), dst.step(), width, 1, 5, 5, 2, 2),
              kPrimOk);
    for (size_t i = 0; i < windows.size(); ++i) {
        const int large = std::accumulate(windows[i].begin(), windows[i].end(), 0);
        ASSERT_EQ(dst.at(static_cast<int32_t>(5 * i) + 2, 0), large >= 13 ? 200 : 0) << i;
    }
}

TEST(Median, ColumnsAreSortedWhateverTheirOrder) {
    std::array<int32_t, 5> order = {10, 20, 30, 40, 50};
    std::vector<std::array<int32_t, 5>> orders;
    do {
        orders.push_back(order);
    } while (std::ranges::next_permutation(order).found);
    const auto width = static_cast<int32_t>(orders.size());
    Picture<uint8_t> src(width, 1, 2, 30);
    for (int32_t x = 0; x < width; ++x) {
        for (int32_t row = 0; row < 5; ++row) {
            src.at(x, row - 2) =
                static_cast<uint8_t>(orders[static_cast<size_t>(x)][static_cast<size_t>(row)]);
        }
    }
    Picture<uint8_t> dst(width, 1, 0);
    ASSERT_EQ(PrimFilterMedian8uC1(src.data(), src.step(), dst.data(), dst.step(), width, 1, 5, 5, 2, 2),
              kPrimOk);
    EXPECT_EQ(dst, Picture<uint8_t>(width, 1, 0, 30));
}

}  // namespace
