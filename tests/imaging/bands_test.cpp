// Passes in bands give what they give over whole planes.
#include "imaging/Bands.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "imaging/BoxFilter.h"
#include "imaging/Prim.h"
#include "tests/imaging/TestPlanes.h"

namespace {

TEST(Bands, EveryPassMakesEachRowOnceAndInTime) {
    for (const int32_t height : {1, 2, 15, 16, 17, 31, 33, 100}) {
        int32_t made[3] = {};
        const auto check = [&](size_t pass, int32_t reach, RowRange rows) {
            EXPECT_EQ(rows.begin, made[pass]);
            EXPECT_LT(rows.begin, rows.end);
            EXPECT_LE(rows.end, height);
            if (pass > 0) {
                EXPECT_GE(made[pass - 1], std::min(rows.end + reach, height));
            }
            made[pass] = rows.end;
        };
        RunInBands(height, BandPass{2, [&](RowRange rows) { check(0, 2, rows); }},
                   BandPass{1, [&](RowRange rows) { check(1, 1, rows); }},
                   BandPass{3, [&](RowRange rows) { check(2, 3, rows); }});
        for (const int32_t rows : made) EXPECT_EQ(rows, height);
    }
}

/// Three filters through windows, the last one over the source.
TEST(Bands, FiltersInPlaceAsOverWholePlanes) {
    for (int32_t height = 1; height <= 70; ++height) {
        const int32_t width = 1 + height * 7 % 40;
        CPlane8u plane = RandomPlane(width, height, static_cast<uint64_t>(height));
        const auto gauss = [](auto... region) { PrimFilterGauss8uC1(region..., kPrimMask5x5); };

        CPlane8u first(width, height), second(width, height), expected(width, height);
        FilterGauss5(plane, first, FilterRing::kCopied);
        BoxFilter(width, height, 3).Apply(first, second);
        FilterGauss5(second, expected, FilterRing::kCopied);
        if (std::min(width, height) < 5) expected = second;  // FilterGauss5 leaves planes without interior

        BoxFilter box(width, height, 3);
        RowWindow smooth(width, 2), means(width, 4);
        RunInBands(
            height,
            BandPass{2,
                     [&](RowRange rows) { FilterBand(plane, smooth.Advance(rows), rows, height, 2, gauss); }},
            BandPass{1, [&](RowRange rows) { box.ApplyBand(smooth.Rows(), means.Advance(rows), rows); }},
            BandPass{2, [&](RowRange rows) { FilterBand(means.Rows(), plane, rows, height, 2, gauss); }});
        EXPECT_EQ(BytesOf(plane), BytesOf(expected)) << width << " by " << height;
    }
}

TEST(Bands, WindowKeepsRowsAbove) {
    constexpr int32_t kWidth = 3, kKept = 5, kHeight = 90;
    RowWindow window(kWidth, kKept);
    for (int picture = 0; picture < 2; ++picture) {
        for (RowRange rows{0, 2 * kBandRows}; rows.begin < kHeight;
             rows = {rows.end, std::min(rows.end + kBandRows, kHeight)}) {
            const PlaneRows made = window.Advance(rows);
            for (int32_t y = rows.begin; y < rows.end; ++y)
                std::fill_n(made[y], kWidth, uint8_t(y + picture));
            for (int32_t y = std::max(rows.begin - kKept, 0); y < rows.end; ++y) {
                EXPECT_EQ(window.Rows()[y][kWidth - 1], y + picture);
            }
        }
    }
}

}  // namespace
