#include "sfx/RowLoops.h"

#include <array>
#include <cmath>
#include <cstring>

#include "imaging/PerLevel.h"
#include "sfx/sfx.h"

namespace sfx {
namespace {

// Unaligned words of pixels, little-endian on every processor.
template <class Word>
SE_INLINE Word LoadWord(const uint8_t* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}
template <class Word>
SE_INLINE void StoreWord(uint8_t* bytes, Word word) {
    std::memcpy(bytes, &word, sizeof word);
}

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

SE_INLINE void SplitPairsLoop(const uint8_t* SE_RESTRICT pairs, uint8_t* SE_RESTRICT first,
                              uint8_t* SE_RESTRICT second, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto pair = LoadWord<uint16_t>(pairs + 2 * i);
        first[i] = static_cast<uint8_t>(pair & 255);
        second[i] = static_cast<uint8_t>(pair >> 8);
    }
}

SE_INLINE void JoinPairsLoop(const uint8_t* SE_RESTRICT first, const uint8_t* SE_RESTRICT second,
                             uint8_t* SE_RESTRICT pairs, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        pairs[2 * i] = first[i];
        pairs[2 * i + 1] = second[i];
    }
}

SE_INLINE void SplitTriplesLoop(const uint8_t* SE_RESTRICT pixels, uint8_t* SE_RESTRICT c0,
                                uint8_t* SE_RESTRICT c1, uint8_t* SE_RESTRICT c2, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        c0[i] = pixels[3 * i];
        c1[i] = pixels[3 * i + 1];
        c2[i] = pixels[3 * i + 2];
    }
}

SE_INLINE void JoinTriplesLoop(const uint8_t* SE_RESTRICT c0, const uint8_t* SE_RESTRICT c1,
                               const uint8_t* SE_RESTRICT c2, uint8_t* SE_RESTRICT pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        pixels[3 * i] = c0[i];
        pixels[3 * i + 1] = c1[i];
        pixels[3 * i + 2] = c2[i];
    }
}

SE_INLINE void SplitQuadsLoop(const uint8_t* SE_RESTRICT pixels, uint8_t* SE_RESTRICT c0,
                              uint8_t* SE_RESTRICT c1, uint8_t* SE_RESTRICT c2, uint8_t* SE_RESTRICT c3,
                              size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto pixel = LoadWord<uint32_t>(pixels + 4 * i);
        c0[i] = static_cast<uint8_t>(pixel);
        c1[i] = static_cast<uint8_t>(pixel >> 8);
        c2[i] = static_cast<uint8_t>(pixel >> 16);
        c3[i] = static_cast<uint8_t>(pixel >> 24);
    }
}

SE_INLINE void JoinQuadsLoop(const uint8_t* SE_RESTRICT c0, const uint8_t* SE_RESTRICT c1,
                             const uint8_t* SE_RESTRICT c2, const uint8_t* SE_RESTRICT c3,
                             uint8_t* SE_RESTRICT pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        pixels[4 * i] = c0[i];
        pixels[4 * i + 1] = c1[i];
        pixels[4 * i + 2] = c2[i];
        pixels[4 * i + 3] = c3[i];
    }
}

SE_INLINE void MeanOfRowsLoop(const uint8_t* SE_RESTRICT row0, const uint8_t* SE_RESTRICT row1,
                              uint8_t* SE_RESTRICT mean, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        mean[i] = static_cast<uint8_t>((row0[i] + row1[i] + 1) >> 1);
    }
}

/// Sum of two neighbouring bytes.
SE_INLINE uint16_t PairSum(const uint8_t* bytes) {
    const auto pair = LoadWord<uint16_t>(bytes);
    return static_cast<uint16_t>((pair & 255) + (pair >> 8));
}

SE_INLINE uint16_t BlockMean(const uint8_t* row0, const uint8_t* row1, size_t block) {
    return static_cast<uint16_t>((PairSum(row0 + 2 * block) + PairSum(row1 + 2 * block) + 2) >> 2);
}

SE_INLINE void MeanOfBlocksLoop(const uint8_t* SE_RESTRICT row0, const uint8_t* SE_RESTRICT row1,
                                uint8_t* SE_RESTRICT mean, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        mean[i] = static_cast<uint8_t>(BlockMean(row0, row1, i));
    }
}

SE_INLINE void RepeatBytesLoop(const uint8_t* SE_RESTRICT row, uint8_t* SE_RESTRICT doubled, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        StoreWord(doubled + 2 * i, static_cast<uint16_t>(row[i] * 257));
    }
}

// ---- colour ------------------------------------------------------------------------------------------

/// The upper half of a product, rounded down: one instruction a vector, as long as both factors are unsigned.
SE_INLINE int16_t MulHigh(uint16_t a, uint16_t b) {
    return static_cast<int16_t>((uint32_t{a} * b) >> 16);
}

/// A channel times its weight, times 64.
SE_INLINE int16_t RgbPart(int channel, uint16_t weight) {
    return MulHigh(static_cast<uint16_t>(channel << 7), weight);
}
/// A luma or chroma sample times its weight, times 32.
SE_INLINE int16_t LumaPart(int sample, uint16_t gain) {
    return MulHigh(static_cast<uint16_t>(sample << 7), gain);
}
SE_INLINE int16_t ChromaPart(int sample, uint16_t weight) {
    return MulHigh(static_cast<uint16_t>(sample << 8), weight);
}

SE_INLINE uint8_t Saturate(int16_t value) {
    return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}
SE_INLINE int16_t Sum(int a, int b, int c, int d) {
    return static_cast<int16_t>(a + b + c + d);
}

SE_INLINE uint8_t Luma(int r, int g, int b, const ColorWeights& weights) {
    const int16_t sum =
        Sum(RgbPart(r, weights.yRed), RgbPart(g, weights.yGreen), RgbPart(b, weights.yBlue), weights.yBias);
    return static_cast<uint8_t>(sum >> 6);
}

SE_INLINE void LumaOfRgbLoop(const uint8_t* SE_RESTRICT r, const uint8_t* SE_RESTRICT g,
                             const uint8_t* SE_RESTRICT b, ColorWeights weights, uint8_t* SE_RESTRICT y,
                             size_t count) {
    for (size_t i = 0; i < count; ++i) {
        y[i] = Luma(r[i], g[i], b[i], weights);
    }
}

constexpr int16_t kChromaBias = 64 * 128 + 32;

SE_INLINE void ChromaOfRgbLoop(const uint8_t* SE_RESTRICT r0, const uint8_t* SE_RESTRICT g0,
                               const uint8_t* SE_RESTRICT b0, const uint8_t* SE_RESTRICT r1,
                               const uint8_t* SE_RESTRICT g1, const uint8_t* SE_RESTRICT b1,
                               ColorWeights weights, uint8_t* SE_RESTRICT u, uint8_t* SE_RESTRICT v,
                               size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const int r = BlockMean(r0, r1, i), g = BlockMean(g0, g1, i), b = BlockMean(b0, b1, i);
        const int16_t cb = Sum(RgbPart(b, weights.uBlue), -RgbPart(r, weights.uMinusRed),
                               -RgbPart(g, weights.uMinusGreen), kChromaBias);
        const int16_t cr = Sum(RgbPart(r, weights.vRed), -RgbPart(g, weights.vMinusGreen),
                               -RgbPart(b, weights.vMinusBlue), kChromaBias);
        u[i] = Saturate(static_cast<int16_t>(cb >> 6));
        v[i] = Saturate(static_cast<int16_t>(cr >> 6));
    }
}

SE_INLINE void RgbOfYuvLoop(const uint8_t* SE_RESTRICT y, const uint8_t* SE_RESTRICT u,
                            const uint8_t* SE_RESTRICT v, ColorWeights weights, uint8_t* SE_RESTRICT r,
                            uint8_t* SE_RESTRICT g, uint8_t* SE_RESTRICT b, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const int16_t red = Sum(ChromaPart(v[i], weights.redV), weights.redBias, 0, 0);
        const int16_t green = Sum(-ChromaPart(u[i], weights.greenMinusU),
                                  -ChromaPart(v[i], weights.greenMinusV), weights.greenBias, 0);
        const int16_t blue = Sum(ChromaPart(u[i], weights.blueU), weights.blueBias, 0, 0);
        const auto pair = LoadWord<uint16_t>(y + 2 * i);
        const int16_t y0 = LumaPart(pair & 255, weights.gain), y1 = LumaPart(pair >> 8, weights.gain);
        const auto channel = [](int16_t l0, int16_t l1, int16_t chroma) {
            const uint8_t p0 = Saturate(static_cast<int16_t>(static_cast<int16_t>(l0 + chroma) >> 5));
            const uint8_t p1 = Saturate(static_cast<int16_t>(static_cast<int16_t>(l1 + chroma) >> 5));
            return static_cast<uint16_t>(p0 | p1 << 8);
        };
        StoreWord(r + 2 * i, channel(y0, y1, red));
        StoreWord(g + 2 * i, channel(y0, y1, green));
        StoreWord(b + 2 * i, channel(y0, y1, blue));
    }
}

SE_INLINE void ChangeLumaLoop(uint8_t* SE_RESTRICT r, uint8_t* SE_RESTRICT g, uint8_t* SE_RESTRICT b,
                              ColorWeights weights, const uint8_t* SE_RESTRICT y, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const int16_t before = LumaPart(Luma(r[i], g[i], b[i], weights), weights.gain);
        const auto change = static_cast<int16_t>(Sum(LumaPart(y[i], weights.gain), -before, 16, 0) >> 5);
        r[i] = Saturate(static_cast<int16_t>(r[i] + change));
        g[i] = Saturate(static_cast<int16_t>(g[i] + change));
        b[i] = Saturate(static_cast<int16_t>(b[i] + change));
    }
}

// Luma of red and blue (ITU-R BT.601-7, BT.709-6, BT.2020-2); green has the rest.
struct Matrix {
    double red, blue;
};
constexpr std::array<Matrix, 3> kMatrices = {{{0.299, 0.114}, {0.2126, 0.0722}, {0.2627, 0.0593}}};

uint16_t Fixed(double value, int bits) {
    return static_cast<uint16_t>(std::lround(std::ldexp(value, bits)));
}

ColorWeights MakeWeights(const Matrix& matrix, bool full) {
    const double red = matrix.red, blue = matrix.blue, green = 1 - red - blue;
    const double lumaScale = full ? 1.0 : 219.0 / 255.0;
    const double chromaScale = full ? 1.0 : 224.0 / 255.0;
    const double black = full ? 0.0 : 16.0;
    const double u = chromaScale / (2 * (1 - blue)), v = chromaScale / (2 * (1 - red));
    const double gain = 1 / lumaScale;
    const double redV = 1 / v, blueU = 1 / u, greenU = blue / green / u, greenV = red / green / v;
    // The constant parts: half a level, and half of what each product on average loses to rounding down.
    const auto bias = [&](double chroma, double lost) {
        return static_cast<int16_t>(std::lround(32 * (-gain * black - 128 * chroma) + 16 + lost));
    };
    return {.yRed = Fixed(lumaScale * red, 15),
            .yGreen = Fixed(lumaScale * green, 15),
            .yBlue = Fixed(lumaScale * blue, 15),
            .uBlue = Fixed(u * (1 - blue), 15),
            .uMinusRed = Fixed(u * red, 15),
            .uMinusGreen = Fixed(u * green, 15),
            .vRed = Fixed(v * (1 - red), 15),
            .vMinusGreen = Fixed(v * green, 15),
            .vMinusBlue = Fixed(v * blue, 15),
            .yBias = static_cast<int16_t>(std::lround(64 * black) + 33),
            .gain = Fixed(gain, 14),
            .redV = Fixed(redV, 13),
            .greenMinusU = Fixed(greenU, 13),
            .greenMinusV = Fixed(greenV, 13),
            .blueU = Fixed(blueU, 13),
            .redBias = bias(redV, 1),
            .greenBias = bias(-greenU - greenV, 0),
            .blueBias = bias(blueU, 1)};
}

}  // namespace

const ColorWeights& WeightsOf(int32_t matrix, int32_t range) {
    static const auto weights = [] {
        std::array<std::array<ColorWeights, 2>, kMatrices.size()> all;
        for (size_t i = 0; i < all.size(); ++i) {
            all[i] = {MakeWeights(kMatrices[i], false), MakeWeights(kMatrices[i], true)};
        }
        return all;
    }();
    return weights[static_cast<size_t>(matrix)][static_cast<size_t>(range)];
}

void SplitPairs(const uint8_t* pairs, uint8_t* first, uint8_t* second, size_t count) {
    AtLevel<SplitPairsLoop>(pairs, first, second, count);
}
void JoinPairs(const uint8_t* first, const uint8_t* second, uint8_t* pairs, size_t count) {
    AtLevel<JoinPairsLoop>(first, second, pairs, count);
}
void SplitTriples(const uint8_t* pixels, uint8_t* c0, uint8_t* c1, uint8_t* c2, size_t count) {
    AtLevel<SplitTriplesLoop>(pixels, c0, c1, c2, count);
}
void JoinTriples(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, uint8_t* pixels, size_t count) {
    AtLevel<JoinTriplesLoop>(c0, c1, c2, pixels, count);
}
void SplitQuads(const uint8_t* pixels, uint8_t* c0, uint8_t* c1, uint8_t* c2, uint8_t* c3, size_t count) {
    AtLevel<SplitQuadsLoop>(pixels, c0, c1, c2, c3, count);
}
void JoinQuads(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, const uint8_t* c3, uint8_t* pixels,
               size_t count) {
    AtLevel<JoinQuadsLoop>(c0, c1, c2, c3, pixels, count);
}
void MeanOfRows(const uint8_t* row0, const uint8_t* row1, uint8_t* mean, size_t count) {
    AtLevel<MeanOfRowsLoop>(row0, row1, mean, count);
}
void MeanOfBlocks(const uint8_t* row0, const uint8_t* row1, uint8_t* mean, size_t count) {
    AtLevel<MeanOfBlocksLoop>(row0, row1, mean, count);
}
void RepeatBytes(const uint8_t* row, uint8_t* doubled, size_t count) {
    AtLevel<RepeatBytesLoop>(row, doubled, count);
}
void LumaOfRgb(const RgbRow& rgb, const ColorWeights& weights, uint8_t* y, size_t count) {
    AtLevel<LumaOfRgbLoop>(rgb.r, rgb.g, rgb.b, weights, y, count);
}
void ChromaOfRgb(const RgbRow& row0, const RgbRow& row1, const ColorWeights& weights, uint8_t* u, uint8_t* v,
                 size_t count) {
    AtLevel<ChromaOfRgbLoop>(row0.r, row0.g, row0.b, row1.r, row1.g, row1.b, weights, u, v, count);
}
void RgbOfYuv(const uint8_t* y, const uint8_t* u, const uint8_t* v, const ColorWeights& weights,
              const RgbRow& rgb, size_t count) {
    AtLevel<RgbOfYuvLoop>(y, u, v, weights, rgb.r, rgb.g, rgb.b, count);
}
void ChangeLuma(const RgbRow& rgb, const ColorWeights& weights, const uint8_t* y, size_t count) {
    AtLevel<ChangeLumaLoop>(rgb.r, rgb.g, rgb.b, weights, y, count);
}

}  // namespace sfx
