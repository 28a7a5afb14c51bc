// What the search for objects runs on: edge maps, integral images, classifier stages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/StatusOrder.h"
#include "tests/imaging/models/DetectionModels.h"
#include "tests/support/TestFrame.h"

namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();

size_t Area(int32_t width, int32_t height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

// ---- edge map --------------------------------------------------------------------------------------------

/// Two gradients and the map that comes of them, rows packed.
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
    EXPECT_EQ(PrimCannyGetBufferSize(kMost, kMost, &size), kPrimSizeError);  // more than a size can say
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
    // A line that winds through the picture, weak but for one end.
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

// ---- classifier stages -----------------------------------------------------------------------------------

struct InitArguments {
    PrimHaarState** state;
    const PrimRect* rects;
    const float* weights;
    const float* thresholds;
    const float* val1;
    const float* val2;
    const int32_t* counts;
    int32_t length = 2;
};

struct FreeState {
    void operator()(PrimHaarState* state) const { EXPECT_EQ(PrimHaarClassifierFree(state), kPrimOk); }
};
using StatePtr = std::unique_ptr<PrimHaarState, FreeState>;

/// One classifier of one rectangle of 2 by 2 pixels: 1 where its sum is at or above the deviation, else -1.
StatePtr BrightSquare() {
    const PrimRect rect = {0, 0, 2, 2};
    const float one = 1;
    const float minusOne = -1;
    const int32_t count = 1;
    PrimHaarState* state = nullptr;
    EXPECT_EQ(PrimHaarClassifierInit(&state, &rect, &one, &one, &minusOne, &one, &count, 1), kPrimOk);
    return StatePtr(state);
}

TEST(HaarClassifier, InitStatuses) {
    PrimHaarState* state = nullptr;
    const std::vector<PrimRect> rects(3, {0, 0, 1, 1});
    const std::vector<float> numbers(3, 1.0f);
    const std::vector<int32_t> counts = {1, 2};
    static const std::vector<int32_t> kNoRects = {1, 0};
    static const std::vector<PrimRect> kBad[] = {
        {{0, 0, 1, 1}, {-1, 0, 1, 1}, {0, 0, 1, 1}},    {{0, -1, 1, 1}, {0, 0, 1, 1}, {0, 0, 1, 1}},
        {{0, 0, 1, 1}, {0, 0, 1, 1}, {0, 0, 0, 1}},     {{0, 0, 1, 1}, {0, 0, 1, 1}, {0, 0, 1, -1}},
        {{0, 0, 1, 1}, {kMost, 0, 1, 1}, {0, 0, 1, 1}}, {{0, 0, 1, 1}, {0, 1, 1, kMost}, {0, 0, 1, 1}}};
    using A = InitArguments;
    std::vector<Fault<A>> faults = {
        {"null state", kPrimNullError, [](A& a) { a.state = nullptr; }},
        {"null rectangles", kPrimNullError, [](A& a) { a.rects = nullptr; }},
        {"null weights", kPrimNullError, [](A& a) { a.weights = nullptr; }},
        {"null thresholds", kPrimNullError, [](A& a) { a.thresholds = nullptr; }},
        {"null val1", kPrimNullError, [](A& a) { a.val1 = nullptr; }},
        {"null val2", kPrimNullError, [](A& a) { a.val2 = nullptr; }},
        {"null counts", kPrimNullError, [](A& a) { a.counts = nullptr; }},
        {"length -1", kPrimSizeError, [](A& a) { a.length = -1; }},
        {"classifier without rectangles", kPrimSizeError, [](A& a) { a.counts = kNoRects.data(); }}};
    for (const std::vector<PrimRect>& bad : kBad) {
        faults.push_back({"illegal rectangle", kPrimSizeError, [&](A& a) { a.rects = bad.data(); }});
    }
    ExpectStatusesInOrder<A>(
        {.state = &state,
         .rects = rects.data(),
         .weights = numbers.data(),
         .thresholds = numbers.data(),
         .val1 = numbers.data(),
         .val2 = numbers.data(),
         .counts = counts.data()},
        [](const A& a) {
            return PrimHaarClassifierInit(a.state, a.rects, a.weights, a.thresholds, a.val1, a.val2, a.counts,
                                          a.length);
        },
        faults, [&] { return state != nullptr; });
    EXPECT_EQ(PrimHaarClassifierFree(state), kPrimOk);
}

TEST(HaarClassifier, OtherStatuses) {
    EXPECT_EQ(PrimHaarClassifierFree(nullptr), kPrimNullError);
    const StatePtr stage = BrightSquare();
    int32_t size[2] = {-1, -1};
    EXPECT_EQ(PrimHaarClassifierGetSize(nullptr, size), kPrimNullError);
    EXPECT_EQ(PrimHaarClassifierGetSize(stage.get(), nullptr), kPrimNullError);
    EXPECT_EQ(size[0], -1);
}

TEST(HaarClassifier, SizeIsTheLargestExtent) {
    const PrimRect rects[] = {{3, 1, 4, 2}, {0, 9, 5, 3}, {6, 0, 1, 1}};
    const float numbers[] = {1, 1, 1};
    const int32_t counts[] = {2, 1};
    PrimHaarState* state = nullptr;
    ASSERT_EQ(PrimHaarClassifierInit(&state, rects, numbers, numbers, numbers, numbers, counts, 2), kPrimOk);
    int32_t size[2] = {};
    EXPECT_EQ(PrimHaarClassifierGetSize(state, size), kPrimOk);
    EXPECT_EQ(size[0], 7);
    EXPECT_EQ(size[1], 12);
    PrimHaarClassifierFree(state);

    ASSERT_EQ(PrimHaarClassifierInit(&state, rects, numbers, numbers, numbers, numbers, counts, 0), kPrimOk);
    EXPECT_EQ(PrimHaarClassifierGetSize(state, size), kPrimOk);
    EXPECT_EQ(size[0], 0);
    EXPECT_EQ(size[1], 0);
    PrimHaarClassifierFree(state);
}

struct ApplyArguments {
    const int32_t* sum;
    int32_t sumStep = 40;
    const float* norm;
    int32_t normStep = 32;
    uint8_t* mask;
    int32_t maskStep = 8;
    int32_t width = 8;
    int32_t height = 3;
    int32_t* positive;
    const PrimHaarState* state;
};

TEST(HaarClassifier, ApplyStatuses) {
    const StatePtr stage = BrightSquare();
    const std::vector<int32_t> sum(60, 1);
    const std::vector<float> norm(24, 1);
    std::vector<uint8_t> mask(24, 1);
    int32_t positive = -1;
    const auto before = mask;
    using A = ApplyArguments;
    ExpectStatusesInOrder<A>(
        {.sum = sum.data(),
         .norm = norm.data(),
         .mask = mask.data(),
         .positive = &positive,
         .state = stage.get()},
        [](const A& a) {
            return PrimApplyHaarClassifier32s32f(a.sum, a.sumStep, a.norm, a.normStep, a.mask, a.maskStep,
                                                 a.width, a.height, a.positive, 0, a.state);
        },
        {{"null sums", kPrimNullError, [](A& a) { a.sum = nullptr; }},
         {"null deviations", kPrimNullError, [](A& a) { a.norm = nullptr; }},
         {"null mask", kPrimNullError, [](A& a) { a.mask = nullptr; }},
         {"null count", kPrimNullError, [](A& a) { a.positive = nullptr; }},
         {"null stage", kPrimNullError, [](A& a) { a.state = nullptr; }},
         {"width 0", kPrimSizeError, [](A& a) { a.width = 0; }},
         {"height 0", kPrimSizeError, [](A& a) { a.height = 0; }},
         {"sum step", kPrimStepError, [](A& a) { a.sumStep = 31; }},
         {"deviation step", kPrimStepError, [](A& a) { a.normStep = 0; }},
         {"mask step", kPrimStepError, [](A& a) { a.maskStep = 7; }},
         {"misaligned sum step", kPrimAlignmentError, [](A& a) { a.sumStep = 38; }},
         {"misaligned deviation step", kPrimAlignmentError, [](A& a) { a.normStep = 33; }}},
        [&] { return mask != before || positive != -1; });
}

TEST(HaarClassifier, AnEmptyMaskReadsNoSums) {
    const StatePtr stage = BrightSquare();
    const int32_t sum = 1;  // a table of one entry: the sanitizer sees a read past it
    const float norm[12] = {};
    uint8_t mask[12] = {};
    int32_t positive = -1;
    EXPECT_EQ(PrimApplyHaarClassifier32s32f(&sum, 400, norm, 16, mask, 4, 4, 3, &positive, -5, stage.get()),
              kPrimOk);
    EXPECT_EQ(positive, 0);
}

TEST(HaarClassifier, ThresholdsBelongToWhatIsAbove) {
    // A window sum of 8 against a deviation of 8, then the total of 1 against a stage threshold of 1.
    const StatePtr stage = BrightSquare();
    const std::vector<uint8_t> src(9, 2);
    std::vector<int32_t> sum(16);
    std::vector<double> sqr(16);
    PrimSqrIntegral8u32s64f(src.data(), 3, sum.data(), 16, sqr.data(), 32, 3, 3, kMost, 0);
    const auto survivors = [&](float deviation, float threshold) {
        const std::vector<float> norm(4, deviation);
        std::vector<uint8_t> mask = {1, 0, 200, 255};
        int32_t positive = -1;
        EXPECT_EQ(PrimApplyHaarClassifier32s32f(sum.data(), 16, norm.data(), 8, mask.data(), 2, 2, 2,
                                                &positive, threshold, stage.get()),
                  kPrimOk);
        EXPECT_EQ(mask, positive == 3 ? std::vector<uint8_t>({1, 0, 200, 255}) : std::vector<uint8_t>(4, 0));
        return positive;
    };
    EXPECT_EQ(survivors(8, 1), 3);
    EXPECT_EQ(survivors(8, std::nextafter(1.0f, 2.0f)), 0);
    EXPECT_EQ(survivors(std::nextafter(8.0f, 9.0f), 1), 0);
    EXPECT_EQ(survivors(std::nextafter(8.0f, 9.0f), -1), 3);
}

TEST(HaarClassifier, AnEmptyStageHasATotalOf0) {
    PrimHaarState* state = nullptr;
    const PrimRect rect = {};
    const float number = 0;
    const int32_t count = 0;
    ASSERT_EQ(PrimHaarClassifierInit(&state, &rect, &number, &number, &number, &number, &count, 0), kPrimOk);
    const StatePtr stage(state);
    const int32_t sum[4] = {};
    const float norm[2] = {};
    uint8_t mask[2] = {1, 1};
    int32_t positive = -1;
    PrimApplyHaarClassifier32s32f(sum, 8, norm, 8, mask, 2, 2, 1, &positive, 0, state);
    EXPECT_EQ(positive, 2);
    PrimApplyHaarClassifier32s32f(sum, 8, norm, 8, mask, 2, 2, 1, &positive, 1e-30f, state);
    EXPECT_EQ(positive, 0);
}

}  // namespace
