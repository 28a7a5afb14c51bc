// The filters whose pixels depend on a window of pixels: statuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/MarginPicture.h"
#include "tests/imaging/StatusOrder.h"

namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();

/// The arguments of all these primitives.
struct Arguments {
    const uint8_t* src;
    int32_t srcStep = 64;
    uint8_t* dst;
    int16_t* gradient;
    int32_t dstStep = 64;
    int32_t width = 8;
    int32_t height = 6;
    int32_t mask = kPrimMask3x3;
    int32_t maskWidth = 3;
    int32_t maskHeight = 5;
    int32_t anchorX = 1;
    int32_t anchorY = 2;
    const int32_t* kernel;
    int32_t kernelSize = 3;
    int32_t anchor = 1;
    int32_t divisor = 4;
    uint8_t* buffer;
    int32_t* size;
};

using Faults = std::vector<Fault<Arguments>>;
using Call = std::function<PrimStatus(const Arguments&)>;

class NeighbourhoodStatus : public testing::Test {
  protected:
    void Expect(const Call& call, const Faults& faults) {
        const uint8_t* const middle = images_.data() + 20 * 64 + 16;
        uint8_t* const target = images_.data() + 60 * 64 + 16;
        size_ = -99;
        std::ranges::fill(gradient_, int16_t{4321});
        const Arguments good = {.src = middle,
                                .dst = target,
                                .gradient = gradient_.data(),
                                .kernel = kernel_.data(),
                                .buffer = buffer_.data(),
                                .size = &size_};
        const auto images = images_;
        const auto gradient = gradient_;
        const auto size = size_;
        ExpectStatusesInOrder<Arguments>(good, call, faults, [=, this] {
            return images_ != images || gradient_ != gradient || size_ != size;
        });
        EXPECT_TRUE(images_ != images || gradient_ != gradient || size_ != size);
    }

    static Fault<Arguments> NullSource() {
        return {"null source", kPrimNullError, [](Arguments& a) { a.src = nullptr; }};
    }
    static Fault<Arguments> NullTarget() {
        return {"null destination", kPrimNullError, [](Arguments& a) {
                    a.dst = nullptr;
                    a.gradient = nullptr;
                }};
    }
    static Faults Sizes() {
        return {{"width 0", kPrimSizeError, [](Arguments& a) { a.width = 0; }},
                {"negative width", kPrimSizeError, [](Arguments& a) { a.width = kLeast; }},
                {"height 0", kPrimSizeError, [](Arguments& a) { a.height = 0; }},
                {"negative height", kPrimSizeError, [](Arguments& a) { a.height = -1; }}};
    }
    static Faults SourceSteps() {
        return {{"source step 0", kPrimStepError, [](Arguments& a) { a.srcStep = 0; }},
                {"negative source step", kPrimStepError, [](Arguments& a) { a.srcStep = kLeast; }},
                {"source step below width", kPrimStepError, [](Arguments& a) { a.srcStep = 7; }}};
    }
    static Faults TargetSteps(int32_t pixelSize = 1) {
        return {{"destination step 0", kPrimStepError, [](Arguments& a) { a.dstStep = 0; }},
                {"negative destination step", kPrimStepError, [](Arguments& a) { a.dstStep = -64; }},
                {"destination step below width", kPrimStepError,
                 [=](Arguments& a) { a.dstStep = 8 * pixelSize - 1; }}};
    }
    static Faults GradientSteps() {
        return {{"odd destination step", kPrimAlignmentError, [](Arguments& a) { a.dstStep = 17; }}};
    }
    static Faults Masks() {
        return {{"mask 0", kPrimMaskError, [](Arguments& a) { a.mask = 0; }},
                {"mask 3", kPrimMaskError, [](Arguments& a) { a.mask = 3; }},
                {"mask 35", kPrimMaskError, [](Arguments& a) { a.mask = 35; }}};
    }
    static Faults Anchors() {
        return {{"anchor left of the mask", kPrimAnchorError, [](Arguments& a) { a.anchorX = -1; }},
                {"anchor right of the mask", kPrimAnchorError, [](Arguments& a) { a.anchorX = 3; }},
                {"anchor above the mask", kPrimAnchorError, [](Arguments& a) { a.anchorY = -1; }},
                {"anchor below the mask", kPrimAnchorError, [](Arguments& a) { a.anchorY = 5; }}};
    }
    static Faults Joined(std::initializer_list<Faults> lists) {
        Faults all;
        for (const Faults& list : lists) {
            all.insert(all.end(), list.begin(), list.end());
        }
        return all;
    }

  private:
    std::vector<uint8_t> images_ = RandomPicture(64, 100, 0, 1).pixels();
    std::vector<int16_t> gradient_ = std::vector<int16_t>(32 * 8, 4321);
    std::vector<int32_t> kernel_ = {1, 2, 1};
    std::vector<uint8_t> buffer_ = std::vector<uint8_t>(10000);
    int32_t size_ = 0;
};

TEST_F(NeighbourhoodStatus, FixedMasks) {
    const Faults faults =
        Joined({{NullSource(), NullTarget()}, Sizes(), SourceSteps(), TargetSteps(), Masks()});
    Expect(
        [](const Arguments& a) {
            return PrimFilterGauss8uC1(a.src, a.srcStep, a.dst, a.dstStep, a.width, a.height, a.mask);
        },
        faults);
    Expect(
        [](const Arguments& a) {
            return PrimFilterLowpass8uC1(a.src, a.srcStep, a.dst, a.dstStep, a.width, a.height, a.mask);
        },
        faults);
}

TEST_F(NeighbourhoodStatus, Box) {
    Expect(
        [](const Arguments& a) {
            return PrimFilterBox8uC1(a.dst, a.dstStep, a.width, a.height, a.maskWidth, a.maskHeight,
                                     a.anchorX, a.anchorY);
        },
        Joined({{NullTarget()},
                Sizes(),
                TargetSteps(),
                {{"mask width 0", kPrimMaskError, [](Arguments& a) { a.maskWidth = 0; }},
                 {"mask as wide as the region", kPrimMaskError, [](Arguments& a) { a.maskWidth = 8; }},
                 {"mask height -1", kPrimMaskError, [](Arguments& a) { a.maskHeight = -1; }},
                 {"mask as high as the region", kPrimMaskError, [](Arguments& a) { a.maskHeight = 6; }},
                 {"huge mask", kPrimMaskError, [](Arguments& a) { a.maskHeight = kMost; }}},
                Anchors()}));
}

TEST_F(NeighbourhoodStatus, Median) {
    Expect(
        [](const Arguments& a) {
            return PrimFilterMedian8uC1(a.src, a.srcStep, a.dst, a.dstStep, a.width, a.height, a.maskWidth,
                                        a.maskHeight, a.anchorX, a.anchorY);
        },
        Joined({{NullSource(), NullTarget()},
                Sizes(),
                SourceSteps(),
                TargetSteps(),
                {{"even mask width", kPrimMaskError, [](Arguments& a) { a.maskWidth = 4; }},
                 {"mask width 0", kPrimMaskError, [](Arguments& a) { a.maskWidth = 0; }},
                 {"negative mask width", kPrimMaskError, [](Arguments& a) { a.maskWidth = -3; }},
                 {"even mask height", kPrimMaskError, [](Arguments& a) { a.maskHeight = 2; }},
                 {"negative mask height", kPrimMaskError, [](Arguments& a) { a.maskHeight = -1; }}},
                Anchors()}));
}

TEST_F(NeighbourhoodStatus, LineKernels) {
    const Faults faults =
        Joined({{NullSource(),
                 NullTarget(),
                 {"null kernel", kPrimNullError, [](Arguments& a) { a.kernel = nullptr; }}},
                Sizes(),
                {{"kernel size 0", kPrimSizeError, [](Arguments& a) { a.kernelSize = 0; }},
                 {"negative kernel size", kPrimSizeError, [](Arguments& a) { a.kernelSize = -3; }}},
                SourceSteps(),
                TargetSteps(),
                {{"anchor before the kernel", kPrimAnchorError, [](Arguments& a) { a.anchor = -1; }},
                 {"anchor behind the kernel", kPrimAnchorError, [](Arguments& a) { a.anchor = 3; }},
                 {"divisor 0", kPrimDivisorError, [](Arguments& a) { a.divisor = 0; }}}});
    Expect(
        [](const Arguments& a) {
            return PrimFilterColumn8uC1(a.src, a.srcStep, a.dst, a.dstStep, a.width, a.height, a.kernel,
                                        a.kernelSize, a.anchor, a.divisor);
        },
        faults);
    Expect(
        [](const Arguments& a) {
            return PrimFilterRow8uC1(a.src, a.srcStep, a.dst, a.dstStep, a.width, a.height, a.kernel,
                                     a.kernelSize, a.anchor, a.divisor);
        },
        faults);
}

TEST_F(NeighbourhoodStatus, Dilation) {
    Expect([](const Arguments& a) { return PrimDilate3x38uC1(a.dst, a.dstStep, a.width, a.height); },
           Joined({{NullTarget()},
                   Sizes(),
                   {{"step 0", kPrimStepError, [](Arguments& a) { a.dstStep = 0; }},
                    {"step -1", kPrimStepError, [](Arguments& a) { a.dstStep = -1; }},
                    {"step 1", kPrimMorphologyStepError, [](Arguments& a) { a.dstStep = 1; }},
                    {"step width + 1", kPrimMorphologyStepError, [](Arguments& a) { a.dstStep = 9; }}}}));
}

TEST_F(NeighbourhoodStatus, Erosion) {
    Expect(
        [](const Arguments& a) {
            return PrimErode3x38uC1(a.src, a.srcStep, a.dst, a.dstStep, a.width, a.height);
        },
        Joined({{NullSource(), NullTarget()},
                Sizes(),
                {{"source step 0", kPrimStepError, [](Arguments& a) { a.srcStep = 0; }},
                 {"destination step -1", kPrimStepError, [](Arguments& a) { a.dstStep = -1; }},
                 {"source step width + 1", kPrimMorphologyStepError, [](Arguments& a) { a.srcStep = 9; }},
                 {"destination step 1", kPrimMorphologyStepError, [](Arguments& a) { a.dstStep = 1; }}}}));
}

TEST_F(NeighbourhoodStatus, Sobel) {
    const Faults faults = Joined(
        {{NullSource(), NullTarget()}, Sizes(), SourceSteps(), TargetSteps(2), GradientSteps(), Masks()});
    for (const auto filter : {PrimFilterSobelHoriz8u16s, PrimFilterSobelVert8u16s}) {
        Expect(
            [=](const Arguments& a) {
                return filter(a.src, a.srcStep, a.gradient, a.dstStep, a.width, a.height, a.mask);
            },
            faults);
    }
}

TEST_F(NeighbourhoodStatus, BorderOperators) {
    const Faults faults = Joined({{NullSource(),
                                   NullTarget(),
                                   {"null buffer", kPrimNullError, [](Arguments& a) { a.buffer = nullptr; }}},
                                  Sizes(),
                                  SourceSteps(),
                                  TargetSteps(2),
                                  GradientSteps()});
    for (const auto filter : {PrimSobelHorizBorder8u16s, PrimSobelVertBorder8u16s}) {
        Expect(
            [=](const Arguments& a) {
                return filter(a.src, a.srcStep, a.gradient, a.dstStep, a.width, a.height, a.mask,
                              kPrimBorderReplicate, 0, a.buffer);
            },
            Joined({faults, Masks()}));
    }
    for (const auto filter : {PrimScharrHorizBorder8u16s, PrimScharrVertBorder8u16s}) {
        Expect(
            [=](const Arguments& a) {
                return filter(a.src, a.srcStep, a.gradient, a.dstStep, a.width, a.height,
                              kPrimBorderReplicate, 0, a.buffer);
            },
            faults);
    }
}

TEST_F(NeighbourhoodStatus, BufferSizes) {
    const Faults faults =
        Joined({{{"null size", kPrimNullError, [](Arguments& a) { a.size = nullptr; }}}, Sizes()});
    for (const auto getSize : {PrimSobelHorizBorderGetBufferSize, PrimSobelVertBorderGetBufferSize}) {
        Expect([=](const Arguments& a) { return getSize(a.width, a.height, a.mask, a.size); },
               Joined({faults, Masks()}));
    }
    for (const auto getSize : {PrimScharrHorizBorderGetBufferSize, PrimScharrVertBorderGetBufferSize}) {
        Expect([=](const Arguments& a) { return getSize(a.width, a.height, a.size); }, faults);
    }
}

}  // namespace
