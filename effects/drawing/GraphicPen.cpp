#include "effects/drawing/GraphicPen.h"

#include "framework/Surroundings.h"

namespace {

/// Draws a stroke of |length| pixels from `point`, up to the edge of the page: up to the right over any
/// pixels, or, for a negative length, down to the left on bare paper only. Returns how many pixels were
/// paper.
int32_t DrawPenStroke(CPlane8u& page, PlanePoint point, int32_t length, uint8_t ink) {
    const bool overprints = length > 0;
    const int32_t count = overprints ? std::min({length, page.width - point.x, point.y + 1})
                                     : std::min({-length, point.x + 1, page.height - point.y});
    uint8_t* const first = page.Row(point.y) + point.x;
    const ptrdiff_t next = overprints ? 1 - ptrdiff_t{page.width} : ptrdiff_t{page.width} - 1;
    int32_t hits = 0;
    for (ptrdiff_t n = 0; n < count; ++n) {
        uint8_t& pixel = first[n * next];
        const bool paper = pixel == TonePages::kPaper;
        hits += paper ? 1 : 0;
        pixel = paper || overprints ? ink : pixel;  // without a branch, which would be hard to predict
    }
    return hits;
}

/// Adds strokes to a page until it counts as dark enough or has no paper left. A drawn paper pixel counts
/// with more than it loses, so a page stops well before its brightness reaches the target.
void DrawPenPage(CPlane8u& page, int32_t level) {
    const int64_t target = std::min(level * 3 / 2, 255) * int64_t{page.width} * page.height;
    const int32_t ink = level * 80 / 255 + 20;
    const int32_t longest = 30 - level * 25 / 255;
    const int32_t reach = level > 150 ? longest / 2 : longest;

    auto sum = static_cast<int64_t>(SumPixelsWide(page));
    int64_t paper = std::count(page.data, page.data + page.Size(), TonePages::kPaper);
    while (sum > target && paper > 0) {
        const PlanePoint point = RandomPoint(page, Rand);
        const int32_t length = Rand() % (2 * reach + 1) - reach;
        const int32_t drawn = DrawPenStroke(page, point, length, static_cast<uint8_t>(ink));
        sum -= int64_t{drawn} * (ink + 255);
        paper -= drawn;
    }
    if (level >= 101) {
        SprinklePaper(page, 1, 0);
    } else if (level >= 61) {
        SprinklePaper(page, 1, 1);
    }
}

}  // namespace

std::span<const Property<CGraphicPenSpecialEffectFilter>> CGraphicPenSpecialEffectFilter::Properties() {
    static constexpr Property<CGraphicPenSpecialEffectFilter> rows[] = {
        BooleanProperty<&CGraphicPenSpecialEffectFilter::Colored>("Colored", "TRUE")
            .Says("Whether the colours of the scene show through the strokes."),
    };
    return rows;
}

void CGraphicPenSpecialEffectFilter::Prepare() {
    if (EdgeLight) SoftenTemp = NewPlane(Width(), Height());
    CrawlOffset = 0;
    FrameCount = 0;
    Pages.Build(Width(), Height(), DrawPenPage);
}

void CGraphicPenSpecialEffectFilter::Release() {
    Pages.Release();
    SoftenTemp.Release();
}

void CGraphicPenSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    ++FrameCount;
    if (!Colored) frame.FillChroma(128, 128);
    if (Crawl && FrameCount % 2 == 0) CrawlOffset = (Rand() % 200 + CrawlOffset) % Width();

    CPlane8u luma = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    const auto width = static_cast<size_t>(luma.width);
    // The pages move one column at a time, and one row up with each column.
    const size_t shift = static_cast<size_t>(CrawlOffset) * (width - 1);
    if (!EdgeLight) {
        Pages.Shade(luma.data, shift, luma.Size());
        return;
    }
    const int16_t edge = Crawl ? 41 : 40;
    for (int32_t y = 0; y < luma.height; ++y) {
        uint8_t* const row = SoftenTemp.Row(y);
        LiftFlatAreas(luma, y, edge, row);
        Pages.Shade(row, static_cast<size_t>(y) * width + shift, width);
    }
    FinishDrawing(SoftenTemp, Soften, luma);
}

template struct EffectClass<CGraphicPenSpecialEffectFilter>;
