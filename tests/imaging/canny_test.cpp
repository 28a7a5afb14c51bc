// The edge map.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/StatusOrder.h"
#include "tests/imaging/models/DetectionModels.h"

namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();

size_t Area(int32_t width, int32_t height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

// ---- edge map --------------------------------------------------------------------------------------------

/// Two gradients and the edge map made from them, rows packed.
struct Canny {
    int32_t width;
    int32_t height;
    std::vector<int16_t> dx = std::vector<int16_t>(Area(width, height));
    std::vector<int16_t> dy = std::vector<int16_t>(Area(width, height));
    std::vector<uint8_t> map = std::vector<uint8_t>(Area(width, height), 77);

    std::vector<uint8_t> Buffer() const {
        int32_t size = 0;
        EXPECT_EQ(PrimCannyGetBufferSize(width, height, &size), kPrimOk);
        return std::vector<uint8_t>(static_cast<size_t>(size));
    }

    void Run(float low, float high) {
        std::vector<uint8_t> buffer = Buffer();
        ASSERT_EQ(PrimCanny16s8u(dx.data(), 2 * width, dy.data(), 2 * width, map.data(), width, width, height,
                                 low, high, buffer.data()),
                  kPrimOk);
    }

    std::vector<uint8_t> Model(float low, float high) const {
        std::vector<uint8_t> expected(map.size());
        model::PrimCanny16s8u(dx.data(), 2 * width, dy.data(), 2 * width, expected.data(), width, width,
                              height, low, high, nullptr);
        return expected;
    }
};

struct CannyArguments {
    const int16_t* dx;
    int32_t dxStep = 16;
    const int16_t* dy;
    int32_t dyStep = 16;
    uint8_t* dst;
    int32_t dstStep = 8;
    int32_t width = 8;
    int32_t height = 4;
    float low = 10;
    float high = 20;
    uint8_t* buffer;
};

TEST(Canny, Statuses) {
    Canny canny = {8, 4};
    std::vector<uint8_t> buffer = canny.Buffer();
    const CannyArguments good = {
        .dx = canny.dx.data(), .dy = canny.dy.data(), .dst = canny.map.data(), .buffer = buffer.data()};
    const auto before = canny.map;
    using A = CannyArguments;
    ExpectStatusesInOrder<A>(
        good,
        [](const A& a) {
            return PrimCanny16s8u(a.dx, a.dxStep, a.dy, a.dyStep, a.dst, a.dstStep, a.width, a.height, a.low,
                                  a.high, a.buffer);
        },
        {{"null dx", kPrimNullError, [](A& a) { a.dx = nullptr; }},
         {"null dy", kPrimNullError, [](A& a) { a.dy = nullptr; }},
         {"null map", kPrimNullError, [](A& a) { a.dst = nullptr; }},
         {"null buffer", kPrimNullError, [](A& a) { a.buffer = nullptr; }},
         {"width 0", kPrimSizeError, [](A& a) { a.width = 0; }},
         {"height -1", kPrimSizeError, [](A& a) { a.height = -1; }},
         {"dx step", kPrimStepError, [](A& a) { a.dxStep = 15; }},
         {"dy step", kPrimStepError, [](A& a) { a.dyStep = 0; }},
         {"map step", kPrimStepError, [](A& a) { a.dstStep = 7; }},
         {"odd dx step", kPrimAlignmentError, [](A& a) { a.dxStep = 17; }},
         {"odd dy step", kPrimAlignmentError, [](A& a) { a.dyStep = 17; }},
         {"thresholds out of order", kPrimThresholdError, [](A& a) { a.high = 9; }},
         {"a threshold that is not a number", kPrimThresholdError,
          [](A& a) { a.low = std::numeric_limits<float>::quiet_NaN(); }}},
        [&] { return canny.map != before; });
}

TEST(Canny, BufferSizeStatuses) {
    int32_t size = -1;
    EXPECT_EQ(PrimCannyGetBufferSize(0, 0, nullptr), kPrimNullError);
    EXPECT_EQ(PrimCannyGetBufferSize(0, 4, &size), kPrimSizeError);
    EXPECT_EQ(PrimCannyGetBufferSize(4, -4, &size), kPrimSizeError);
    EXPECT_EQ(PrimCannyGetBufferSize(kMost, kMost, &size), kPrimSizeError);  // more than a size can hold
    EXPECT_EQ(PrimCannyGetBufferSize(kMost, 1, &size), kPrimSizeError);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(PrimCannyGetBufferSize(1, 1, &size), kPrimOk);
    EXPECT_GT(size, 0);
}

TEST(Canny, BufferNeedsNoAlignment) {
    Canny canny = {5, 3};
    std::fill_n(canny.dx.begin() + 5, 5, int16_t{100});
    std::vector<uint8_t> buffer = canny.Buffer();
    buffer.resize(buffer.size() + 3);
    for (size_t shift = 0; shift < 4; ++shift) {
        ASSERT_EQ(PrimCanny16s8u(canny.dx.data(), 10, canny.dy.data(), 10, canny.map.data(), 5, 5, 3, 10, 20,
                                 buffer.data() + shift),
                  kPrimOk);
        EXPECT_EQ(canny.map, canny.Model(10, 20));
    }
}

/// The centre of 3 by 3 against neighbours of which those of one sector are larger.
TEST(Canny, SectorsMeetAtMultiplesOf45DegreesLess22AndAHalf) {
    const auto expectSectors = [](int32_t a, int32_t b) {
        if (a > 32767 || b > 32767) {
            return;
        }
        for (const int32_t sign : {1, -1}) {
            for (int32_t neighbour = 0; neighbour < 4; ++neighbour) {  // the four that come first
                Canny canny = {3, 3};
                canny.dx[4] = static_cast<int16_t>(a);
                canny.dy[4] = static_cast<int16_t>(sign * b);
                const auto larger =
                    static_cast<size_t>(std::array{0, 1, 3, 6}[static_cast<size_t>(neighbour)]);
                canny.dx[larger] = kLeast >> 16;
                canny.dy[larger] = kLeast >> 16;
                canny.Run(0, 0);
                ASSERT_EQ(canny.map[4], canny.Model(0, 0)[4]) << a << ' ' << sign * b << ' ' << neighbour;
            }
        }
    };
    for (int32_t a = 1; a < 32768; a = a < 300 ? a + 1 : a + a / 64) {
        for (const double slope : {0.41421356237309503, 2.414213562373095}) {
            const auto meet = static_cast<int32_t>(slope * a);
            expectSectors(a, meet);
            expectSectors(a, meet + 1);
        }
        expectSectors(a, 0);
        expectSectors(0, a);
        expectSectors(a, a);
    }
}

TEST(Canny, ThresholdsAreNotPartOfWhatTheyDivide) {
    // A magnitude of 5 from 3 and 4, against thresholds at, next to and far from it.
    const auto kindOf = [](float low, float high) {
        Canny canny = {1, 1, {3}, {-4}};
        canny.Run(low, high);
        return canny.map[0];
    };
    EXPECT_EQ(kindOf(0, 0), 255);
    EXPECT_EQ(kindOf(-7, -5), 255);
    EXPECT_EQ(kindOf(0, std::nextafter(5.0f, 0.0f)), 255);
    EXPECT_EQ(kindOf(0, 5), 0);
    EXPECT_EQ(kindOf(5, 5), 0);
    EXPECT_EQ(kindOf(0, 1e30f), 0);
    EXPECT_EQ(kindOf(-std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity()), 0);
    Canny largest = {1, 1, {-32768}, {-32768}};
    largest.Run(1, 46340.94f);
    EXPECT_EQ(largest.map[0], 255);
    largest.Run(1, 46340.96f);
    EXPECT_EQ(largest.map[0], 0);
}

TEST(Canny, AnEdgeIsFollowedAllTheWay) {
    // A line that winds through the picture, weak except at one end.
    constexpr int32_t kSide = 201;
    Canny canny = {kSide, kSide};
    int32_t length = 0;
    for (int32_t y = 0; y < kSide; y += 2) {
        for (int32_t x = 0; x < kSide; ++x) {
            canny.dy[Area(kSide, y) + static_cast<size_t>(x)] = 50;
            ++length;
        }
        if (y + 1 < kSide) {
            canny.dx[Area(kSide, y + 1) + (y % 4 == 0 ? kSide - 1 : 0)] = 50;
        }
    }
    canny.Run(10, 60);
    EXPECT_EQ(std::ranges::count(canny.map, 255), 0);
    canny.dy[0] = 70;
    canny.Run(10, 60);
    EXPECT_EQ(canny.map, canny.Model(10, 60));
    EXPECT_GT(std::ranges::count(canny.map, 255), length / 2);
}

}  // namespace
