#include "effects/drawing/Sketch.h"

#include "effects/drawing/Edges.h"
#include "framework/Surroundings.h"

namespace {

/// Draws a diagonal line around `point`, rising or falling to the right as `rand` decides, up to the edge of
/// the page. Returns the number of pixels drawn.
int32_t DrawStroke(CPlane8u& page, PlanePoint point, int32_t length, uint8_t level) {
    const int32_t step = Rand() % 2 == 0 ? 1 : -1;
    const int32_t half = length / 2;
    const int32_t x = point.x - half, y = point.y - half * step;
    if (x < 0 || y < 0 || x >= page.width || y >= page.height) return 0;

    const int32_t drawn = std::min({length, page.width - x, step > 0 ? page.height - y : y + 1});
    uint8_t* const first = page.Row(y) + x;
    const ptrdiff_t next = ptrdiff_t{step} * page.width + 1;
    for (ptrdiff_t n = 0; n < drawn; ++n) first[n * next] = level;
    return drawn;
}

/// Adds strokes of the grey `level` to a page until it counts as dark enough. Each stroke counts with its own
/// grey, not with what it takes from the paper, so a page ends brighter than its target.
void DrawTonePage(CPlane8u& page, int32_t level) {
    const int64_t target = std::min(level * 225 / 255 + 75, 255) * int64_t{page.width} * page.height;
    auto sum = static_cast<int64_t>(SumPixelsWide(page));
    while (sum > target) {
        const PlanePoint point = RandomPoint(page, Rand);
        const int32_t length = Rand() % 20 + 1;
        sum -= int64_t{level} * DrawStroke(page, point, length, static_cast<uint8_t>(level));
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
