// The image primitives: plain functions on raw pixels with exact arithmetic.
//
// Calling convention
//   - An image is a pointer to the first pixel of the region, a row step in bytes, and a width and height in
//     pixels that all images of the call share. Callers offset the pointer themselves. Pointers need no
//     alignment beyond that of the element.
//   - Element types are in the name: 8u uint8_t, 16s int16_t, 32s int32_t, 32f float, 64f double; C1 is one
//     channel and C3 three interleaved bytes a pixel (a width of 1 is three bytes).
//   - Results depend on the arguments alone: every processor gives the same bytes.
//   - Everything is reentrant, allocates nothing unless said so, and writes nothing outside the region.
//
// Checks come first and in one order: null pointers, sizes, row steps (too small, then misaligned), then the
// parameters of the primitive itself. The first code that applies is returned and no image is touched.
//
// Which pixels are read: those of the region, unless a comment says what is read around it. Two images of one
// call either do not overlap or, in the operations that work pixel by pixel on 8uC1, are one and the same
// image.
//
// Rounding words
//   truncated     toward zero
//   half to even  trunc(x + 0.5), less 1 when that is odd and equals x + 0.5 exactly
//   even shift    of an integer v by s > 0: half to even of v / 2^s, that is
//                 (v + (1 << (s-1)) - 1 + ((v >> s) & 1)) >> s
//   sat8          clamped to 0..255
#ifndef SPECIALEFFECTS_IMAGING_PRIM_H
#define SPECIALEFFECTS_IMAGING_PRIM_H

#include <cstdint>

// ---- status -------------------------------------------------------------------------------------

/// Answer of a primitive: 0 success; negative an error, nothing was written; positive a warning.
using PrimStatus = int32_t;

inline constexpr PrimStatus kPrimOk = 0;
inline constexpr PrimStatus kPrimSizeError = -6;        ///< a size is below 1 or inconsistent
inline constexpr PrimStatus kPrimNullError = -8;        ///< a pointer is null
inline constexpr PrimStatus kPrimMemoryError = -9;      ///< out of memory
inline constexpr PrimStatus kPrimNegativeError = -11;   ///< a duration or similar parameter is negative
inline constexpr PrimStatus kPrimRangeError = -13;      ///< value range empty: hi not above lo
inline constexpr PrimStatus kPrimStepError = -14;       ///< a row step is below 1 or too small for the width
inline constexpr PrimStatus kPrimThresholdError = -18;  ///< threshold pair out of order: hi below lo
inline constexpr PrimStatus kPrimAxisError = -21;       ///< mirror axis unknown
inline constexpr PrimStatus kPrimInterpolationError = -22;  ///< interpolation mode unknown
inline constexpr PrimStatus kPrimMaskError = -33;           ///< mask size unsupported
inline constexpr PrimStatus kPrimAnchorError = -34;         ///< anchor outside the mask
inline constexpr PrimStatus kPrimMorphologyStepError =
    -37;                                                 ///< row step too small for a 3 by 3 morphology pass
inline constexpr PrimStatus kPrimDivisorError = -51;     ///< filter divisor is 0
inline constexpr PrimStatus kPrimLevelsError = -54;      ///< levels outside 2..256
inline constexpr PrimStatus kPrimNoiseError = -55;       ///< noise outside 0..100
inline constexpr PrimStatus kPrimAlignmentError = -108;  ///< row step not a multiple of the element size
inline constexpr PrimStatus kPrimOutsideSource = 29;     ///< region outside the source, nothing done

// ---- parameter codes ----------------------------------------------------------------------------

inline constexpr int32_t kPrimMask3x3 = 33;
inline constexpr int32_t kPrimMask5x5 = 55;

inline constexpr int32_t kPrimNearest = 1;
inline constexpr int32_t kPrimLinear = 2;
inline constexpr int32_t kPrimCubic = 4;  ///< cubic in `PrimRotate8uC1`; linear samples in remap and resize
inline constexpr int32_t kPrimArea = 8;   ///< resize only, and answered with linear samples
inline constexpr int32_t kPrimLanczos = 16;
/// Bit of the interpolation word of `PrimRotate8uC1`: blend the edge of the rotated picture.
inline constexpr uint32_t kPrimSmoothEdge = 0x80000000u;

inline constexpr int32_t kPrimMirrorRows = 0;     ///< upside down
inline constexpr int32_t kPrimMirrorColumns = 1;  ///< left to right
inline constexpr int32_t kPrimMirrorBoth = 2;

inline constexpr int32_t kPrimBorderReplicate = 1;

// ---- memory -------------------------------------------------------------------------------------

/// A block of `size` bytes aligned to 32 bytes, contents undefined; null for a size below 1 or when memory
/// runs out. The caller owns it and gives it back to `PrimFreeBuffer`.
[[nodiscard]] void* PrimAllocBuffer(int32_t size);

/// Frees a block of `PrimAllocBuffer`; null is accepted.
void PrimFreeBuffer(void* buffer);

/// Writes (width + 31) & ~31 to `step` and returns a block of step * height bytes aligned to 32 bytes; null,
/// and a step of 0, for a size below 1, a width above 2^31 - 32, or when memory runs out. With a null `step`
/// returns null. Freed by `PrimFree`.
[[nodiscard]] uint8_t* PrimMalloc8uC1(int32_t width, int32_t height, int32_t* step);

/// The same as `PrimFreeBuffer`.
void PrimFree(void* image);

// ---- fill, copy, mean ---------------------------------------------------------------------------

/// Every pixel = value.
PrimStatus PrimSet8uC1(uint8_t value, uint8_t* dst, int32_t step, int32_t width, int32_t height);

PrimStatus PrimCopy8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                        int32_t height);

/// mean = sum of the pixels / (width * height).
PrimStatus PrimMean8uC1(const uint8_t* src, int32_t step, int32_t width, int32_t height, double* mean);

// ---- arithmetic, in place on the second image ---------------------------------------------------
//
// `scale` divides the result by 2^scale; a negative one multiplies by 2^-scale.

/// s = srcDst + src. scale 0: sat8(s); 1 to 9: even shift of s; above 9: 0; -7 to -1: sat8(s << -scale);
/// below -7: 0 stays 0 and anything else is 255.
PrimStatus PrimAddSfs8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                          int32_t width, int32_t height, int32_t scale);

/// s = max(srcDst - src, 0). scale 0: s; 1 to 8: even shift of s; above 8: 0; -7 to -1: sat8(s << -scale);
/// below -7: 255 where srcDst > src, else 0.
PrimStatus PrimSubSfs8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                          int32_t width, int32_t height, int32_t scale);

/// s = data * value. scale 0: sat8(s); 1 to 16: sat8 of the even shift of s; above 16: 0; -7 to -1:
/// sat8(s << -scale); below -7: 255 where s is not 0. A value of 0 gives 0 with every scale.
PrimStatus PrimMulCSfs8uC1(uint8_t value, uint8_t* data, int32_t step, int32_t width, int32_t height,
                           int32_t scale);

/// A product on the 0..255 scale: p = src * srcDst, result (p + (p >> 8) + 1) >> 8.
PrimStatus PrimMulScale8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                            int32_t width, int32_t height);

/// srcDst = srcDst & src.
PrimStatus PrimAnd8uC1(const uint8_t* src, int32_t srcStep, uint8_t* srcDst, int32_t srcDstStep,
                       int32_t width, int32_t height);

/// Each byte = 255 - byte.
PrimStatus PrimNot8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height);

// ---- thresholds ---------------------------------------------------------------------------------

/// x < threshold becomes threshold. In place.
PrimStatus PrimThresholdLT8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, uint8_t threshold);

/// x > threshold becomes value. In place.
PrimStatus PrimThresholdGTVal8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                  uint8_t threshold, uint8_t value);

/// x > hi gives hiValue, else x < lo gives loValue, else x. hi below lo: kPrimThresholdError.
PrimStatus PrimThresholdLTValGTVal8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                       int32_t width, int32_t height, uint8_t lo, uint8_t loValue, uint8_t hi,
                                       uint8_t hiValue);

/// The same in place.
PrimStatus PrimThresholdLTValGTValInPlace8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                              uint8_t lo, uint8_t loValue, uint8_t hi, uint8_t hiValue);

// ---- other point operations ---------------------------------------------------------------------

/// Posterises each byte to `levels` evenly spaced values (2..256, else kPrimLevelsError): with L = levels - 1
/// and q = x / 255, k = trunc(L * q) / L, one step of 1 / L more when q - k is at least half a step, result
/// trunc(k * 255). `noise` must lie in 0..100 (else kPrimNoiseError) and `ditherType` is not read: plain
/// rounding without noise is the only form there is, and every value of the two is served by it.
PrimStatus PrimReduceBits8uC3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                              int32_t width, int32_t height, int32_t noise, int32_t ditherType,
                              int32_t levels);

/// Maps lo..hi to 0..255: x at or above hi gives 255; x at or below lo, or not a number, gives 0; between
/// them half to even of (x - lo) * 255 / (hi - lo), computed in double as x * f + (0.5 - f * lo), f = 255 /
/// (hi - lo). `srcStep` must be a multiple of 4. hi not above lo (or not a number): kPrimRangeError.
PrimStatus PrimScale32f8u(const float* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                          int32_t height, float lo, float hi);

/// Motion history in seconds: entries older than timestamp - duration (in single precision) become 0, and
/// where the silhouette is not 0 the entry becomes `timestamp`. Age is compared on the bit pattern made
/// order-preserving, so that a negative entry counts as older and no value is undefined. `mhiStep` must be a
/// multiple of 4; a negative duration gives kPrimNegativeError.
PrimStatus PrimUpdateMotionHistory8u32f(const uint8_t* silhouette, int32_t silhouetteStep, float* mhi,
                                        int32_t mhiStep, int32_t width, int32_t height, float timestamp,
                                        float duration);

/// Adds one sample of mean + stdDev * N(0, 1), truncated, to each pixel, sat8. `seed` starts the generator
/// and receives its state, so that the next call goes on from there. Width below 1 gives kPrimSizeError like
/// everywhere, and sets the seed to 0.
PrimStatus PrimAddGaussNoise8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, double mean,
                                 double stdDev, uint32_t* seed);

// ---- colour -------------------------------------------------------------------------------------

/// Applies a 3 by 4 matrix of rows to three-byte pixels, in place:
/// out[c] = m[4c]*p0 + m[4c+1]*p1 + m[4c+2]*p2 + m[4c+3] in double, added from left to right; at or above 255
/// gives 255, at or below 0 (or not a number) gives 0, otherwise half to even. `matrix` is 12 floats.
PrimStatus PrimColorTwist8uC3(uint8_t* data, int32_t step, int32_t width, int32_t height,
                              const float* matrix);

/// Packed pixels (row step 3 * width) to planar 4:2:0: Y, U, V with row steps width, (width + 1) / 2 and
/// (width + 1) / 2; the chroma planes have (height + 1) / 2 rows.
///
/// L = 19595 p0 + 38470 p1 + 7471 p2 and Y = L >> 16. A 2 by 2 block sums L and the bytes; with shift 18,
/// U = low byte of (((((s2 << 16) - Lsum + 0x1ffff) >> 16) * 32244) >> 18) - 128, which wraps, and
/// V = sat8((((((s0 << 16) - Lsum + 0x1ffff) >> 16) * 57475) >> 18) + 128). A last odd column or row pairs
/// two pixels, without the 0x1ffff and with shift 17; a lone corner pixel has shift 16.
PrimStatus PrimRgbToYuv420(const uint8_t* src, uint8_t* const planes[3], int32_t width, int32_t height);

/// The way back, from the same layout. One U and V sample serves each 2 by 2 block, also the partial ones at
/// odd edges. With u = U - 128 and v = V - 128: p0 = sat8(((Y << 16) + 74711 v) >> 16), p1 = sat8(((Y << 16)
/// - 38076 v - 25821 u) >> 16), p2 = sat8(((Y << 16) + 133169 u) >> 16).
PrimStatus PrimYuv420ToRgb(const uint8_t* const planes[3], uint8_t* dst, int32_t width, int32_t height);

// ---- geometry -----------------------------------------------------------------------------------
//
// A source image comes with its whole size and a region of interest in it; `src` points at the image's first
// pixel. A region that reaches past the source is clipped to it; one whose origin lies at or past the
// source's size gives kPrimOutsideSource.

/// Warps through two tables of source coordinates, one float of each for a destination pixel, row steps in
/// bytes. With the clipped region [x0, x1] by [y0, y1], a destination pixel whose coordinates lie outside it
/// is left as it was. Source and destination must be distinct.
///   kPrimNearest  src(trunc(x + 0.5), trunc(y + 0.5))
///   kPrimLinear   ix = trunc(x + 1e-7), fx = x - ix, at the last column ix = x1 - 1 and fx = 1, y alike,
///                 and trunc(0.5 + top + fy * (bottom - top)) with top and bottom interpolated along x; all
///                 in double
///   kPrimCubic    accepted, and answered with kPrimLinear
/// A source 1 wide or high forces nearest. Another mode: kPrimInterpolationError. A map's row step must hold
/// dstWidth floats (kPrimStepError) and be a multiple of 4 (kPrimAlignmentError). Checks in the order null,
/// sizes, mode, steps, region.
PrimStatus PrimRemap8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                         int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight, const float* xMap,
                         int32_t xMapStep, const float* yMap, int32_t yMapStep, uint8_t* dst, int32_t dstStep,
                         int32_t dstWidth, int32_t dstHeight, int32_t interpolation);

/// The same on three-byte pixels, each channel alike.
PrimStatus PrimRemap8uC3(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                         int32_t roiX, int32_t roiY, int32_t roiWidth, int32_t roiHeight, const float* xMap,
                         int32_t xMapStep, const float* yMap, int32_t yMapStep, uint8_t* dst, int32_t dstStep,
                         int32_t dstWidth, int32_t dstHeight, int32_t interpolation);

/// Scales the clipped region of the source by the two factors (destination size over source size). Per axis,
/// with n source pixels and v = n * factor, trunc(v + 1e-7) destination pixels are written, at most the
/// destination's length and at least 1 when v is at least 0.5; the rest stays as it was.
///   kPrimNearest  source pixel trunc((k + 0.5) / factor + 1e-7), at most the last
///   kPrimLinear   step (n - 1) / (v - 1), 0 when v is not above 1: the outermost samples coincide;
///                 weights of 14 fraction bits, rows of 6
///   kPrimLanczos  six taps in each direction on the linear positions
/// kPrimCubic and kPrimArea are accepted and answered with kPrimLinear. Sources too small for a mode step it
/// down: Lanczos needs 8 pixels in each direction, cubic 4, anything but nearest 2. Checks in the order null,
/// source sizes and negative origin, origin past the source, destination sizes, steps, factors
/// (kPrimSizeError), mode.
[[nodiscard]] PrimStatus PrimResize8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight,
                                        int32_t srcStep, int32_t roiX, int32_t roiY, int32_t roiWidth,
                                        int32_t roiHeight, uint8_t* dst, int32_t dstStep, int32_t dstWidth,
                                        int32_t dstHeight, double xFactor, double yFactor,
                                        int32_t interpolation);

/// Rotates by `angle` degrees and shifts: x' = x cos a + y sin a + xShift, y' = -x sin a + y cos a + yShift,
/// with (x, y) in the source and (x', y') in the destination, both from the image origin. A destination pixel
/// of the destination region whose source position lies inside the source region is sampled; the others keep
/// their value. `interpolation` is kPrimNearest, kPrimLinear or kPrimCubic (Catmull and Rom's, edges
/// repeated), with kPrimSmoothEdge added where the outline is to be blended with what lies under it: the
/// picture's weight is then the product of two ramps, along x and y, from 0 on the source region's outermost
/// samples to 1 one sample further in. A multiple of 90 with whole shifts is an exact permutation of pixels,
/// without blending. An angle or a shift that is not finite samples nothing. Checks in the order null, sizes
/// and negative origins, steps, mode, region.
PrimStatus PrimRotate8uC1(const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStep,
                          int32_t srcRoiX, int32_t srcRoiY, int32_t srcRoiWidth, int32_t srcRoiHeight,
                          uint8_t* dst, int32_t dstStep, int32_t dstRoiX, int32_t dstRoiY,
                          int32_t dstRoiWidth, int32_t dstRoiHeight, double angle, double xShift,
                          double yShift, uint32_t interpolation);

/// The shifts that make `PrimRotate8uC1` keep the point (xCenter, yCenter) where it is; for the angle 0 both
/// are 0.
PrimStatus PrimGetRotateShift(double xCenter, double yCenter, double angle, double* xShift, double* yShift);

/// Mirrors in place about a `kPrimMirror...` axis, else kPrimAxisError.
PrimStatus PrimMirror8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, int32_t axis);

/// Copies the source to (leftBorder, topBorder) of the larger destination and fills the rest with the nearest
/// source pixel. Negative borders or a destination smaller than source plus borders: kPrimSizeError.
PrimStatus PrimCopyReplicateBorder8uC1(const uint8_t* src, int32_t srcStep, int32_t srcWidth,
                                       int32_t srcHeight, uint8_t* dst, int32_t dstStep, int32_t dstWidth,
                                       int32_t dstHeight, int32_t topBorder, int32_t leftBorder);

/// The same inside one buffer: `inner` points at the inner rectangle, and the bands of the full rectangle
/// around it, which starts leftBorder columns before and topBorder rows above, are filled.
PrimStatus PrimReplicateBorderInPlace8uC1(uint8_t* inner, int32_t step, int32_t innerWidth,
                                          int32_t innerHeight, int32_t fullWidth, int32_t fullHeight,
                                          int32_t topBorder, int32_t leftBorder);

// ---- neighbourhoods -----------------------------------------------------------------------------
//
// These read the pixels of their mask around the region without a check, as far as the mask reaches (one
// pixel for 3 by 3, two for 5 by 5): the caller passes an interior region so that they exist. The Border
// forms stay inside the region. `mask` is kPrimMask3x3 or kPrimMask5x5, else kPrimMaskError. Some take a
// short line buffer from the heap: kPrimMemoryError when the allocation fails.

/// 3 by 3: weights 1 2 1 / 2 4 2 / 1 2 1, half to even of s / 16.
/// 5 by 5: weights 2 7 12 7 2 / 7 31 52 31 7 / 12 52 127 52 12 / ..., ((s + 286) * 29382) >> 24.
PrimStatus PrimFilterGauss8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                               int32_t width, int32_t height, int32_t mask);

/// Mean of the window: 3 by 3 ((s + 5) * 455) >> 12, 5 by 5 ((s + 13) * 10485) >> 18.
PrimStatus PrimFilterLowpass8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                 int32_t width, int32_t height, int32_t mask);

/// In place: the mean (sum + n / 2) / n of the n pixels of the maskWidth by maskHeight window whose corner is
/// (x - anchorX, y - anchorY), read from the unfiltered image around the region too. The mask must be at
/// least 1 and smaller than the region in each direction (else kPrimMaskError), the anchor inside it (else
/// kPrimAnchorError).
[[nodiscard]] PrimStatus PrimFilterBox8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height,
                                           int32_t maskWidth, int32_t maskHeight, int32_t anchorX,
                                           int32_t anchorY);

/// Median of the window. Both mask sizes must be odd and at least 1 (else kPrimMaskError), the anchor inside
/// the mask (else kPrimAnchorError).
PrimStatus PrimFilterMedian8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                int32_t width, int32_t height, int32_t maskWidth, int32_t maskHeight,
                                int32_t anchorX, int32_t anchorY);

/// s = sum over k of kernel[k] * src(x, y + anchor - k), divided by `divisor`, sat8. Divisor 1: s; a power of
/// two 2^n: s below 1 gives 0, else (s + 2^(n-1)) >> n; any other: s * (1 / divisor), the reciprocal in
/// single precision and the product in double, not above 0 gives 0, else trunc(value + 0.5). Reads anchor
/// rows below and kernelSize - 1 - anchor rows above the region. Anchor outside the kernel: kPrimAnchorError;
/// divisor 0: kPrimDivisorError; kernelSize below 1: kPrimSizeError.
PrimStatus PrimFilterColumn8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                int32_t width, int32_t height, const int32_t* kernel, int32_t kernelSize,
                                int32_t anchor, int32_t divisor);

/// The same along the row: kernel[k] * src(x + anchor - k, y).
PrimStatus PrimFilterRow8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                             int32_t width, int32_t height, const int32_t* kernel, int32_t kernelSize,
                             int32_t anchor, int32_t divisor);

/// In place: the maximum of the 3 by 3 neighbourhood in the undilated image. A step below width + 2 gives
/// kPrimMorphologyStepError (one below 1 kPrimStepError).
[[nodiscard]] PrimStatus PrimDilate3x38uC1(uint8_t* data, int32_t step, int32_t width, int32_t height);

/// The minimum of the 3 by 3 neighbourhood; both steps are checked like that of the dilation.
PrimStatus PrimErode3x38uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                            int32_t height);

/// Rows below minus rows above, weights 1 2 1 (5 by 5: 1 4 6 4 1 and 1 2 0 -2 -1). `dstStep` must be even.
PrimStatus PrimFilterSobelHoriz8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t mask);

/// Columns on the left minus columns on the right, with the same weights.
PrimStatus PrimFilterSobelVert8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                    int32_t width, int32_t height, int32_t mask);

/// The Sobel pair with the nearest edge pixel in place of pixels outside the region; `borderType` and
/// `borderValue` are not looked at: every type replicates. `buffer` has the size that the GetBufferSize
/// operation gives, in bytes.
PrimStatus PrimSobelHorizBorderGetBufferSize(int32_t width, int32_t height, int32_t mask, int32_t* size);
PrimStatus PrimSobelVertBorderGetBufferSize(int32_t width, int32_t height, int32_t mask, int32_t* size);
PrimStatus PrimSobelHorizBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t mask, int32_t borderType,
                                     uint8_t borderValue, uint8_t* buffer);
PrimStatus PrimSobelVertBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                    int32_t width, int32_t height, int32_t mask, int32_t borderType,
                                    uint8_t borderValue, uint8_t* buffer);

/// The same with the 3 by 3 weights 3 10 3 in place of 1 2 1.
PrimStatus PrimScharrHorizBorderGetBufferSize(int32_t width, int32_t height, int32_t* size);
PrimStatus PrimScharrVertBorderGetBufferSize(int32_t width, int32_t height, int32_t* size);
PrimStatus PrimScharrHorizBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                      int32_t width, int32_t height, int32_t borderType, uint8_t borderValue,
                                      uint8_t* buffer);
PrimStatus PrimScharrVertBorder8u16s(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                     int32_t width, int32_t height, int32_t borderType, uint8_t borderValue,
                                     uint8_t* buffer);

/// Edges = 255, all else = 0, from two gradients (dx left minus right, dy below minus above). The magnitude
/// is Euclidean, in double, 0 outside the region; a pixel survives when it exceeds its neighbour on one side
/// of the gradient's sector and is not below that on the other; survivors above highThresh are edges, and so
/// are survivors above lowThresh that touch an edge. The row steps of dx and dy must be even. A highThresh
/// below lowThresh, and a threshold that is not a number: kPrimThresholdError, checked last. `buffer` has the
/// size that `PrimCannyGetBufferSize` gives, in bytes, or kPrimSizeError where that would pass 31 bits.
PrimStatus PrimCannyGetBufferSize(int32_t width, int32_t height, int32_t* size);
PrimStatus PrimCanny16s8u(const int16_t* dx, int32_t dxStep, const int16_t* dy, int32_t dyStep, uint8_t* dst,
                          int32_t dstStep, int32_t width, int32_t height, float lowThresh, float highThresh,
                          uint8_t* buffer);

// ---- integral images and classifier stages ------------------------------------------------------

/// Two tables of (width + 1) by (height + 1) entries. Row 0 and column 0 hold val and valSqr; entry (x+1,
/// y+1) holds val (valSqr) plus the sum of the pixels (of their squares) up to and with (x, y). `sum` wraps
/// around. sumStep must be a multiple of 4, sqrStep of 8.
PrimStatus PrimSqrIntegral8u32s64f(const uint8_t* src, int32_t srcStep, int32_t* sum, int32_t sumStep,
                                   double* sqr, int32_t sqrStep, int32_t width, int32_t height, int32_t val,
                                   double valSqr);

/// Standard deviation of the pixels in the rectangle (x + rectX, y + rectY, rectWidth, rectHeight) for each
/// (x, y) of the region, from two tables of `PrimSqrIntegral8u32s64f` that reach that far: the
/// single-precision root of the variance Q/A - (S/A)^2, not below 0. sumStep and dstStep must be multiples of
/// 4, sqrStep of 8, and each must hold `width` entries. A rectangle with a negative corner, a side below 1 or
/// an end past 31 bits: kPrimSizeError, checked last.
PrimStatus PrimRectStdDev32s32f(const int32_t* sum, int32_t sumStep, const double* sqr, int32_t sqrStep,
                                float* dst, int32_t dstStep, int32_t width, int32_t height, int32_t rectX,
                                int32_t rectY, int32_t rectWidth, int32_t rectHeight);

struct PrimRect {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
};

/// One stage of a cascade of boosted classifiers.
struct PrimHaarState;

/// Builds a stage of `length` classifiers and stores it in `state`; the caller owns it and frees it with
/// `PrimHaarClassifierFree`. Classifier i has counts[i] rectangles, taken in turn from `rects` and `weights`,
/// and the values thresholds[i], val1[i] (below the threshold) and val2[i] (at or above it). A negative
/// length, a count below 1 or a rectangle with a negative corner or a size below 1: kPrimSizeError.
[[nodiscard]] PrimStatus PrimHaarClassifierInit(PrimHaarState** state, const PrimRect* rects,
                                                const float* weights, const float* thresholds,
                                                const float* val1, const float* val2, const int32_t* counts,
                                                int32_t length);

/// Frees a stage; null gives kPrimNullError.
PrimStatus PrimHaarClassifierFree(PrimHaarState* state);

/// The largest x + width in size[0] and the largest y + height in size[1] over the stage's rectangles; both 0
/// for an empty stage.
PrimStatus PrimHaarClassifierGetSize(const PrimHaarState* state, int32_t* size);

/// Runs a stage at every position of the region whose mask is not 0, with n = norm(x, y): each classifier
/// sums weight * rectangle sum over its rectangles in double and adds val2 when threshold * n is at or below
/// that, else val1. A total below `threshold` sets the mask to 0; `positive` receives the number of positions
/// left. The sum table must reach as far as the largest rectangle at the last position. sumStep and normStep
/// must be multiples of 4.
PrimStatus PrimApplyHaarClassifier32s32f(const int32_t* sum, int32_t sumStep, const float* norm,
                                         int32_t normStep, uint8_t* mask, int32_t maskStep, int32_t width,
                                         int32_t height, int32_t* positive, float threshold,
                                         const PrimHaarState* state);

#endif
