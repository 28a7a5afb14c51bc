#include "effects/drawing/GraphicPen.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <span>

#include "effects/drawing/DiagonalBits.h"
#include "framework/Surroundings.h"

namespace {

/// Pixels of a page while strokes are drawn: the low half of a word has those that are paper, the high half
/// those that have been inked.
using PenBits = DiagonalBits<uint64_t>;

/// Draws strokes from `count` random points up to the edge of the page: up to the right over any pixels, or
/// down to the left on bare paper only. Each takes three random numbers and has at most `reach` pixels.
/// Returns how many pixels were paper.
SE_INLINE int64_t DrawStrokes(const int32_t* random, int64_t count, int32_t width, int32_t height,
                              int32_t reach, PenBits& page) {
    int64_t drawn = 0;
    for (; count > 0; --count, random += 3) {
        const int32_t x = random[0] % width, y = random[1] % height;
        const int32_t length = random[2] % (2 * reach + 1) - reach;
        const bool overprints = length > 0;
        // Both directions, since a branch would be hard to predict.
        const int32_t mostUp = std::min(width - x, y + 1), mostDown = std::min(x + 1, height - y);
        const int32_t pixels = std::min(std::abs(length), overprints ? mostUp : mostDown);
        const int32_t up = overprints ? pixels - 1 : 0;
        const uint64_t inksAll = overprints ? ~uint64_t{0} : 0;
        page.ForStroke({x + up, y - up}, pixels, [&](uint64_t& word, uint64_t stroke) {
            const uint64_t paper = word & stroke;
            word = (word & ~stroke) | (paper | (stroke & inksAll)) << 32;
            drawn += std::popcount(paper);
        });
    }
    return drawn;
}

/// Sets the bits of paper pixels and returns how many there are.
SE_INLINE int64_t FindPaper(const uint8_t* row, ptrdiff_t width, uint64_t bit, uint64_t* SE_RESTRICT words) {
    int64_t found = 0;
    for (ptrdiff_t x = 0; x < width; ++x) {
        const bool paper = row[x] == TonePages::kPaper;
        words[x] |= paper ? bit : 0;
        found += paper ? 1 : 0;
    }
    return found;
}

SE_INLINE void InkRow(const uint64_t* words, uint64_t bit, uint8_t ink, uint8_t* SE_RESTRICT row,
                      ptrdiff_t width) {
    for (ptrdiff_t x = 0; x < width; ++x) {
        const uint8_t before = row[x];
        row[x] = (words[x] & bit << 32) != 0 ? ink : before;
    }
}

/// Adds strokes to a page until it counts as dark enough or has no paper left. A drawn paper pixel counts
/// with more than it loses, so a page stops well before its brightness reaches the target.
void DrawPenPage(CPlane8u& page, int32_t level) {
    const int64_t target = std::min(level * 3 / 2, 255) * int64_t{page.width} * page.height;
    const int32_t ink = level * 80 / 255 + 20;
    const int32_t longest = 30 - level * 25 / 255;
    const int32_t reach = level > 150 ? longest / 2 : longest;

    auto sum = static_cast<int64_t>(SumPixelsWide(page));
    if (sum <= target && TonePages::IsBlank(page)) return;
    PenBits bits(page, Leaning::kLeft);
    int64_t paper = 0;
    for (int32_t y = 0; y < page.height; ++y) {
        paper += AtLevel<FindPaper>(page.Row(y), page.width, PenBits::BitOf(y), bits.Row(y));
    }
    while (sum > target && paper > 0) {
        const int64_t count = std::min({FewestStrokes(sum - target, int64_t{reach} * (ink + 255)),
                                        FewestStrokes(paper, reach), int64_t{kBatch}});
        std::array<int32_t, 3 * kBatch> random;
        FillRandom(std::span(random).first(3 * static_cast<size_t>(count)));
        const int64_t drawn =
            AtLevel<DrawStrokes>(random.data(), count, page.width, page.height, reach, bits);
        sum -= drawn * (ink + 255);
        paper -= drawn;
    }
    for (int32_t y = 0; y < page.height; ++y) {
        AtLevel<InkRow>(bits.Row(y), PenBits::BitOf(y), static_cast<uint8_t>(ink), page.Row(y), page.width);
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
