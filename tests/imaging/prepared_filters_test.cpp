// Filters that copy the ring, and filters and scalings with everything prepared: the same bytes as the forms
// without.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "imaging/BoxFilter.h"
#include "imaging/GaussKernel1D.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"
#include "tests/imaging/TestPlanes.h"

namespace {

/// The sizes at which rings meet, and some beyond.
const std::vector<std::pair<int32_t, int32_t>> kRingSizes = {{1, 1}, {2, 9}, {9, 2},  {3, 3},
                                                             {4, 4}, {5, 5}, {6, 12}, {33, 17}};

TEST(PlaneFilters, CopiedRingEqualsACopyBeforehand) {
    using Filter = void (*)(const CPlane8u&, CPlane8u&, FilterRing);
    constexpr Filter kDilate = Dilate3;
    for (const Filter filter : {FilterGauss3, FilterGauss5, FilterLowpass3, FilterLowpass5, kDilate}) {
        for (const auto& [width, height] : kRingSizes) {
            const CPlane8u source = RandomPlane(width, height, 1);
            CPlane8u target = RandomPlane(width, height, 2), expected(source);
            filter(source, target, FilterRing::kCopied);
            filter(source, expected, FilterRing::kKept);
            EXPECT_EQ(BytesOf(target), BytesOf(expected)) << width << "x" << height;
        }
    }
}

TEST(PlaneFilters, CopyRingLeavesTheInterior) {
    for (const auto& [width, height] : kRingSizes) {
        for (const int32_t thickness : {0, 1, 2, 3}) {
            const CPlane8u source = RandomPlane(width, height, 1);
            CPlane8u target = RandomPlane(width, height, 2);
            const CPlane8u before(target);
            CopyRing(source, target, thickness);
            for (int32_t y = 0; y < height; ++y) {
                for (int32_t x = 0; x < width; ++x) {
                    const int32_t distance = std::min({x, y, width - 1 - x, height - 1 - y});
                    const CPlane8u& from = distance < thickness ? source : before;
                    ASSERT_EQ(target.Row(y)[x], from.Row(y)[x]) << thickness << ": " << x << ", " << y;
                }
            }
        }
    }
    CPlane8u other = RandomPlane(4, 5, 2);
    const Bytes before = BytesOf(other);
    CopyRing(RandomPlane(5, 4, 1), other, 1);
    EXPECT_EQ(BytesOf(other), before);
}

TEST(PlaneFilters, DilateBetweenPlanesEqualsTheFormInPlace) {
    for (const auto& [width, height] : kRingSizes) {
        const CPlane8u source = RandomPlane(width, height, 1);
        CPlane8u target(width, height), inPlace(source);
        Dilate3(source, target, FilterRing::kCopied);
        Dilate3(inPlace);
        EXPECT_EQ(BytesOf(target), BytesOf(inPlace)) << width << "x" << height;
    }
}

TEST(BoxFilter, EqualsTheFormWithoutPreparation) {
    for (const int32_t mask : {1, 2, 3, 5, 20, 130}) {
        for (const auto& [width, height] : {std::pair{1, 1}, {4, 9}, {7, 7}, {30, 50}, {280, 270}}) {
            BoxFilter box(width, height, mask);
            for (const uint64_t seed : {1U, 2U}) {  // leftovers of one picture in memory must not matter
                const CPlane8u source = RandomPlane(width, height, seed);
                CPlane8u target = RandomPlane(width, height, 3), inPlace(source), expected(source);
                FilterBoxInPlace(expected, mask);
                box.Apply(source, target);
                box.ApplyInPlace(inPlace);
                EXPECT_EQ(BytesOf(target), BytesOf(expected)) << mask << ": " << width << "x" << height;
                EXPECT_EQ(BytesOf(inPlace), BytesOf(expected)) << mask << ": " << width << "x" << height;
            }
        }
    }
    BoxFilter box(9, 9, 3);
    CPlane8u other = RandomPlane(9, 8, 1);
    const Bytes before = BytesOf(other);
    box.ApplyInPlace(other);
    BoxFilter().ApplyInPlace(other);
    EXPECT_EQ(BytesOf(other), before);
}

TEST(PlaneFilters, GaussInPlaceEqualsTheFormFromACopy) {
    for (const auto& [filter, inPlace] :
         {std::pair{&FilterGauss3, &FilterGauss3InPlace}, {&FilterGauss5, &FilterGauss5InPlace}}) {
        // Heights around those at which a band ends.
        for (const int32_t height : {1, 2, 3, 4, 5, 6, 16, 17, 18, 19, 20, 21, 22, 33, 36, 37, 100}) {
            for (const int32_t width : {1, 2, 3, 4, 5, 33}) {
                const CPlane8u source = RandomPlane(width, height, 1);
                CPlane8u scratch = RandomPlane(width, kBandHeight, 2), plane(source), expected(source);
                filter(source, expected, FilterRing::kKept);
                inPlace(plane, scratch);
                EXPECT_EQ(BytesOf(plane), BytesOf(expected)) << width << "x" << height;
            }
        }
        CPlane8u plane = RandomPlane(9, 8, 1), empty;
        const Bytes before = BytesOf(plane);
        for (const auto& [width, height] : {std::pair{8, kBandHeight}, {9, kBandHeight - 1}, {9, 0}}) {
            CPlane8u scratch(width, height);
            inPlace(plane, scratch);
            inPlace(empty, scratch);
        }
        EXPECT_EQ(BytesOf(plane), before);
    }
}

TEST(GaussKernel1D, CopiedEndsEqualACopyBeforehand) {
    using Filter = void (CGaussKernel1D::*)(const CPlane8u&, CPlane8u&, FilterRing) const;
    CGaussKernel1D none, narrow, even, odd;
    ASSERT_TRUE(narrow.Build(0.05, 0));
    ASSERT_TRUE(even.Build(1.5, 10));
    ASSERT_TRUE(odd.Build(0.8, 0));
    for (const Filter filter : {&CGaussKernel1D::FilterRows, &CGaussKernel1D::FilterColumns}) {
        for (const CGaussKernel1D* kernel : {&none, &narrow, &even, &odd}) {
            for (const auto& [width, height] : kRingSizes) {
                const CPlane8u source = RandomPlane(width, height, 1);
                CPlane8u target = RandomPlane(width, height, 2), expected(source);
                (kernel->*filter)(source, target, FilterRing::kCopied);
                (kernel->*filter)(source, expected, FilterRing::kKept);
                EXPECT_EQ(BytesOf(target), BytesOf(expected)) << width << "x" << height;
            }
        }
    }
}

TEST(ResizePlan, EqualsTheFormWithoutPreparation) {
    const PlaneSize sizes[] = {{1, 1}, {2, 3}, {31, 19}, {64, 48}, {15, 9}, {130, 40}};
    for (const PlaneSize from : sizes) {
        for (const PlaneSize to : sizes) {
            for (const PlaneRect part : {PlaneRect{0, 0, from.width, from.height},
                                         {1, 2, from.width - 2, from.height - 3},
                                         {0, 1, from.width + 5, from.height},
                                         {-1, 0, 1, 1},
                                         {from.width, 0, 1, 1}}) {
                ResizePlan plan(from, part, to);
                for (const uint64_t seed : {1U, 2U}) {
                    const CPlane8u source = RandomPlane(from.width, from.height, seed);
                    CPlane8u target = RandomPlane(to.width, to.height, 3), expected(target);
                    expected.ResizeRegion(source, part.width, part.height, part.x, part.y);
                    plan.Apply(source, target);
                    ASSERT_EQ(BytesOf(target), BytesOf(expected)) << from.width << " to " << to.width;
                }
            }
        }
    }
}

TEST(ResizePlan, LeavesPlanesOfOtherSizesAlone) {
    ResizePlan plan({8, 6}, {4, 3});
    CPlane8u target = RandomPlane(4, 4, 1), small = RandomPlane(4, 3, 1), empty;
    const Bytes before = BytesOf(target), smallBefore = BytesOf(small);
    plan.Apply(RandomPlane(8, 6, 2), target);
    plan.Apply(RandomPlane(6, 8, 2), small);
    plan.Apply(empty, small);
    plan.Apply(small, empty);
    ResizePlan().Apply(small, target);
    ResizePlan({0, 6}, {4, 3}).Apply(empty, small);
    ResizePlan({8, 6}, {4, 0}).Apply(small, empty);
    EXPECT_EQ(BytesOf(target), before);
    EXPECT_EQ(BytesOf(small), smallBefore);
}

}  // namespace
