// Classifier stages.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/StatusOrder.h"

namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

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

TEST(HaarClassifier, TakesTheLastRectanglesWhoseEdgesAreNumbers) {
    const PrimRect rects[] = {{kMost - 1, 0, 1, 1}, {0, kMost - 2, 1, 2}};
    const float numbers[] = {1, 1};
    const int32_t counts[] = {2};
    PrimHaarState* state = nullptr;
    ASSERT_EQ(PrimHaarClassifierInit(&state, rects, numbers, numbers, numbers, numbers, counts, 1), kPrimOk);
    int32_t size[2] = {};
    EXPECT_EQ(PrimHaarClassifierGetSize(state, size), kPrimOk);
    EXPECT_EQ(size[0], kMost);
    EXPECT_EQ(size[1], kMost);
    PrimHaarClassifierFree(state);
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
