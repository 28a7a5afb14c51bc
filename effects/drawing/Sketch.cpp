#include "effects/drawing/Sketch.h"

#include <algorithm>
#include <array>
#include <span>

#include "effects/drawing/DiagonalBits.h"
#include "effects/drawing/Edges.h"
#include "framework/Surroundings.h"

namespace {

constexpr int32_t kLongest = 20;  // pixels of a stroke

/// The strokes that have been drawn on a page.
struct Strokes {
    int32_t width, height;  // of the page
    DiagonalBits<uint32_t> rising, falling;
};

/// Draws a diagonal line around each of `count` random points, rising or falling to the right, up to the edge
/// of the page; none if its left end is not on the page. Each takes four random numbers. Returns the number
/// of pixels.
SE_INLINE int64_t DrawStrokes(const int32_t* random, int64_t count, Strokes& strokes) {
    const int32_t width = strokes.width, height = strokes.height;
    int64_t drawn = 0;
    for (; count > 0; --count, random += 4) {
        const int32_t length = random[2] % kLongest + 1, half = length / 2;
        const bool falls = random[3] % 2 == 0;
        const int32_t x = random[0] % width - half;
        const int32_t y = random[1] % height + (falls ? -half : half);
        if (x < 0 || y < 0 || y >= height) continue;
        const int32_t pixels = std::min({length, width - x, falls ? height - y : y + 1});
        const int32_t up = pixels - 1;
        const PlanePoint upper = falls ? PlanePoint{x, y} : PlanePoint{x + up, y - up};
        (falls ? strokes.falling : strokes.rising)
            .ForStroke(upper, pixels, [](uint32_t& word, uint32_t bits) { word |= bits; });
        drawn += pixels;
    }
    return drawn;
}

SE_INLINE void InkRow(const uint32_t* rising, const uint32_t* falling, uint32_t bit, uint8_t level,
                      uint8_t* SE_RESTRICT row, ptrdiff_t width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        const uint8_t before = row[x];
        row[x] = ((rising[x] | falling[x]) & bit) != 0 ? level : before;
    }
}

/// Adds strokes of the grey `level` to a page until it counts as dark enough. Each stroke counts with its own
/// grey, not with what it takes from the paper, so a page ends brighter than its target.
void DrawTonePage(CPlane8u& page, int32_t level) {
    const int64_t target = std::min(level * 225 / 255 + 75, 255) * int64_t{page.width} * page.height;
    auto sum = static_cast<int64_t>(SumPixelsWide(page));
    if (sum <= target && TonePages::IsBlank(page)) return;
    Strokes strokes{page.width, page.height, {page, Leaning::kLeft}, {page, Leaning::kRight}};
    while (sum > target) {
        const int64_t count =
            std::min(FewestStrokes(sum - target, int64_t{kLongest} * level), int64_t{kBatch});
        std::array<int32_t, 4 * kBatch> random;
        FillRandom(std::span(random).first(4 * static_cast<size_t>(count)));
        sum -= level * AtLevel<DrawStrokes>(random.data(), count, strokes);
    }
    for (int32_t y = 0; y < page.height; ++y) {
        AtLevel<InkRow>(strokes.rising.Row(y), strokes.falling.Row(y), strokes.rising.BitOf(y),
                        static_cast<uint8_t>(level), page.Row(y), page.width);
    }
    if (level >= 101) SprinklePaper(page, 2, 1);
}

/// The tones of a row, with strong edges on the darkest page.
SE_INLINE void InkEdges(const uint8_t* row, ptrdiff_t width, bool inside, uint8_t* tones) {
    constexpr int16_t kStrongEdge = 250;
    ForEdgesOfRow(row, width, width, inside, [=](ptrdiff_t x, int16_t strength) {
        const uint8_t tone = row[x];
        tones[x] = strength < kStrongEdge ? tone : uint8_t{0};
    });
}

}  // namespace

void CSketchSpecialEffectFilter::Prepare() {
    if (EdgeInk || ContourLight) SoftenTemp = NewPlane(Width(), Height());
    Pages.Build(Width(), Height(), DrawTonePage);
}

void CSketchSpecialEffectFilter::Release() {
    Pages.Release();
    SoftenTemp.Release();
}

void CSketchSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u luma = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    if (!EdgeInk && !ContourLight) {
        Pages.Shade(luma.data, 0, luma.Size());
        return;
    }
    constexpr int16_t kContour = 51;
    const auto width = static_cast<size_t>(luma.width);
    for (int32_t y = 0; y < luma.height; ++y) {
        uint8_t* const row = SoftenTemp.Row(y);
        if (EdgeInk) {
            AtLevel<InkEdges>(luma.Row(y), luma.width, IsInside(luma.height, y), row);
        } else {
            LiftFlatAreas(luma, y, kContour, row);
        }
        Pages.Shade(row, static_cast<size_t>(y) * width, width);
    }
    FinishDrawing(SoftenTemp, Soften, luma);
}

template struct EffectClass<CSketchSpecialEffectFilter>;
