// The free functions on planes, the Gaussian kernel and the gradient image.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "imaging/GaussKernel1D.h"
#include "imaging/GradientImage.h"
#include "imaging/Plane8u.h"
#include "imaging/Prim.h"
#include "tests/imaging/TestPlanes.h"
#include "tests/imaging/models/GeometryModels.h"

namespace {

// ---- filters ---------------------------------------------------------------------------------------

struct NamedFilter {
    const char* name;
    int32_t r;
    std::function<void(const CPlane8u&, CPlane8u&)> filter;
    /// The same by the primitive: src and dst point at the interior's first pixel.
    std::function<void(const uint8_t*, int32_t, uint8_t*, int32_t, int32_t, int32_t)> primitive;
};

template <void (*filter)(const CPlane8u&, CPlane8u&, FilterRing)>
void KeepRing(const CPlane8u& src, CPlane8u& dst) {
    filter(src, dst, FilterRing::kKept);
}

const std::vector<NamedFilter>& Filters() {
    static const std::vector<NamedFilter> filters = {
        {"Gauss3", 1, KeepRing<FilterGauss3>, [](auto... region) { PrimFilterGauss8uC1(region..., 33); }},
        {"Gauss5", 2, KeepRing<FilterGauss5>, [](auto... region) { PrimFilterGauss8uC1(region..., 55); }},
        {"Lowpass3", 1, KeepRing<FilterLowpass3>,
         [](auto... region) { PrimFilterLowpass8uC1(region..., 33); }},
        {"Lowpass5", 2, KeepRing<FilterLowpass5>,
         [](auto... region) { PrimFilterLowpass8uC1(region..., 55); }},
        {"Median5", 2, FilterMedian5, [](auto... region) { PrimFilterMedian8uC1(region..., 5, 5, 2, 2); }},
        {"Erode3", 1, Erode3, [](auto... region) { PrimErode3x38uC1(region...); }},
    };
    return filters;
}

TEST(PlaneFilters, WorkOnTheInterior) {
    for (const NamedFilter& filter : Filters()) {
        for (const auto& [width, height] :
             {std::pair{1, 1}, {2, 9}, {9, 2}, {3, 3}, {4, 4}, {5, 5}, {33, 17}}) {
            const CPlane8u source = RandomPlane(width, height, 1);
            // A larger destination keeps its own row step.
            for (const int32_t more : {0, 3}) {
                CPlane8u target = RandomPlane(width + more, height + more, 2);
                CPlane8u expected(target);
                const int32_t r = filter.r;
                if (width > 2 * r && height > 2 * r) {
                    filter.primitive(source.Row(r) + r, source.width, expected.Row(r) + r, expected.width,
                                     width - 2 * r, height - 2 * r);
                }
                filter.filter(source, target);
                EXPECT_EQ(BytesOf(target), BytesOf(expected)) << filter.name << " " << width << "x" << height;
            }
        }
    }
}

TEST(PlaneFilters, LeaveASmallerDestinationAlone) {
    const CPlane8u source = RandomPlane(9, 9, 1);
    for (const NamedFilter& filter : Filters()) {
        for (const auto& [width, height] : {std::pair{8, 9}, {9, 8}, {3, 3}}) {
            CPlane8u target = RandomPlane(width, height, 2);
            const Bytes before = BytesOf(target);
            filter.filter(source, target);
            EXPECT_EQ(BytesOf(target), before) << filter.name;
        }
    }
}

TEST(PlaneFilters, KeepAConstantPicture) {
    CPlane8u source(20, 20), target(20, 20);
    source.Fill(100);
    target.Fill(100);
    for (const NamedFilter& filter : Filters()) {
        filter.filter(source, target);
        EXPECT_EQ(BytesOf(target), Bytes(400, 100)) << filter.name;
    }
}

TEST(PlaneFilters, DilateInPlaceTakesTheMaximum) {
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 5}, {5, 2}, {3, 3}, {30, 20}}) {
        CPlane8u plane = RandomPlane(width, height, 1);
        const CPlane8u before(plane);
        Dilate3(plane);
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                uint8_t expected = before.Row(y)[x];
                if (x > 0 && y > 0 && x < width - 1 && y < height - 1) {
                    for (int32_t dy = -1; dy <= 1; ++dy) {
                        for (int32_t dx = -1; dx <= 1; ++dx) {
                            expected = std::max(expected, before.Row(y + dy)[x + dx]);
                        }
                    }
                }
                ASSERT_EQ(plane.Row(y)[x], expected) << x << ", " << y;
            }
        }
    }
}

TEST(PlaneFilters, BoxInPlaceAveragesTheInterior) {
    for (const int32_t mask : {1, 2, 3, 4, 5}) {
        for (const auto& [width, height] : {std::pair{1, 1}, {4, 9}, {7, 7}, {30, 20}}) {
            CPlane8u plane = RandomPlane(width, height, 1);
            const CPlane8u before(plane);
            FilterBoxInPlace(plane, mask);
            const int32_t r = mask / 2;
            const bool fits = mask < width - 2 * r && mask < height - 2 * r;
            for (int32_t y = 0; y < height; ++y) {
                for (int32_t x = 0; x < width; ++x) {
                    int32_t expected = before.Row(y)[x];
                    if (fits && x >= r && y >= r && x < width - r && y < height - r) {
                        int32_t sum = 0;
                        for (int32_t dy = 0; dy < mask; ++dy) {
                            for (int32_t dx = 0; dx < mask; ++dx) sum += before.Row(y - r + dy)[x - r + dx];
                        }
                        expected = (sum + mask * mask / 2) / (mask * mask);
                    }
                    ASSERT_EQ(plane.Row(y)[x], expected) << mask << ": " << x << ", " << y;
                }
            }
        }
    }
    CPlane8u plane = RandomPlane(9, 9, 1);
    const Bytes before = BytesOf(plane);
    for (const int32_t mask : {0, -1, -7, 9, 100, kHuge, -kHuge}) FilterBoxInPlace(plane, mask);
    EXPECT_EQ(BytesOf(plane), before);
}

// ---- grey levels -----------------------------------------------------------------------------------

TEST(PlaneStatistics, SumIsWholeAndModulo32Bits) {
    EXPECT_EQ(SumPixels(CPlane8u()), 0u);
    CPlane8u plane = RandomPlane(37, 11, 1);
    uint32_t sum = 0;
    for (const uint8_t byte : BytesOf(plane)) sum += byte;
    EXPECT_EQ(SumPixels(plane), sum);
    CPlane8u large(4300, 4000);
    large.Fill(255);
    EXPECT_EQ(SumPixelsWide(large), uint64_t{4300} * 4000 * 255);
    EXPECT_EQ(SumPixels(large), static_cast<uint32_t>(uint64_t{4300} * 4000 * 255));
}

TEST(PlaneStatistics, EqualizeSpreadsTheLevels) {
    Bytes bytes{10, 10, 20, 30};
    CPlane8u plane = CPlane8u::Over(bytes.data(), 2, 2);
    EqualizeHistogram(plane);
    EXPECT_EQ(bytes, (Bytes{127, 127, 191, 255}));
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 5}, {8, 1}, {101, 33}}) {
        CPlane8u random = RandomPlane(width, height, 4);
        for (size_t i = 0; i < random.Size(); ++i) random.data[i] = static_cast<uint8_t>(random.data[i] % 77);
        Bytes expected = BytesOf(random);
        model::EqualizeHistogram(expected.data(), static_cast<int64_t>(expected.size()));
        EqualizeHistogram(random);
        EXPECT_EQ(BytesOf(random), expected);
    }
    CPlane8u empty;
    EqualizeHistogram(empty);
}

TEST(PlaneStatistics, EqualizeOfALargePlaneDoesNotOverflow) {
    CPlane8u plane(4300, 4000);
    plane.Fill(3);
    EqualizeHistogram(plane);
    EXPECT_EQ(plane.data[0], 255);
    EXPECT_EQ(plane.data[plane.Size() - 1], 255);
}

TEST(PlaneStatistics, ThresholdReplacesBothEnds) {
    Bytes bytes{0, 49, 50, 100, 150, 151, 255, 75};
    CPlane8u plane = CPlane8u::Over(bytes.data(), 4, 2);
    ThresholdPlane(plane, 50, 1, 150, 2);
    const Bytes expected{1, 1, 50, 100, 150, 2, 2, 75};
    EXPECT_EQ(bytes, expected);
    ThresholdPlane(plane, 150, 9, 50, 9);
    EXPECT_EQ(bytes, expected);
}

// ---- geometry --------------------------------------------------------------------------------------

TEST(PlaneGeometry, ResizePlaneMatchesTheModel) {
    const CPlane8u source = RandomPlane(31, 19, 1);
    for (const auto& [width, height] : {std::pair{62, 38}, {15, 9}, {1, 1}, {31, 40}, {2, 3}}) {
        CPlane8u fast = RandomPlane(width, height, 2), plain(fast);
        ResizePlane(source, fast);
        model::PrimResize8uC1(source.data, 31, 19, 31, 0, 0, 31, 19, plain.data, width, width, height,
                              static_cast<double>(width) / 31, static_cast<double>(height) / 19, 2);
        EXPECT_EQ(BytesOf(fast), BytesOf(plain));
    }
}

TEST(PlaneGeometry, RemapPlaneReadsAMapOfTheDestination) {
    const CPlane8u source = RandomPlane(20, 10, 1);
    const std::vector<float> xMap(6 * 4, 19.0f), yMap(6 * 4, 9.0f);
    CPlane8u target(6, 4);
    RemapPlane(source, xMap.data(), yMap.data(), target, 1);
    EXPECT_EQ(BytesOf(target), Bytes(24, source.Row(9)[19]));
    RemapPlane(source, nullptr, yMap.data(), target, 1);
    CPlane8u empty;
    RemapPlane(source, xMap.data(), yMap.data(), empty, 1);
    RemapPlane(empty, xMap.data(), yMap.data(), target, 1);
    EXPECT_EQ(BytesOf(target), Bytes(24, source.Row(9)[19]));
}

TEST(PlaneRelief, DisplaceLeavesTheLastColumn) {
    const CPlane8u bump = RandomPlane(9, 7, 1), source = RandomPlane(9, 7, 2);
    CPlane8u target(9, 7);
    target.Fill(77);
    DisplaceByGradient(bump, source, target);
    for (int32_t y = 0; y < 7; ++y) EXPECT_EQ(target.Row(y)[8], 77);
    for (int32_t x = 0; x < 8; ++x) {
        EXPECT_EQ(target.Row(0)[x], target.Row(1)[x]);
        EXPECT_EQ(target.Row(6)[x], target.Row(5)[x]);
    }
    for (int32_t y = 0; y < 7; ++y) EXPECT_EQ(target.Row(y)[0], target.Row(y)[1]);
}

TEST(PlaneRelief, OnlyTheHorizontalSlopeBrightens) {
    CPlane8u bump(9, 9), source(9, 9), target(9, 9);
    source.Fill(100);
    for (int32_t y = 0; y < 9; ++y) {
        for (int32_t x = 0; x < 9; ++x) bump.Row(y)[x] = static_cast<uint8_t>(200 - 10 * x);
    }
    DisplaceByGradient(bump, source, target);
    EXPECT_EQ(target.Row(4)[4], 120);
    for (int32_t y = 0; y < 9; ++y) {
        for (int32_t x = 0; x < 9; ++x) bump.Row(y)[x] = static_cast<uint8_t>(200 - 10 * y);
    }
    DisplaceByGradient(bump, source, target);
    EXPECT_EQ(target.Row(4)[4], 100);
}

TEST(PlaneRelief, DisplaceAndShadeMatchTheModels) {
    for (const auto& [width, height] :
         {std::pair{1, 1}, {1, 5}, {5, 1}, {2, 2}, {2, 5}, {5, 2}, {3, 3}, {40, 30}, {700, 9}}) {
        for (const uint64_t seed : {1u, 2u, 3u}) {
            CPlane8u bump = RandomPlane(width, height, seed);
            if (seed == 2) {  // gentle
                for (size_t i = 0; i < bump.Size(); ++i) {
                    bump.data[i] = static_cast<uint8_t>(100 + bump.data[i] % 4);
                }
            }
            if (seed == 3) bump.Fill(100);  // level
            const CPlane8u source = RandomPlane(width, height, 9);
            CPlane8u fast = RandomPlane(width, height, 5), plain(fast);
            DisplaceByGradient(bump, source, fast);
            model::DisplaceByGradient(bump.data, source.data, plain.data, width, height);
            ASSERT_EQ(BytesOf(fast), BytesOf(plain)) << width << "x" << height;
            for (const int32_t bias : {45, 0, 128, -127, 300, 383, -384, kHuge, -kHuge - 1}) {
                ShadeByGradient(bump, fast, bias);
                model::ShadeByGradient(bump.data, plain.data, width, height, bias);
                ASSERT_EQ(BytesOf(fast), BytesOf(plain)) << width << "x" << height << " bias " << bias;
            }
        }
    }
}

TEST(PlaneRelief, UnlikeSizesAreLeftAlone) {
    const CPlane8u source = RandomPlane(9, 7, 1), other = RandomPlane(7, 9, 2);
    CPlane8u target = RandomPlane(9, 7, 3), otherTarget = RandomPlane(7, 9, 4);
    const Bytes before = BytesOf(target), otherBefore = BytesOf(otherTarget);
    DisplaceByGradient(other, source, target);
    DisplaceByGradient(source, other, target);
    DisplaceByGradient(source, source, otherTarget);
    ShadeByGradient(source, otherTarget, 45);
    CPlane8u empty;
    DisplaceByGradient(empty, source, target);
    DisplaceByGradient(source, empty, target);
    DisplaceByGradient(source, source, empty);
    ShadeByGradient(empty, target, 45);
    ShadeByGradient(source, empty, 45);
    EXPECT_EQ(BytesOf(target), before);
    EXPECT_EQ(BytesOf(otherTarget), otherBefore);
}

// ---- chance ----------------------------------------------------------------------------------------

TEST(PlaneChance, RandomPointDrawsTwiceXFirst) {
    const CPlane8u plane(13, 7);
    std::srand(5);
    const int x = std::rand(), y = std::rand(), next = std::rand();
    std::srand(5);
    const PlanePoint point = RandomPoint(plane, std::rand);
    EXPECT_EQ(point.x, x % 13);
    EXPECT_EQ(point.y, y % 7);
    EXPECT_EQ(std::rand(), next);
    std::srand(5);
    const PlanePoint none = RandomPoint(CPlane8u(), std::rand);
    EXPECT_EQ(none.x, 0);
    EXPECT_EQ(none.y, 0);
    EXPECT_EQ(std::rand(), next);
}

TEST(PlaneChance, RandomChanceComparesStrictly) {
    for (unsigned seed = 1; seed < 200; ++seed) {
        std::srand(seed);
        const int draw = std::rand() % 10000;
        const auto chance = [seed](double p) {
            std::srand(seed);
            return RandomChance(p, std::rand);
        };
        EXPECT_EQ(chance(draw / 10000.0), draw / 10000.0 * 10000.0 > draw);
        EXPECT_TRUE(chance((draw + 0.5) / 10000.0));
        EXPECT_FALSE(chance((draw - 0.5) / 10000.0));
        EXPECT_TRUE(chance(1.0));
        EXPECT_FALSE(chance(0.0));
    }
}

// ---- Gaussian kernel -------------------------------------------------------------------------------

TEST(GaussKernel1D, BuildsSevenTapsForSigmaOne) {
    CGaussKernel1D kernel;
    ASSERT_TRUE(kernel.Build(1.0, 0));
    ASSERT_EQ(kernel.size, 7);
    // 2 / (exp(-9 / 2) / sqrt(6.2831852)) = 451.27
    EXPECT_EQ(kernel.divisor, 451);
    EXPECT_EQ(std::vector<int32_t>(kernel.taps, kernel.taps + 7),
              (std::vector<int32_t>{1, 24, 109, 179, 109, 24, 1}));
}

TEST(GaussKernel1D, TakesAGivenSizeAsItStands) {
    CGaussKernel1D kernel;
    ASSERT_TRUE(kernel.Build(1.0, 4));
    EXPECT_EQ(kernel.size, 4);
    EXPECT_EQ(kernel.divisor, 37);  // half is 2: 2 / (exp(-2) / 2.5066)
    EXPECT_EQ(std::vector<int32_t>(kernel.taps, kernel.taps + 4), (std::vector<int32_t>{1, 8, 14, 8}));
    ASSERT_TRUE(kernel.Build(2.0, 0));
    EXPECT_EQ(kernel.size, 13);
    ASSERT_TRUE(kernel.Build(1.2, 0));  // 8.2 is even when truncated
    EXPECT_EQ(kernel.size, 9);
}

TEST(GaussKernel1D, RefusesWhatHasNoBell) {
    CGaussKernel1D kernel;
    for (const auto& [sigma, size] : {std::pair{0.0, 5},
                                      {-1.0, 5},
                                      {std::nan(""), 5},
                                      {1.0, -1},
                                      {0.1, 99},
                                      {1e9, 0},
                                      {1.0, 40000},
                                      {1.0, kHuge},
                                      {HUGE_VAL, 0},
                                      {HUGE_VAL, 3}}) {
        ASSERT_TRUE(kernel.Build(1.0, 0));
        EXPECT_FALSE(kernel.Build(sigma, size)) << sigma << " " << size;
        EXPECT_EQ(kernel.taps, nullptr);
        EXPECT_EQ(kernel.size, 0);
        EXPECT_EQ(kernel.divisor, 0);
    }
}

TEST(GaussKernel1D, NarrowBellFiltersNothing) {
    CGaussKernel1D kernel;
    ASSERT_TRUE(kernel.Build(0.1, 0));
    EXPECT_EQ(kernel.size, 1);
    EXPECT_EQ(kernel.divisor, 0);
    const CPlane8u source = RandomPlane(5, 5, 1);
    CPlane8u target(5, 5);
    kernel.FilterColumns(source, target);
    kernel.FilterRows(source, target);
    EXPECT_EQ(BytesOf(target), Bytes(25, 0));
}

TEST(GaussKernel1D, FiltersAllButTheEnds) {
    for (const int32_t size : {3, 4, 7}) {
        CGaussKernel1D kernel;
        ASSERT_TRUE(kernel.Build(1.5, size));
        const int32_t half = size / 2;
        for (const auto& [width, height] : {std::pair{20, 15}, {6, 30}, {1, 9}, {9, 1}, {7, 7}}) {
            const CPlane8u source = RandomPlane(width, height, 1);
            CPlane8u columns = RandomPlane(width, height, 2), rows(columns);
            CPlane8u expectedColumns(columns), expectedRows(columns);
            if (height > 2 * half) {
                PrimFilterColumn8uC1(source.Row(half), width, expectedColumns.Row(half), width, width,
                                     height - 2 * half, kernel.taps, size, half, kernel.divisor);
            }
            if (width > 2 * half) {
                PrimFilterRow8uC1(source.data + half, width, expectedRows.data + half, width,
                                  width - 2 * half, height, kernel.taps, size, half, kernel.divisor);
            }
            kernel.FilterColumns(source, columns);
            kernel.FilterRows(source, rows);
            EXPECT_EQ(BytesOf(columns), BytesOf(expectedColumns)) << size << " " << width << "x" << height;
            EXPECT_EQ(BytesOf(rows), BytesOf(expectedRows)) << size << " " << width << "x" << height;
        }
    }
}

TEST(GaussKernel1D, LeavesPlanesAloneThatDoNotFit) {
    CGaussKernel1D kernel;
    ASSERT_TRUE(kernel.Build(1.0, 0));
    const CPlane8u source = RandomPlane(12, 12, 1);
    CPlane8u narrow(11, 12), high(12, 13), wide(13, 12), low(12, 11), empty;
    kernel.FilterColumns(source, narrow);
    kernel.FilterColumns(source, high);
    kernel.FilterRows(source, wide);
    kernel.FilterRows(source, low);
    kernel.FilterRows(source, empty);
    kernel.FilterColumns(empty, wide);
    for (const CPlane8u* plane : {&narrow, &high, &wide, &low}) {
        EXPECT_EQ(BytesOf(*plane), Bytes(plane->Size(), 0));
    }
    CPlane8u target(12, 12);
    CGaussKernel1D().FilterRows(source, target);
    CGaussKernel1D moved(std::move(kernel));
    kernel = CGaussKernel1D();
    kernel.FilterColumns(source, target);
    EXPECT_EQ(BytesOf(target), Bytes(144, 0));
    moved.FilterColumns(source, target);
    EXPECT_NE(BytesOf(target), Bytes(144, 0));
}

// ---- gradient image --------------------------------------------------------------------------------

TEST(GradientImage, AllocatesZeros) {
    CGradientImage image;
    EXPECT_EQ(image.dx, nullptr);
    ASSERT_TRUE(image.Allocate(5, 4));
    EXPECT_EQ(image.width, 5);
    EXPECT_EQ(image.height, 4);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(image.dx[i], 0);
        EXPECT_EQ(image.dy[i], 0);
    }
    for (const auto& [width, height] : {std::pair{0, 4}, {4, -1}, {kHuge, kHuge}}) {
        ASSERT_TRUE(image.Allocate(5, 4));
        EXPECT_FALSE(image.Allocate(width, height));
        EXPECT_EQ(image.dx, nullptr);
        EXPECT_EQ(image.dy, nullptr);
        EXPECT_EQ(image.width, 0);
        EXPECT_EQ(image.height, 0);
    }
    ASSERT_TRUE(image.Allocate(5, 4));
    CGradientImage other(std::move(image));
    image = std::move(other);
    EXPECT_EQ(image.width, 5);
    image.Release();
    EXPECT_EQ(image.dx, nullptr);
}

TEST(GradientImage, SobelOfTheInterior) {
    for (const auto& [width, height] : {std::pair{3, 3}, {8, 6}, {1, 5}, {2, 2}}) {
        const CPlane8u plane = RandomPlane(width + 2, height + 1, 1);  // a larger plane has its own row step
        CGradientImage image;
        ASSERT_TRUE(image.Allocate(width, height));
        image.ComputeSobel(plane);
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                int dx = 0, dy = 0;
                if (x > 0 && y > 0 && x < width - 1 && y < height - 1) {
                    for (int32_t i = -1; i <= 1; ++i) {
                        const int weight = i == 0 ? 2 : 1;
                        dx += weight * (plane.Row(y + 1)[x + i] - plane.Row(y - 1)[x + i]);
                        dy += weight * (plane.Row(y + i)[x - 1] - plane.Row(y + i)[x + 1]);
                    }
                }
                ASSERT_EQ(image.dx[y * width + x], dx);
                ASSERT_EQ(image.dy[y * width + x], dy);
            }
        }
    }
}

TEST(GradientImage, SmallerPlaneIsIgnored) {
    CGradientImage image;
    ASSERT_TRUE(image.Allocate(6, 6));
    image.ComputeSobel(RandomPlane(5, 6, 1));
    image.ComputeSobel(RandomPlane(6, 5, 1));
    image.ComputeSobel(CPlane8u());
    for (int i = 0; i < 36; ++i) EXPECT_EQ(image.dx[i] | image.dy[i], 0);
    CGradientImage().ComputeSobel(RandomPlane(6, 6, 1));
}

}  // namespace
