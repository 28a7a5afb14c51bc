// The colour operations: edge cases, and all inputs that can occur, at every processor level.
//
// Under sanitizers the exhaustive tests take only some of the inputs, spread over all of them.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "imaging/Cpu.h"
#include "imaging/Prim.h"
#include "tests/imaging/models/ColorModels.h"
#include "tests/support/LevelLimit.h"

namespace {

constexpr uint32_t kStride = SE_SANITIZED ? 61 : 1;

class AtLevel : public testing::TestWithParam<cpu::Level> {
    const LevelLimit limit_{GetParam()};
};

class ColorTwist : public AtLevel {};
class YuvToRgb : public AtLevel {};
class RgbToYuv : public AtLevel {};

const auto kLevels = testing::ValuesIn(cpu::Levels().begin(), cpu::Levels().end());
const auto kLevelName = [](const testing::TestParamInfo<cpu::Level>& info) { return cpu::Name(info.param); };
INSTANTIATE_TEST_SUITE_P(Levels, ColorTwist, kLevels, kLevelName);
INSTANTIATE_TEST_SUITE_P(Levels, YuvToRgb, kLevels, kLevelName);
INSTANTIATE_TEST_SUITE_P(Levels, RgbToYuv, kLevels, kLevelName);

using Bytes = std::vector<uint8_t>;
using Matrix = std::array<float, 12>;

constexpr Matrix kSepia = {0.393f, 0.769f, 0.189f, 0, 0.349f, 0.686f, 0.168f, 0, 0.272f, 0.534f, 0.131f, 1};

constexpr int32_t kBandWidth = 4096;
constexpr int32_t kBandHeight = 256;
constexpr uint32_t kBandPixels = kBandWidth * kBandHeight;

/// Calls test(first) for bands of pixels that together are all colours, or every kStride-th; the pixel i of a
/// band has the colour (first + i) * kStride.
template <typename Test>
void ForAllColours(Test test) {
    for (uint32_t first = 0; first * kStride < 1u << 24; first += kBandPixels) {
        test(first);
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

uint32_t Colour(uint32_t first, uint32_t i) {
    return (first + i) * kStride & 0xffffff;
}

/// The pixels of a band, packed.
Bytes PackedBand(uint32_t first) {
    Bytes pixels(size_t{kBandPixels} * 3);
    for (uint32_t i = 0; i < kBandPixels; ++i) {
        const uint32_t colour = Colour(first, i);
        for (uint32_t c = 0; c < 3; ++c) {
            pixels[3 * i + c] = static_cast<uint8_t>(colour >> (8 * c));
        }
    }
    return pixels;
}

// ---- twist --------------------------------------------------------------------------------------

/// One pixel, surrounded by others so that all forms of the loop reach it.
std::array<uint8_t, 3> Twisted(std::array<uint8_t, 3> pixel, const Matrix& matrix) {
    std::array<uint8_t, 3> result{};
    for (const size_t count : {1u, 8u, 35u}) {
        Bytes row(3 * count);
        for (size_t i = 0; i < row.size(); ++i) {
            row[i] = pixel[i % 3];
        }
        const auto width = static_cast<int32_t>(count);
        EXPECT_EQ(PrimColorTwist8uC3(row.data(), 3 * width, width, 1, matrix.data()), kPrimOk);
        for (size_t i = 3; i < row.size(); ++i) {
            EXPECT_EQ(row[i], row[i - 3]);
        }
        if (count > 1) {
            EXPECT_EQ((std::array<uint8_t, 3>{row[0], row[1], row[2]}), result);
        }
        result = {row[0], row[1], row[2]};
    }
    return result;
}

using Pixel = std::array<uint8_t, 3>;

TEST_P(ColorTwist, TiesGoToEvenAndTheEndsSaturate) {
    const auto constants = [](float a, float b, float c) {
        return Matrix{0, 0, 0, a, 0, 0, 0, b, 0, 0, 0, c};
    };
    EXPECT_EQ(Twisted({1, 2, 3}, constants(254.5f, 255.0f, 254.75f)), (Pixel{254, 255, 255}));
    EXPECT_EQ(Twisted({1, 2, 3}, constants(253.5f, 255.5f, 1e6f)), (Pixel{254, 255, 255}));
    EXPECT_EQ(Twisted({1, 2, 3}, constants(0.5f, 1.5f, 2.5f)), (Pixel{0, 2, 2}));
    EXPECT_EQ(Twisted({1, 2, 3}, constants(0.0f, -0.5f, -1e6f)), (Pixel{0, 0, 0}));
    EXPECT_EQ(Twisted({1, 2, 3}, constants(std::nextafter(0.5f, 0.0f), std::nextafter(0.5f, 1.0f), 0.499f)),
              (Pixel{0, 1, 0}));
}

TEST_P(ColorTwist, ATieOfASum) {
    // 0.5 * 255 + 0.5 * 254 = 254.5
    EXPECT_EQ(Twisted({255, 254, 0}, {0.5f, 0.5f, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0.5f}), (Pixel{254, 255, 254}));
}

TEST_P(ColorTwist, TermsAreAddedInOrder) {
    // The sum from the left loses the small term, from the right it would not.
    const float big = 1e20f;
    EXPECT_EQ(Twisted({1, 1, 1}, {big, -big, 3, 0, big, 3, -big, 0, 3, big, -big, 0}), (Pixel{3, 0, 0}));
}

TEST_P(ColorTwist, WhatIsNotANumberIsBlack) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Twisted({9, 9, 9}, {nan, 0, 0, 0, infinity, 0, 0, 0, infinity, -infinity, 0, 0}),
              (Pixel{0, 255, 0}));
}

TEST_P(ColorTwist, EveryColourThroughTheSepiaMatrix) {
    ForAllColours([](uint32_t first) {
        Bytes fast = PackedBand(first);
        Bytes plain = fast;
        PrimColorTwist8uC3(fast.data(), 3 * kBandWidth, kBandWidth, kBandHeight, kSepia.data());
        model::PrimColorTwist8uC3(plain.data(), 3 * kBandWidth, kBandWidth, kBandHeight, kSepia.data());
        ASSERT_EQ(fast, plain);
    });
}

TEST_P(ColorTwist, ManyMatricesWhoseSumsComeNearHalves) {
    // Terms of few bits make sums that are ties or miss one by little; a last term moves them off by less
    // than single precision can tell.
    uint32_t state = 7;
    const auto next = [&](uint32_t range) {
        state = state * 1664525 + 1013904223;
        return (state >> 8) % range;
    };
    Bytes pixels(3 * 4096);
    for (int round = 0; round < 400; ++round) {
        Matrix matrix;
        for (float& m : matrix) {
            m = (static_cast<float>(next(257)) - 128) / static_cast<float>(1u << next(9));
        }
        for (const size_t i : {3u, 7u, 11u}) {
            matrix[i] += 0.5f + (static_cast<float>(next(3)) - 1) * 1e-7f * static_cast<float>(next(64));
        }
        for (uint8_t& byte : pixels) {
            byte = static_cast<uint8_t>(next(256));
        }
        Bytes fast = pixels;
        Bytes plain = pixels;
        PrimColorTwist8uC3(fast.data(), 3 * 4096, 4096, 1, matrix.data());
        model::PrimColorTwist8uC3(plain.data(), 3 * 4096, 4096, 1, matrix.data());
        ASSERT_EQ(fast, plain) << "round " << round;
    }
}

// ---- planes to packed pixels --------------------------------------------------------------------

/// A picture of planes, in one block.
struct Planes {
    Planes(int32_t width, int32_t height)
        : y(static_cast<size_t>(width) * static_cast<size_t>(height)),
          u(static_cast<size_t>((width + 1) / 2) * static_cast<size_t>((height + 1) / 2)),
          v(u.size()) {}

    std::array<uint8_t*, 3> pointers() { return {y.data(), u.data(), v.data()}; }
    std::array<const uint8_t*, 3> constPointers() const { return {y.data(), u.data(), v.data()}; }
    bool operator==(const Planes&) const = default;

    Bytes y;
    Bytes u;
    Bytes v;
};

TEST_P(YuvToRgb, NeutralChromaGivesGrey) {
    for (const int32_t width : {1, 2, 33, 256}) {
        Planes planes(width, 3);
        for (size_t i = 0; i < planes.y.size(); ++i) {
            planes.y[i] = static_cast<uint8_t>(i);
        }
        planes.u.assign(planes.u.size(), 128);
        planes.v.assign(planes.v.size(), 128);
        Bytes packed(planes.y.size() * 3);
        ASSERT_EQ(PrimYuv420ToRgb(planes.constPointers().data(), packed.data(), width, 3), kPrimOk);
        for (size_t i = 0; i < packed.size(); ++i) {
            ASSERT_EQ(packed[i], planes.y[i / 3]);
        }
    }
}

TEST_P(YuvToRgb, EveryColour) {
    // Chroma stays the same over a 2 by 2 block: all luma values for one pair of chroma, four at a time.
    constexpr int32_t kWidth = 128;
    Planes planes(kWidth, 2);
    for (size_t i = 0; i < 256; ++i) {
        planes.y[i] = static_cast<uint8_t>(i);
    }
    Bytes fast(768);
    Bytes plain(768);
    for (uint32_t chroma = 0; chroma < 1u << 16; chroma += kStride) {
        planes.u.assign(64, static_cast<uint8_t>(chroma));
        planes.v.assign(64, static_cast<uint8_t>(chroma >> 8));
        PrimYuv420ToRgb(planes.constPointers().data(), fast.data(), kWidth, 2);
        model::PrimYuv420ToRgb(planes.constPointers().data(), plain.data(), kWidth, 2);
        ASSERT_EQ(fast, plain) << "chroma " << chroma;
    }
}

// ---- packed pixels to planes --------------------------------------------------------------------

TEST_P(RgbToYuv, ALonePixelGivesOneSampleInEachPlane) {
    const uint8_t pixel[3] = {200, 100, 50};
    uint8_t y[2] = {7, 7};
    uint8_t u[2] = {7, 7};
    uint8_t v[2] = {7, 7};
    uint8_t* const planes[3] = {y, u, v};
    ASSERT_EQ(PrimRgbToYuv420(pixel, planes, 1, 1), kPrimOk);
    const int32_t luma = 19595 * 200 + 38470 * 100 + 7471 * 50;
    EXPECT_EQ(y[0], luma >> 16);
    EXPECT_EQ(u[0], (((((50 << 16) - luma) >> 16) * 32244) >> 16) + 128);
    EXPECT_EQ(v[0], (((((200 << 16) - luma) >> 16) * 57475) >> 16) + 128);
    EXPECT_EQ(y[1], 7);
    EXPECT_EQ(u[1], 7);
    EXPECT_EQ(v[1], 7);
}

TEST_P(RgbToYuv, GreyHasNeutralChroma) {
    const Bytes packed(3 * 40 * 5, 90);
    Planes planes(40, 5);
    ASSERT_EQ(PrimRgbToYuv420(packed.data(), planes.pointers().data(), 40, 5), kPrimOk);
    EXPECT_EQ(planes.y, Bytes(200, 90));
    // A whole block rounds its difference up: 1 * 32244 and 1 * 57475 stay below one step after the shift
    // by 18.
    EXPECT_EQ(planes.u, Bytes(60, 128));
    EXPECT_EQ(planes.v, Bytes(60, 128));
}

TEST_P(RgbToYuv, EveryColourInMixedBlocksAndInFlatOnes) {
    ForAllColours([](uint32_t first) {
        const Bytes band = PackedBand(first);
        Planes fast(kBandWidth, kBandHeight);
        Planes plain(kBandWidth, kBandHeight);
        PrimRgbToYuv420(band.data(), fast.pointers().data(), kBandWidth, kBandHeight);
        model::PrimRgbToYuv420(band.data(), plain.pointers().data(), kBandWidth, kBandHeight);
        ASSERT_EQ(fast, plain);
        // Every colour as a flat block.
        Bytes blocks(band.size() * 2);
        for (size_t i = 0; i < kBandPixels; ++i) {
            for (size_t c = 0; c < 3; ++c) {
                blocks[6 * i + c] = blocks[6 * i + 3 + c] = band[3 * i + c];
            }
        }
        Bytes twice(blocks.size() * 2 / kBandHeight);  // one row of blocks
        const size_t rowBytes = blocks.size() / kBandHeight;
        Planes fastRow(2 * kBandWidth, 2);
        Planes plainRow(2 * kBandWidth, 2);
        for (size_t row = 0; row < kBandHeight; ++row) {
            std::copy_n(blocks.begin() + static_cast<ptrdiff_t>(row * rowBytes), rowBytes, twice.begin());
            std::copy_n(twice.begin(), rowBytes, twice.begin() + static_cast<ptrdiff_t>(rowBytes));
            PrimRgbToYuv420(twice.data(), fastRow.pointers().data(), 2 * kBandWidth, 2);
            model::PrimRgbToYuv420(twice.data(), plainRow.pointers().data(), 2 * kBandWidth, 2);
            ASSERT_EQ(fastRow, plainRow);
        }
    });
}

TEST_P(RgbToYuv, BlockSumsOverTheWholeRange) {
    // Chroma depends on the three sums of a block, 0..1020 each: a grid of them, with its neighbours.
    std::vector<int32_t> sums;
    for (int32_t s = 0; s <= 1020; s += kStride == 1 ? 20 : 102) {
        for (const int32_t near : {s - 1, s, s + 1}) {
            if (near >= 0 && near <= 1020) {
                sums.push_back(near);
            }
        }
    }
    const auto count = static_cast<int32_t>(sums.size());
    const auto part = [](int32_t sum, int32_t i) { return static_cast<uint8_t>((sum + i) / 4); };  // i = 0..3
    Planes fast(2 * count, 2);
    Planes plain(2 * count, 2);
    Bytes packed(fast.y.size() * 3);
    for (const int32_t s0 : sums) {
        for (const int32_t s1 : sums) {
            for (int32_t x = 0; x < count; ++x) {
                const int32_t s2 = sums[static_cast<size_t>(x)];
                for (int32_t i = 0; i < 4; ++i) {
                    uint8_t* p = packed.data() + 3 * (i / 2 * 2 * count + 2 * x + i % 2);
                    p[0] = part(s0, i);
                    p[1] = part(s1, 3 - i);
                    p[2] = part(s2, i ^ 2);
                }
            }
            PrimRgbToYuv420(packed.data(), fast.pointers().data(), 2 * count, 2);
            model::PrimRgbToYuv420(packed.data(), plain.pointers().data(), 2 * count, 2);
            ASSERT_EQ(fast, plain) << "sums " << s0 << ", " << s1;
        }
    }
}

}  // namespace
