// The plane itself: ownership, copies, clipping.
#include "imaging/Plane8u.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "tests/imaging/TestPlanes.h"

namespace {

void ExpectZero(const CPlane8u& plane) {
    EXPECT_EQ(plane.data, nullptr);
    EXPECT_EQ(plane.width, 0);
    EXPECT_EQ(plane.height, 0);
    EXPECT_FALSE(plane.owned);
    EXPECT_TRUE(plane.Empty());
    EXPECT_EQ(plane.Size(), 0u);
}

// ---- ownership -------------------------------------------------------------------------------------

TEST(Plane8u, StartsEmpty) {
    ExpectZero(CPlane8u());
}

TEST(Plane8u, ConstructorAllocatesZeros) {
    const CPlane8u plane(7, 5);
    EXPECT_TRUE(plane.owned);
    EXPECT_EQ(plane.width, 7);
    EXPECT_EQ(plane.height, 5);
    EXPECT_EQ(BytesOf(plane), Bytes(35, 0));
}

TEST(Plane8u, ConstructorStaysEmptyWithoutMemory) {
    ExpectZero(CPlane8u(0, 5));
    ExpectZero(CPlane8u(5, -1));
    ExpectZero(CPlane8u(kHuge, kHuge));
}

TEST(Plane8u, FailedAllocationLosesOnlyTheData) {
    for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-4, -4}, {kHuge, 2}, {1 << 16, 1 << 15}}) {
        CPlane8u plane(3, 2);
        EXPECT_FALSE(plane.Allocate(width, height));
        EXPECT_EQ(plane.data, nullptr);
        EXPECT_EQ(plane.width, 3);
        EXPECT_EQ(plane.height, 2);
        EXPECT_TRUE(plane.owned);
        EXPECT_TRUE(plane.Empty());
        plane.Fill(1);  // has no effect
        EXPECT_TRUE(plane.Allocate(2, 2));
        EXPECT_EQ(BytesOf(plane), Bytes(4, 0));
    }
}

TEST(Plane8u, AllocateReleasesWhatItHeld) {
    // Leaks and double frees show under the address sanitizer.
    CPlane8u plane(100, 100);
    plane.Fill(9);
    EXPECT_TRUE(plane.Allocate(50, 4));
    EXPECT_EQ(BytesOf(plane), Bytes(200, 0));
    Bytes foreign(12, 3);
    plane.Attach(foreign.data(), 4, 3);
    EXPECT_FALSE(plane.owned);
    EXPECT_TRUE(plane.Allocate(4, 3));
    EXPECT_TRUE(plane.owned);
    EXPECT_EQ(foreign, Bytes(12, 3));
}

TEST(Plane8u, ReleaseLeavesForeignMemoryAlone) {
    Bytes foreign(12, 3);
    CPlane8u plane;
    plane.Attach(foreign.data(), 4, 3);
    EXPECT_EQ(plane.data, foreign.data());
    plane.Release();
    ExpectZero(plane);
    EXPECT_EQ(foreign, Bytes(12, 3));
    plane.Release();
    ExpectZero(plane);
}

TEST(Plane8u, OverLooksAtMemory) {
    Bytes foreign(12, 3);
    {
        CPlane8u plane = CPlane8u::Over(foreign.data(), 4, 3);
        EXPECT_FALSE(plane.owned);
        plane.Fill(8);
    }
    EXPECT_EQ(foreign, Bytes(12, 8));
}

TEST(Plane8u, CopyIsDeep) {
    const CPlane8u original = RandomPlane(6, 4, 1);
    const Bytes before = BytesOf(original);
    CPlane8u copy(original);
    EXPECT_NE(copy.data, original.data);
    EXPECT_TRUE(copy.owned);
    EXPECT_EQ(BytesOf(copy), before);
    copy.Fill(0);
    EXPECT_EQ(BytesOf(original), before);

    ExpectZero(CPlane8u(CPlane8u()));
    Bytes foreign(12, 3);
    const CPlane8u view = CPlane8u::Over(foreign.data(), 4, 3);
    const CPlane8u ofView(view);
    EXPECT_TRUE(ofView.owned);
    EXPECT_NE(ofView.data, foreign.data());
    EXPECT_EQ(BytesOf(ofView), foreign);
}

TEST(Plane8u, MovesAndAssigns) {
    CPlane8u a = RandomPlane(6, 4, 1);
    const Bytes bytes = BytesOf(a);
    const uint8_t* const block = a.data;
    CPlane8u b(std::move(a));
    EXPECT_EQ(b.data, block);
    CPlane8u c(2, 2);
    c = std::move(b);
    EXPECT_EQ(c.data, block);
    CPlane8u d;
    d = c;
    EXPECT_NE(d.data, block);
    EXPECT_EQ(BytesOf(d), bytes);
    const CPlane8u& same = d;
    d = same;
    EXPECT_EQ(BytesOf(d), bytes);
}

TEST(Plane8u, RequireThrowsWithoutMemory) {
    CPlane8u plane;
    EXPECT_NO_THROW(Require(plane.Allocate(2, 2)));
    EXPECT_THROW(Require(plane.Allocate(kHuge, kHuge)), std::bad_alloc);
}

// ---- whole planes ----------------------------------------------------------------------------------

TEST(Plane8u, EmptyPlanesAreLeftAlone) {
    uint8_t guard[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    for (const auto& [width, height] : {std::pair{0, 0}, {0, 3}, {3, 0}, {-3, 3}, {3, -3}}) {
        CPlane8u plane = CPlane8u::Over(guard + 4, width, height);
        CPlane8u nothing, some(3, 3);
        for (CPlane8u* target : {&plane, &nothing}) {
            target->Fill(7);
            target->CopyPixels(some);
            target->Paste(some, 0, 0);
            target->FillBorder(1, 7);
            target->CopyWithBorder(some, 1);
            target->CopyRegion(some, 0, 0);
            target->ResizeRegion(some, 3, 3, 0, 0);
            target->ReplicateBorder(1);
            target->SubtractBoost(some);
            target->Invert();
            target->Mirror(2);
            EXPECT_EQ(target->MeanByte(), 0);
            some.CopyPixels(*target);
            some.Paste(*target, 0, 0);
            some.CopyWithBorder(*target, 0);
            some.CopyRegion(*target, 0, 0);
            some.ResizeRegion(*target, 3, 3, 0, 0);
        }
        EXPECT_EQ(BytesOf(some), Bytes(9, 0));
    }
    for (int i = 0; i < 9; ++i) EXPECT_EQ(guard[i], i + 1);
}

TEST(Plane8u, FillInvertMeanAndMirror) {
    CPlane8u plane(3, 2);
    plane.Fill(200);
    EXPECT_EQ(BytesOf(plane), Bytes(6, 200));
    plane.Invert();
    EXPECT_EQ(BytesOf(plane), Bytes(6, 55));
    EXPECT_EQ(plane.MeanByte(), 55);
    plane.data[0] = 60;  // the mean is 55.83
    EXPECT_EQ(plane.MeanByte(), 55);
    plane.Mirror(1);
    EXPECT_EQ(BytesOf(plane), (Bytes{55, 55, 60, 55, 55, 55}));
    plane.Mirror(0);
    EXPECT_EQ(BytesOf(plane), (Bytes{55, 55, 55, 55, 55, 60}));
    plane.Mirror(2);
    EXPECT_EQ(BytesOf(plane), (Bytes{60, 55, 55, 55, 55, 55}));
    plane.Mirror(3);
    EXPECT_EQ(BytesOf(plane), (Bytes{60, 55, 55, 55, 55, 55}));
}

TEST(Plane8u, CopyPixelsTakesTheSmallerCount) {
    const CPlane8u source = RandomPlane(5, 4, 1);
    const Bytes bytes = BytesOf(source);
    CPlane8u smaller(3, 3), larger(6, 6);
    smaller.CopyPixels(source);
    EXPECT_EQ(BytesOf(smaller), Bytes(bytes.begin(), bytes.begin() + 9));
    larger.Fill(1);
    larger.CopyPixels(source);
    Bytes expected(36, 1);
    std::copy(bytes.begin(), bytes.end(), expected.begin());
    EXPECT_EQ(BytesOf(larger), expected);
    larger.CopyPixels(larger);
    EXPECT_EQ(BytesOf(larger), expected);
}

TEST(Plane8u, PasteIsClipped) {
    const CPlane8u source = RandomPlane(4, 3, 1);
    for (int32_t y = -5; y <= 8; ++y) {
        for (int32_t x = -6; x <= 9; ++x) {
            CPlane8u target = RandomPlane(7, 6, 2);
            const CPlane8u before(target);
            target.Paste(source, x, y);
            for (int32_t row = 0; row < 6; ++row) {
                for (int32_t column = 0; column < 7; ++column) {
                    const int32_t sx = column - x, sy = row - y;
                    const bool covered = sx >= 0 && sx < 4 && sy >= 0 && sy < 3;
                    ASSERT_EQ(target.Row(row)[column],
                              covered ? source.Row(sy)[sx] : before.Row(row)[column]);
                }
            }
        }
    }
    CPlane8u target = RandomPlane(7, 6, 2);
    const Bytes before = BytesOf(target);
    for (const int32_t far : {kHuge, -kHuge, -kHuge - 1}) {
        target.Paste(source, far, 0);
        target.Paste(source, 0, far);
        target.CopyRegion(source, far, 0);
        target.CopyRegion(source, 0, far);
    }
    EXPECT_EQ(BytesOf(target), before);
}

TEST(Plane8u, CopyRegionIsClipped) {
    const CPlane8u source = RandomPlane(7, 6, 1);
    for (int32_t y = -5; y <= 8; ++y) {
        for (int32_t x = -6; x <= 9; ++x) {
            CPlane8u target = RandomPlane(4, 3, 2);
            const CPlane8u before(target);
            target.CopyRegion(source, x, y);
            for (int32_t row = 0; row < 3; ++row) {
                for (int32_t column = 0; column < 4; ++column) {
                    const int32_t sx = column + x, sy = row + y;
                    const bool there = sx >= 0 && sx < 7 && sy >= 0 && sy < 6;
                    ASSERT_EQ(target.Row(row)[column], there ? source.Row(sy)[sx] : before.Row(row)[column]);
                }
            }
        }
    }
}

TEST(Plane8u, FillBorderIsCutToThePlane) {
    for (int32_t height = 1; height <= 7; ++height) {
        for (int32_t width = 1; width <= 7; ++width) {
            for (const int32_t thickness : {-1, 0, 1, 2, 3, 4, 7, 100, kHuge}) {
                CPlane8u plane(width, height);
                plane.FillBorder(thickness, 9);
                for (int32_t y = 0; y < height; ++y) {
                    for (int32_t x = 0; x < width; ++x) {
                        const int32_t depth = std::min({x, y, width - 1 - x, height - 1 - y});
                        ASSERT_EQ(plane.Row(y)[x], depth < thickness ? 9 : 0);
                    }
                }
            }
        }
    }
}

TEST(Plane8u, ReplicateBorderRepeatsTheInside) {
    for (int32_t height = 1; height <= 7; ++height) {
        for (int32_t width = 1; width <= 7; ++width) {
            for (const int32_t border : {-1, 0, 1, 2, 3, 4, kHuge}) {
                CPlane8u plane = RandomPlane(width, height, 3);
                const CPlane8u before(plane);
                plane.ReplicateBorder(border);
                const bool inside = border > 0 && border <= 3 && width > 2 * border && height > 2 * border;
                for (int32_t y = 0; y < height; ++y) {
                    for (int32_t x = 0; x < width; ++x) {
                        const int32_t sx = inside ? std::clamp(x, border, width - 1 - border) : x;
                        const int32_t sy = inside ? std::clamp(y, border, height - 1 - border) : y;
                        ASSERT_EQ(plane.Row(y)[x], before.Row(sy)[sx]);
                    }
                }
            }
        }
    }
}

TEST(Plane8u, CopyWithBorderNeedsRoom) {
    const CPlane8u source = RandomPlane(4, 3, 1);
    CPlane8u target(10, 9);
    target.CopyWithBorder(source, 3);
    for (int32_t y = 0; y < 9; ++y) {
        for (int32_t x = 0; x < 10; ++x) {
            ASSERT_EQ(target.Row(y)[x], source.Row(std::clamp(y - 3, 0, 2))[std::clamp(x - 3, 0, 3)]);
        }
    }
    CPlane8u tight(6, 9);
    tight.CopyWithBorder(source, 3);
    EXPECT_EQ(BytesOf(tight), Bytes(54, 0));
    target.Fill(1);
    target.CopyWithBorder(source, -1);
    EXPECT_EQ(BytesOf(target), Bytes(90, 1));
}

TEST(Plane8u, SubtractBoostSaturates) {
    Bytes mine{100, 100, 100, 0, 255, 20}, theirs{100, 99, 80, 10, 0, 5};
    CPlane8u plane = CPlane8u::Over(mine.data(), 3, 2);
    const CPlane8u other = CPlane8u::Over(theirs.data(), 3, 2);
    EXPECT_EQ(&plane.SubtractBoost(other), &plane);
    EXPECT_EQ(mine, (Bytes{0, 16, 255, 0, 255, 240}));
    plane.SubtractBoost(CPlane8u(2, 3));  // another shape
    EXPECT_EQ(mine, (Bytes{0, 16, 255, 0, 255, 240}));
}

TEST(Plane8u, ResizeRegionTakesTheRectangle) {
    CPlane8u source = RandomPlane(12, 10, 1);
    CPlane8u part(4, 3), direct(9, 7), viaCopy(9, 7);
    part.CopyRegion(source, 5, 2);
    direct.ResizeRegion(source, 4, 3, 5, 2);
    ResizePlane(part, viaCopy);
    EXPECT_EQ(BytesOf(direct), BytesOf(viaCopy));

    const Bytes before = BytesOf(direct);
    direct.ResizeRegion(source, 0, 3, 5, 2);
    direct.ResizeRegion(source, 4, -3, 5, 2);
    direct.ResizeRegion(source, 4, 3, -1, 2);
    direct.ResizeRegion(source, 4, 3, 12, 2);
    EXPECT_EQ(BytesOf(direct), before);

    // Half of the rectangle lies beyond the right edge: half of the columns stay.
    CPlane8u cut(8, 8);
    cut.Fill(1);
    source.Fill(200);
    cut.ResizeRegion(source, 8, 8, 8, 0);
    for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(cut.Row(0)[x], x < 4 ? 200 : 1);
}

}  // namespace
