#include "effects/drawing/ComicBook.h"

#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

/// Rounds up; `value` has 16 fraction bits.
SE_INLINE constexpr int32_t Ceiling16(int32_t value) {
    return (value + 0xFFFF) >> 16;
}

/// The luma threshold of each colour: where the converted channel reaches half scale, 128.
struct PrintLimits {
    int32_t red, green, blue;
};

SE_INLINE PrintLimits LimitsOf(int32_t u, int32_t v) {
    return {128 + Ceiling16(-74711 * (v - 128)), 128 + Ceiling16(38076 * (v - 128) + 25821 * (u - 128)),
            128 + Ceiling16(-133169 * (u - 128))};
}

/// The number of pixels of a block in which each colour is printed.
struct InkCount {
    int32_t red = 0, green = 0, blue = 0;
};

/// Prints one pixel. The luma of a mixture is the sum of the inks' lumas; only white would be one level too
/// dark, because each is truncated to a byte.
SE_INLINE void PrintPixel(uint8_t& luma, const PrintLimits& limits, InkCount& count) {
    const int32_t red = luma >= limits.red ? 1 : 0;
    const int32_t green = luma >= limits.green ? 1 : 0;
    const int32_t blue = luma >= limits.blue ? 1 : 0;
    luma = static_cast<uint8_t>(76 * red + 149 * green + 29 * blue + (red & green & blue));
    count.red += red;
    count.green += green;
    count.blue += blue;
}

/// Prints the pixels that share one chroma sample: 2 by 2 inside, fewer in the last odd column and row.
/// `PrimRgbToYuv420` explains why the rounding of full and partial blocks differs.
template <int32_t Columns, int32_t Rows>
SE_INLINE void PrintBlock(uint8_t* SE_RESTRICT luma, ptrdiff_t step, uint8_t& u, uint8_t& v) {
    constexpr int32_t kShift = 14 + Columns + Rows;
    constexpr int32_t kBias = Columns * Rows == 4 ? 0x1FFFF : 0;
    const PrintLimits limits = LimitsOf(u, v);
    InkCount count;
    PrintPixel(luma[0], limits, count);
    if constexpr (Columns == 2) PrintPixel(luma[1], limits, count);
    if constexpr (Rows == 2) PrintPixel(luma[step], limits, count);
    if constexpr (Columns * Rows == 4) PrintPixel(luma[step + 1], limits, count);

    const int32_t sum = 255 * (19595 * count.red + 38470 * count.green + 7471 * count.blue);
    const int32_t blueExcess = ((255 << 16) * count.blue - sum + kBias) >> 16;
    const int32_t redExcess = ((255 << 16) * count.red - sum + kBias) >> 16;
    u = static_cast<uint8_t>(((blueExcess * 32244) >> kShift) + 128);
    v = static_cast<uint8_t>(std::clamp(((redExcess * 57475) >> kShift) + 128, 0, 255));
}

template <int32_t Rows>
SE_INLINE void PrintRows(uint8_t* SE_RESTRICT luma, uint8_t* SE_RESTRICT u, uint8_t* SE_RESTRICT v,
                         ptrdiff_t width) {
    const ptrdiff_t pairs = width / 2;
    for (ptrdiff_t i = 0; i < pairs; ++i) PrintBlock<2, Rows>(luma + 2 * i, width, u[i], v[i]);
    if (width % 2 != 0) PrintBlock<1, Rows>(luma + 2 * pairs, width, u[pairs], v[pairs]);
}

SE_INLINE void Print(uint8_t* luma, uint8_t* u, uint8_t* v, ptrdiff_t width, ptrdiff_t height) {
    const ptrdiff_t chromaStep = (width + 1) / 2;
    for (; height >= 2; height -= 2) {
        PrintRows<2>(luma, u, v, width);
        luma += 2 * width;
        u += chromaStep;
        v += chromaStep;
    }
    if (height == 1) PrintRows<1>(luma, u, v, width);
}

}  // namespace

void CComicBookSpecialEffectFilter::Prepare() {
    Chroma.Prepare(Width(), Height());
}

void CComicBookSpecialEffectFilter::Release() {
    ReleaseMemory(Chroma);
}

ResultCode CComicBookSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    return Chroma.Apply(frame, [this](uint8_t* const planes[3]) {
        AtLevel<Print>(planes[0], planes[1], planes[2], Width(), Height());
    });
}

template struct EffectClass<CComicBookSpecialEffectFilter>;
