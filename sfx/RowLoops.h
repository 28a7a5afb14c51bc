// Loops over rows of pixels, from which conversions are made. Each runs at the processor level in force. Rows
// do not overlap unless said otherwise.
#ifndef SPECIALEFFECTS_SFX_ROWLOOPS_H
#define SPECIALEFFECTS_SFX_ROWLOOPS_H

#include <cstddef>
#include <cstdint>

namespace sfx {

/// `count` pairs of bytes to the first and the second of each, and back.
void SplitPairs(const uint8_t* pairs, uint8_t* first, uint8_t* second, size_t count);
void JoinPairs(const uint8_t* first, const uint8_t* second, uint8_t* pairs, size_t count);

/// Pixels of 3 or 4 bytes to a row for each byte, and back.
void SplitTriples(const uint8_t* pixels, uint8_t* c0, uint8_t* c1, uint8_t* c2, size_t count);
void JoinTriples(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, uint8_t* pixels, size_t count);
void SplitQuads(const uint8_t* pixels, uint8_t* c0, uint8_t* c1, uint8_t* c2, uint8_t* c3, size_t count);
void JoinQuads(const uint8_t* c0, const uint8_t* c1, const uint8_t* c2, const uint8_t* c3, uint8_t* pixels,
               size_t count);

/// Mean of two rows, halves up.
void MeanOfRows(const uint8_t* row0, const uint8_t* row1, uint8_t* mean, size_t count);
/// Mean of `count` blocks of 2 by 2, halves up.
void MeanOfBlocks(const uint8_t* row0, const uint8_t* row1, uint8_t* mean, size_t count);
/// Each of `count` bytes twice.
void RepeatBytes(const uint8_t* row, uint8_t* doubled, size_t count);

/// The conversion between RGB and luma and chroma for one matrix and range, in fixed point. All factors are
/// positive; those with "Minus" in their names are subtracted.
struct ColorWeights {
    // Y = (R + G + B parts + bias) / 64, U = (B - R - G parts + bias) / 64,
    // V = (R - G - B parts + bias) / 64.
    uint16_t yRed, yGreen, yBlue;  ///< times 2^15
    uint16_t uBlue, uMinusRed, uMinusGreen;
    uint16_t vRed, vMinusGreen, vMinusBlue;
    int16_t yBias;
    // R = (Y + V parts + bias) / 32, G = (Y - U - V parts + bias) / 32, B = (Y + U parts + bias) / 32.
    uint16_t gain;                                   ///< of luma, times 2^14
    uint16_t redV, greenMinusU, greenMinusV, blueU;  ///< times 2^13
    int16_t redBias, greenBias, blueBias;
};
/// A sfx_matrix and a sfx_range.
const ColorWeights& WeightsOf(int32_t matrix, int32_t range);

/// Planes of one picture's row, or of a part of one.
struct RgbRow {
    uint8_t *r, *g, *b;
};

void LumaOfRgb(const RgbRow& rgb, const ColorWeights& weights, uint8_t* y, size_t count);
/// Chroma of the means of `count` blocks of 2 by 2.
void ChromaOfRgb(const RgbRow& row0, const RgbRow& row1, const ColorWeights& weights, uint8_t* u, uint8_t* v,
                 size_t count);
/// RGB of two pixels for each of `count` chroma samples.
void RgbOfYuv(const uint8_t* y, const uint8_t* u, const uint8_t* v, const ColorWeights& weights,
              const RgbRow& rgb, size_t count);
/// Adds to each pixel what the change of its own luma to `y` amounts to.
void ChangeLuma(const RgbRow& rgb, const ColorWeights& weights, const uint8_t* y, size_t count);

}  // namespace sfx

#endif
