// The filters whose pixels depend on a window of pixels: statuses, stated properties, and what the comparison
// with the models on small pictures does not reach.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/StatusOrder.h"
#include "tests/imaging/models/NeighbourhoodModels.h"
#include "tests/support/TestFrame.h"

namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();

/// A picture with room for masks around its region.
template <typename T>
class Picture {
  public:
    Picture(int32_t width, int32_t height, int32_t margin, T value = {})
        : width_(width),
          height_(height),
          margin_(margin),
          stride_(width + 2 * margin),
          pixels_(static_cast<size_t>(stride_) * static_cast<size_t>(height + 2 * margin), value) {}

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    int32_t step() const { return stride_ * static_cast<int32_t>(sizeof(T)); }
    T* data() { return &at(0, 0); }
    T& at(int32_t x, int32_t y) {
        return pixels_[static_cast<size_t>(y + margin_) * static_cast<size_t>(stride_) +
                       static_cast<size_t>(x + margin_)];
    }
    std::vector<T>& pixels() { return pixels_; }
    bool operator==(const Picture&) const = default;

  private:
    int32_t width_;
    int32_t height_;
    int32_t margin_;
    int32_t stride_;
    std::vector<T> pixels_;
};

Picture<uint8_t> RandomPicture(int32_t width, int32_t height, int32_t margin, uint64_t seed) {
    Picture<uint8_t> picture(width, height, margin);
    TestRandom random(seed);
    std::ranges::generate(picture.pixels(), [&] { return random.Byte(); });
    return picture;
}

// ---- statuses --------------------------------------------------------------------------------------------

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

/// Window sums by way of a table of sums, for masks that the plain model would take too long for.
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
    ExpectBoxMean(200, 127, 129, 63, 64);  // the largest area that single precision serves
    ExpectBoxMean(200, 128, 128, 0, 127);  // the smallest that it does not
    ExpectBoxMean(300, 299, 1, 150, 0);
    ExpectBoxMean(300, 1, 299, 0, 298);
    ExpectBoxMean(300, 299, 299, 298, 0);
}

TEST(Box, SumsOfMoreThan32Bits) {
    // 24 bits of pixels, of which each mask covers nearly all.
    constexpr int32_t kSide = 2900;
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
    std::array<uint8_t, 5> order = {10, 20, 30, 40, 50};
    std::vector<std::array<uint8_t, 5>> orders;
    do {
        orders.push_back(order);
    } while (std::ranges::next_permutation(order).found);
    const auto width = static_cast<int32_t>(orders.size());
    Picture<uint8_t> src(width, 1, 2, 30);
    for (int32_t x = 0; x < width; ++x) {
        for (int32_t row = 0; row < 5; ++row) {
            src.at(x, row - 2) = orders[static_cast<size_t>(x)][static_cast<size_t>(row)];
        }
    }
    Picture<uint8_t> dst(width, 1, 0);
    ASSERT_EQ(PrimFilterMedian8uC1(src.data(), src.step(), dst.data(), dst.step(), width, 1, 5, 5, 2, 2),
              kPrimOk);
    EXPECT_EQ(dst, Picture<uint8_t>(width, 1, 0, 30));
}

// ---- one-dimensional kernels -----------------------------------------------------------------------------

TEST(LineKernels, DivisorZeroWritesNothing) {
    Picture<uint8_t> src = RandomPicture(8, 8, 1, 1);
    Picture<uint8_t> dst = RandomPicture(8, 8, 0, 2);
    const Picture<uint8_t> before = dst;
    const int32_t taps[] = {1, 2, 1};
    EXPECT_EQ(PrimFilterColumn8uC1(src.data(), src.step(), dst.data(), dst.step(), 8, 8, taps, 3, 1, 0),
              kPrimDivisorError);
    EXPECT_EQ(dst, before);
}

TEST(LineKernels, NegativeSumsGiveZero) {
    const Picture<uint8_t> black(64, 4, 0, 0);
    Picture<uint8_t> src(64, 4, 1, 200);
    const int32_t taps[] = {-1, -2, -1};
    for (const int32_t divisor : {1, 2, 4, 3, 5, 1000, kMost, 1 << 30}) {
        for (const auto filter : {PrimFilterColumn8uC1, PrimFilterRow8uC1}) {
            Picture<uint8_t> dst(64, 4, 0, 99);
            ASSERT_EQ(filter(src.data(), src.step(), dst.data(), dst.step(), 64, 4, taps, 3, 1, divisor),
                      kPrimOk);
            EXPECT_EQ(dst, black) << divisor;
        }
    }
    // A negative divisor makes them positive.
    Picture<uint8_t> dst(64, 4, 0, 99);
    PrimFilterRow8uC1(src.data(), src.step(), dst.data(), dst.step(), 64, 4, taps, 3, 1, -4);
    EXPECT_EQ(dst, Picture<uint8_t>(64, 4, 0, 200));
}

TEST(LineKernels, TapsRunAgainstThePixels) {
    Picture<uint8_t> src(5, 5, 4);
    src.at(2, 2) = 1;
    const int32_t taps[] = {10, 20, 30, 40};
    Picture<uint8_t> row(5, 5, 0);
    PrimFilterRow8uC1(src.data(), src.step(), row.data(), row.step(), 5, 5, taps, 4, 1, 1);
    Picture<uint8_t> column(5, 5, 0);
    PrimFilterColumn8uC1(src.data(), src.step(), column.data(), column.step(), 5, 5, taps, 4, 1, 1);
    for (int32_t k = 0; k < 4; ++k) {
        EXPECT_EQ(row.at(1 + k, 2), taps[k]);
        EXPECT_EQ(column.at(2, 1 + k), taps[k]);
    }
}

/// Compares the quotients of all sums from 0 to 65535.
void ExpectQuotients(int32_t divisor) {
    // Pairs of a low and a high byte; every other pixel is the sum of a whole pair.
    static Picture<uint8_t> src = [] {
        Picture<uint8_t> pairs(2 * 256, 256, 1);
        for (int32_t high = 0; high < 256; ++high) {
            for (int32_t low = 0; low < 256; ++low) {
                pairs.at(2 * low, high) = static_cast<uint8_t>(low);
                pairs.at(2 * low + 1, high) = static_cast<uint8_t>(high);
            }
        }
        return pairs;
    }();
    const int32_t taps[] = {256, 1};
    Picture<uint8_t> fast(2 * 256, 256, 0);
    ASSERT_EQ(PrimFilterRow8uC1(src.data(), src.step(), fast.data(), fast.step(), 2 * 256, 256, taps, 2, 1,
                                divisor),
              kPrimOk);
    for (int32_t sum = 0; sum < 65536; ++sum) {
        ASSERT_EQ(fast.at(2 * (sum % 256), sum / 256), model::Divided(sum, divisor))
            << sum << " / " << divisor;
    }
}

TEST(LineKernels, QuotientsOfAllSumsOf16Bits) {
    for (int32_t divisor = 1; divisor <= 300; ++divisor) {
        ExpectQuotients(divisor);
    }
    for (const int32_t divisor : {451, 902, 1000, 4096, 4510, 9999, 16384, 20000, 65535, 65536, 1 << 20,
                                  kMost, -1, -2, -7, -256, -300, kLeast}) {
        ExpectQuotients(divisor);
    }
}

TEST(LineKernels, TapsAtTheEndsOfTheirRange) {
    // 16-bit taps, the first that are too large for that, sums at the end of 30, 31 and 32 bits, and more.
    const std::vector<std::vector<int32_t>> kernels = {
        {32767, -32768, 32767}, {32768, 1, -32769}, {4210752, 0, 0},   {4210753, 0, 0},    {8421504, 0, 0},
        {8421505, 0, 0},        {-8421505, 0, 1},   {kMost, kMost, 5}, {kLeast, kLeast, 1}};
    Picture<uint8_t> src = RandomPicture(67, 5, 2, 3);
    std::fill_n(&src.at(0, 2), 67, uint8_t{255});
    for (const std::vector<int32_t>& kernel : kernels) {
        for (const int32_t divisor : {1, 2, 3, 16384, 65535, 1 << 30, 1234567, kMost, -5, kLeast}) {
            Picture<uint8_t> fast(67, 5, 0);
            Picture<uint8_t> model(67, 5, 0);
            ASSERT_EQ(PrimFilterRow8uC1(src.data(), src.step(), fast.data(), fast.step(), 67, 5,
                                        kernel.data(), 3, 1, divisor),
                      kPrimOk);
            model::PrimFilterRow8uC1(src.data(), src.step(), model.data(), model.step(), 67, 5, kernel.data(),
                                     3, 1, divisor);
            EXPECT_EQ(fast, model) << kernel[0] << ' ' << divisor;
        }
    }
}

TEST(LineKernels, MoreTapsThanPixels) {
    Picture<uint8_t> src = RandomPicture(70, 3, 200, 4);
    for (const int32_t size : {63, 64, 65, 66, 199}) {
        std::vector<int32_t> kernel(static_cast<size_t>(size));
        std::iota(kernel.begin(), kernel.end(), -20);
        const auto expectSame = [&](auto filter, auto plain) {
            Picture<uint8_t> fast(70, 3, 0);
            Picture<uint8_t> model(70, 3, 0);
            ASSERT_EQ(filter(src.data(), src.step(), fast.data(), fast.step(), 70, 3, kernel.data(), size,
                             size / 3, 40 * size),
                      kPrimOk);
            plain(src.data(), src.step(), model.data(), model.step(), 70, 3, kernel.data(), size, size / 3,
                  40 * size);
            EXPECT_EQ(fast, model) << size;
        };
        expectSame(PrimFilterColumn8uC1, model::PrimFilterColumn8uC1);
        expectSame(PrimFilterRow8uC1, model::PrimFilterRow8uC1);
    }
}

// ---- edge operators --------------------------------------------------------------------------------------

TEST(Gradients, SignsAndWeights) {
    // White below and to the right of the pixel.
    Picture<uint8_t> below(1, 1, 2);
    Picture<uint8_t> right(1, 1, 2);
    for (int32_t i = -2; i <= 2; ++i) {
        for (int32_t k = 1; k <= 2; ++k) {
            below.at(i, k) = 255;
            right.at(k, i) = 255;
        }
    }
    int16_t gradient = 0;
    PrimFilterSobelHoriz8u16s(below.data(), below.step(), &gradient, 2, 1, 1, kPrimMask3x3);
    EXPECT_EQ(gradient, 4 * 255);
    PrimFilterSobelVert8u16s(right.data(), right.step(), &gradient, 2, 1, 1, kPrimMask3x3);
    EXPECT_EQ(gradient, -4 * 255);
    PrimFilterSobelHoriz8u16s(below.data(), below.step(), &gradient, 2, 1, 1, kPrimMask5x5);
    EXPECT_EQ(gradient, 48 * 255);
    PrimFilterSobelVert8u16s(right.data(), right.step(), &gradient, 2, 1, 1, kPrimMask5x5);
    EXPECT_EQ(gradient, -48 * 255);
}

TEST(Gradients, BorderOperatorsSeeNothingInAFlatPicture) {
    for (const int32_t size : {1, 2, 3, 40}) {
        const std::vector<uint8_t> flat(static_cast<size_t>(size * size), 201);
        uint8_t buffer[16];
        for (const int32_t mask : {kPrimMask3x3, kPrimMask5x5}) {
            for (const auto filter : {PrimSobelHorizBorder8u16s, PrimSobelVertBorder8u16s}) {
                Picture<int16_t> dst(size, size, 0, 5);
                filter(flat.data(), size, dst.data(), dst.step(), size, size, mask, 1, 0, buffer);
                EXPECT_EQ(dst, Picture<int16_t>(size, size, 0, 0));
            }
        }
        for (const auto filter : {PrimScharrHorizBorder8u16s, PrimScharrVertBorder8u16s}) {
            Picture<int16_t> dst(size, size, 0, 5);
            filter(flat.data(), size, dst.data(), dst.step(), size, size, 1, 0, buffer);
            EXPECT_EQ(dst, Picture<int16_t>(size, size, 0, 0));
        }
    }
}

}  // namespace
