// Statuses of the point and colour operations for bad arguments: the first code that applies, and untouched
// images.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "imaging/Prim.h"

namespace {

constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kWidth = 6;
constexpr int32_t kHeight = 4;
constexpr int32_t kStep = 32;

/// The arguments that most primitives have. `src` and `dst` are float images too, where a primitive wants
/// one.
struct Arguments {
    void* src;
    int32_t srcStep = kStep;
    void* dst;
    int32_t dstStep = kStep;
    int32_t width = kWidth;
    int32_t height = kHeight;

    const uint8_t* src8() const { return static_cast<const uint8_t*>(src); }
    uint8_t* dst8() const { return static_cast<uint8_t*>(dst); }
};

/// A primitive with good values for its own parameters.
struct Call {
    std::string name;
    std::function<PrimStatus(const Arguments&)> run;
    bool hasSource = true;
    int32_t srcPixelBytes = 1;
    int32_t dstPixelBytes = 1;
    int32_t srcAlignment = 1;
    int32_t dstAlignment = 1;
    /// Fails on its own parameters, to see that these are looked at last.
    std::function<PrimStatus(const Arguments&)> runBadly = nullptr;
    PrimStatus badly = 0;
};

void PrintTo(const Call& call, std::ostream* stream) {
    *stream << call.name;
}

/// Images of four rows that know whether they were touched.
class Images {
  public:
    Images() {
        for (size_t i = 0; i < kSize; ++i) {
            src_[i] = static_cast<uint8_t>(17 * i + 3);
            dst_[i] = static_cast<uint8_t>(29 * i + 5);
        }
        srcBefore_ = src_;
        dstBefore_ = dst_;
    }

    Arguments arguments() { return {.src = src_.data(), .dst = dst_.data()}; }
    bool untouched() const { return src_ == srcBefore_ && dst_ == dstBefore_; }

  private:
    static constexpr size_t kSize = size_t{kStep} * kHeight;
    alignas(8) std::array<uint8_t, kSize> src_;
    alignas(8) std::array<uint8_t, kSize> dst_;
    std::array<uint8_t, kSize> srcBefore_;
    std::array<uint8_t, kSize> dstBefore_;
};

class PointStatus : public testing::TestWithParam<Call> {
  protected:
    using Change = std::function<void(Arguments&)>;

    /// The status for good arguments with these changes.
    static void Expect(PrimStatus expected, const std::string& what, const std::vector<Change>& changes,
                       bool badParameters = false) {
        const Call& call = GetParam();
        Images images;
        Arguments arguments = images.arguments();
        for (const Change& change : changes) {
            change(arguments);
        }
        const auto& run = badParameters && call.runBadly ? call.runBadly : call.run;
        EXPECT_EQ(run(arguments), expected) << call.name << " with " << what;
        EXPECT_TRUE(images.untouched()) << call.name << " with " << what;
    }
};

const auto kNullSource = [](Arguments& a) { a.src = nullptr; };
const auto kNullDestination = [](Arguments& a) { a.dst = nullptr; };
const auto kNoWidth = [](Arguments& a) { a.width = 0; };
const auto kNoSteps = [](Arguments& a) { a.srcStep = a.dstStep = 0; };

TEST_P(PointStatus, GoodArgumentsSucceed) {
    Images images;
    EXPECT_EQ(GetParam().run(images.arguments()), kPrimOk);
}

TEST_P(PointStatus, NullPointersComeFirst) {
    if (GetParam().hasSource) {
        Expect(kPrimNullError, "a null source", {kNullSource});
        Expect(kPrimNullError, "a null source and nothing else right", {kNullSource, kNoWidth, kNoSteps},
               true);
    }
    Expect(kPrimNullError, "a null destination", {kNullDestination});
    Expect(kPrimNullError, "a null destination and nothing else right",
           {kNullDestination, kNoWidth, kNoSteps}, true);
}

TEST_P(PointStatus, SizesComeSecond) {
    for (const int32_t size : {0, -1, kLeast}) {
        const std::string text = std::to_string(size);
        const auto width = [=](Arguments& a) { a.width = size; };
        const auto height = [=](Arguments& a) { a.height = size; };
        Expect(kPrimSizeError, "width " + text, {width});
        Expect(kPrimSizeError, "height " + text, {height});
        Expect(kPrimSizeError, "width and height " + text, {width, height});
        Expect(kPrimSizeError, "width and nothing after it right", {width, kNoSteps}, true);
        Expect(kPrimSizeError, "height and nothing after it right", {height, kNoSteps}, true);
    }
}

TEST_P(PointStatus, RowStepsComeThird) {
    const Call& call = GetParam();
    for (const int32_t step : {0, -1, -kStep, kLeast, kWidth * call.srcPixelBytes - 1}) {
        const auto change = [=](Arguments& a) { a.srcStep = step; };
        if (call.hasSource) {
            Expect(kPrimStepError, "source step " + std::to_string(step), {change});
            Expect(kPrimStepError, "source step " + std::to_string(step), {change}, true);
        }
    }
    for (const int32_t step : {0, -1, -kStep, kLeast, kWidth * call.dstPixelBytes - 1}) {
        const auto change = [=](Arguments& a) { a.dstStep = step; };
        Expect(kPrimStepError, "destination step " + std::to_string(step), {change});
        Expect(kPrimStepError, "destination step " + std::to_string(step), {change}, true);
    }
    // A width whose bytes pass 32 bits.
    const auto wide = [](Arguments& a) { a.width = kMost; };
    Expect(kPrimStepError, "the greatest width", {wide}, true);
}

TEST_P(PointStatus, MisalignedRowStepsComeFourth) {
    const Call& call = GetParam();
    const auto source = [](Arguments& a) { a.srcStep = kStep - 2; };
    const auto destination = [](Arguments& a) { a.dstStep = kStep - 2; };
    const auto noSource = [](Arguments& a) { a.srcStep = 0; };
    const auto noDestination = [](Arguments& a) { a.dstStep = 0; };
    if (call.srcAlignment > 1) {
        Expect(kPrimAlignmentError, "a misaligned source step", {source}, true);
        Expect(kPrimStepError, "a misaligned source step and no destination step", {source, noDestination},
               true);
    }
    if (call.dstAlignment > 1) {
        Expect(kPrimAlignmentError, "a misaligned destination step", {destination}, true);
        Expect(kPrimStepError, "a misaligned destination step and no source step", {destination, noSource},
               true);
    }
}

TEST_P(PointStatus, OwnParametersComeLast) {
    const Call& call = GetParam();
    if (call.runBadly) {
        Expect(call.badly, "bad parameters", {}, true);
    }
}

struct Reduction {
    int32_t noise;
    int32_t levels;

    PrimStatus operator()(const Arguments& a) const {
        return PrimReduceBits8uC3(a.src8(), a.srcStep, a.dst8(), a.dstStep, a.width, a.height, noise, 0,
                                  levels);
    }
};

Call ReduceBitsCall(const std::string& what, Reduction good, Reduction bad, PrimStatus status) {
    return {.name = "PrimReduceBits8uC3, " + what,
            .run = good,
            .srcPixelBytes = 3,
            .dstPixelBytes = 3,
            .runBadly = bad,
            .badly = status};
}

struct Range {
    float low;
    float high;

    PrimStatus operator()(const Arguments& a) const {
        return PrimScale32f8u(static_cast<const float*>(a.src), a.srcStep, a.dst8(), a.dstStep, a.width,
                              a.height, low, high);
    }
};

Call ScaleCall(const std::string& what, Range good, Range bad) {
    return {.name = "PrimScale32f8u, " + what,
            .run = good,
            .srcPixelBytes = 4,
            .srcAlignment = 4,
            .runBadly = bad,
            .badly = kPrimRangeError};
}

std::vector<Call> AllCalls() {
    static const float kMatrix[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
    using A = const Arguments&;
    return {
        {"PrimSet8uC1", [](A a) { return PrimSet8uC1(9, a.dst8(), a.dstStep, a.width, a.height); }, false},
        {"PrimCopy8uC1",
         [](A a) { return PrimCopy8uC1(a.src8(), a.srcStep, a.dst8(), a.dstStep, a.width, a.height); }},
        {"PrimAddSfs8uC1",
         [](A a) { return PrimAddSfs8uC1(a.src8(), a.srcStep, a.dst8(), a.dstStep, a.width, a.height, 1); }},
        {"PrimSubSfs8uC1",
         [](A a) { return PrimSubSfs8uC1(a.src8(), a.srcStep, a.dst8(), a.dstStep, a.width, a.height, 1); }},
        {"PrimMulCSfs8uC1", [](A a) { return PrimMulCSfs8uC1(3, a.dst8(), a.dstStep, a.width, a.height, 1); },
         false},
        {"PrimMulCSfs8uC1 by 0",
         [](A a) { return PrimMulCSfs8uC1(0, a.dst8(), a.dstStep, a.width, a.height, 0); }, false},
        {"PrimMulScale8uC1",
         [](A a) { return PrimMulScale8uC1(a.src8(), a.srcStep, a.dst8(), a.dstStep, a.width, a.height); }},
        {"PrimAnd8uC1",
         [](A a) { return PrimAnd8uC1(a.src8(), a.srcStep, a.dst8(), a.dstStep, a.width, a.height); }},
        {"PrimNot8uC1", [](A a) { return PrimNot8uC1(a.dst8(), a.dstStep, a.width, a.height); }, false},
        {"PrimThresholdLT8uC1",
         [](A a) { return PrimThresholdLT8uC1(a.dst8(), a.dstStep, a.width, a.height, 100); }, false},
        {"PrimThresholdGTVal8uC1",
         [](A a) { return PrimThresholdGTVal8uC1(a.dst8(), a.dstStep, a.width, a.height, 100, 7); }, false},
        {.name = "PrimThresholdLTValGTVal8uC1",
         .run =
             [](A a) {
                 return PrimThresholdLTValGTVal8uC1(a.src8(), a.srcStep, a.dst8(), a.dstStep, a.width,
                                                    a.height, 80, 0, 80, 255);
             },
         .runBadly =
             [](A a) {
                 return PrimThresholdLTValGTVal8uC1(a.src8(), a.srcStep, a.dst8(), a.dstStep, a.width,
                                                    a.height, 81, 0, 80, 255);
             },
         .badly = kPrimThresholdError},
        {.name = "PrimThresholdLTValGTValInPlace8uC1",
         .run =
             [](A a) {
                 return PrimThresholdLTValGTValInPlace8uC1(a.dst8(), a.dstStep, a.width, a.height, 0, 0, 255,
                                                           255);
             },
         .hasSource = false,
         .runBadly =
             [](A a) {
                 return PrimThresholdLTValGTValInPlace8uC1(a.dst8(), a.dstStep, a.width, a.height, 255, 0, 0,
                                                           255);
             },
         .badly = kPrimThresholdError},
        ReduceBitsCall("too much noise", {100, 256}, {101, 1}, kPrimNoiseError),  // the levels are wrong too
        ReduceBitsCall("negative noise", {0, 2}, {-1, 2}, kPrimNoiseError),
        ReduceBitsCall("few levels", {0, 2}, {0, 1}, kPrimLevelsError),
        ReduceBitsCall("many levels", {100, 256}, {100, 257}, kPrimLevelsError),
        ScaleCall("an empty range", {0, 1}, {1, 1}),
        ScaleCall("not a number", {-1, 1}, {0, std::numeric_limits<float>::quiet_NaN()}),
        {.name = "PrimUpdateMotionHistory8u32f",
         .run =
             [](A a) {
                 return PrimUpdateMotionHistory8u32f(a.src8(), a.srcStep, static_cast<float*>(a.dst),
                                                     a.dstStep, a.width, a.height, 2, 0);
             },
         .dstPixelBytes = 4,
         .dstAlignment = 4,
         .runBadly =
             [](A a) {
                 return PrimUpdateMotionHistory8u32f(a.src8(), a.srcStep, static_cast<float*>(a.dst),
                                                     a.dstStep, a.width, a.height, 2, -0.5f);
             },
         .badly = kPrimNegativeError},
        {.name = "PrimAddGaussNoise8uC1",
         .run =
             [](A a) {
                 uint32_t seed = 1;
                 return PrimAddGaussNoise8uC1(a.dst8(), a.dstStep, a.width, a.height, 0, 9, &seed);
             },
         .hasSource = false},
        {.name = "PrimColorTwist8uC3",
         .run = [](A a) { return PrimColorTwist8uC3(a.dst8(), a.dstStep, a.width, a.height, kMatrix); },
         .hasSource = false,
         .dstPixelBytes = 3},
    };
}

INSTANTIATE_TEST_SUITE_P(All, PointStatus, testing::ValuesIn(AllCalls()), [](const auto& instance) {
    std::string name;
    for (const char c : instance.param.name) {
        name += std::isalnum(static_cast<unsigned char>(c)) ? std::string(1, c) : "";
    }
    return name;
});

// ---- primitives with other arguments ------------------------------------------------------------

TEST(PointStatusOthers, MeanNeedsAPlaceForItsResult) {
    const uint8_t pixels[4] = {1, 2, 3, 4};
    double mean = -7;
    EXPECT_EQ(PrimMean8uC1(pixels, 2, 2, 2, nullptr), kPrimNullError);
    EXPECT_EQ(PrimMean8uC1(nullptr, 2, 2, 2, &mean), kPrimNullError);
    EXPECT_EQ(PrimMean8uC1(nullptr, 0, 0, 0, nullptr), kPrimNullError);
    EXPECT_EQ(PrimMean8uC1(pixels, 0, 0, 2, &mean), kPrimSizeError);
    EXPECT_EQ(PrimMean8uC1(pixels, 0, 2, -2, &mean), kPrimSizeError);
    EXPECT_EQ(PrimMean8uC1(pixels, 0, 2, 2, &mean), kPrimStepError);
    EXPECT_EQ(PrimMean8uC1(pixels, 1, 2, 2, &mean), kPrimStepError);
    EXPECT_EQ(mean, -7);
    EXPECT_EQ(PrimMean8uC1(pixels, 2, 2, 2, &mean), kPrimOk);
    EXPECT_EQ(mean, 2.5);
}

TEST(PointStatusOthers, NoiseNeedsASeedAndClearsItForNoWidth) {
    uint8_t pixels[4] = {1, 2, 3, 4};
    uint32_t seed = 5;
    EXPECT_EQ(PrimAddGaussNoise8uC1(pixels, 2, 2, 2, 0, 9, nullptr), kPrimNullError);
    EXPECT_EQ(PrimAddGaussNoise8uC1(pixels, 0, 0, 0, 0, 9, nullptr), kPrimNullError);
    EXPECT_EQ(PrimAddGaussNoise8uC1(nullptr, 2, 0, 2, 0, 9, &seed), kPrimNullError);
    EXPECT_EQ(PrimAddGaussNoise8uC1(pixels, 2, 2, 0, 0, 9, &seed), kPrimSizeError);
    EXPECT_EQ(PrimAddGaussNoise8uC1(pixels, 1, 2, 2, 0, 9, &seed), kPrimStepError);
    EXPECT_EQ(seed, 5u);
    EXPECT_EQ(PrimAddGaussNoise8uC1(pixels, 2, 0, 2, 0, 9, &seed), kPrimSizeError);
    EXPECT_EQ(seed, 0u);
    EXPECT_EQ(pixels[0], 1);
    EXPECT_EQ(pixels[3], 4);
}

TEST(PointStatusOthers, TwistNeedsAMatrix) {
    uint8_t pixel[3] = {1, 2, 3};
    EXPECT_EQ(PrimColorTwist8uC3(pixel, 3, 1, 1, nullptr), kPrimNullError);
    EXPECT_EQ(PrimColorTwist8uC3(pixel, 0, 0, 1, nullptr), kPrimNullError);
    EXPECT_EQ(pixel[0], 1);
}

TEST(PointStatusOthers, ConversionsTestEachPlaneAndThenSizes) {
    uint8_t packed[12] = {};
    uint8_t luma[4] = {};
    uint8_t u[1] = {9};
    uint8_t v[1] = {9};
    EXPECT_EQ(PrimRgbToYuv420(packed, nullptr, 2, 2), kPrimNullError);
    EXPECT_EQ(PrimYuv420ToRgb(nullptr, packed, 2, 2), kPrimNullError);
    for (int missing = 0; missing < 3; ++missing) {
        uint8_t* const planes[3] = {missing == 0 ? nullptr : luma, missing == 1 ? nullptr : u,
                                    missing == 2 ? nullptr : v};
        EXPECT_EQ(PrimRgbToYuv420(packed, planes, 0, 2), kPrimNullError);
        EXPECT_EQ(PrimYuv420ToRgb(planes, packed, 2, -1), kPrimNullError);
    }
    uint8_t* const planes[3] = {luma, u, v};
    EXPECT_EQ(PrimRgbToYuv420(nullptr, planes, 0, 2), kPrimNullError);
    EXPECT_EQ(PrimYuv420ToRgb(planes, nullptr, 0, 2), kPrimNullError);
    for (const int32_t size : {0, -1, kLeast}) {
        EXPECT_EQ(PrimRgbToYuv420(packed, planes, size, 2), kPrimSizeError);
        EXPECT_EQ(PrimRgbToYuv420(packed, planes, 2, size), kPrimSizeError);
        EXPECT_EQ(PrimYuv420ToRgb(planes, packed, size, 2), kPrimSizeError);
        EXPECT_EQ(PrimYuv420ToRgb(planes, packed, 2, size), kPrimSizeError);
    }
    EXPECT_EQ(u[0], 9);
    EXPECT_EQ(v[0], 9);
    EXPECT_EQ(PrimRgbToYuv420(packed, planes, 2, 2), kPrimOk);
    EXPECT_EQ(PrimYuv420ToRgb(planes, packed, 2, 2), kPrimOk);
}

}  // namespace
