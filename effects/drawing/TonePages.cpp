#include "effects/drawing/TonePages.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "effects/drawing/Edges.h"
#include "imaging/PerLevel.h"

namespace {

/// The first tone of a page.
constexpr uint8_t FirstTone(int32_t page) {
    return static_cast<uint8_t>((page * 256 + TonePages::kCount - 1) / TonePages::kCount);
}

/// Pixels of a page from some position on.
struct PageView {
    const uint8_t* pixels;
    uint8_t brighterFrom;
};

/// Tones that are looked up together. Selecting from whole stretches of the needed pages costs a fraction of
/// a load for each pixel.
constexpr size_t kBlock = 128;

SE_INLINE void ShadeBlock(uint8_t* SE_RESTRICT tones, const PageView* pages, size_t pageCount, size_t offset,
                          size_t count) {
    uint8_t darkest = 255, brightest = 0;
    for (size_t x = 0; x < count; ++x) {
        darkest = std::min(darkest, tones[x]);
        brightest = std::max(brightest, tones[x]);
    }
    uint8_t shades[kBlock];
    std::memset(shades, TonePages::kPaper, count);
    for (size_t p = 0; p < pageCount && darkest < pages[p].brighterFrom; ++p) {
        if (p + 1 < pageCount && brightest < pages[p + 1].brighterFrom) continue;
        const uint8_t* SE_RESTRICT page = pages[p].pixels + offset;
        const uint8_t limit = pages[p].brighterFrom;
        for (size_t x = 0; x < count; ++x) {
            const uint8_t here = page[x], brighter = shades[x];
            shades[x] = tones[x] < limit ? here : brighter;
        }
    }
    for (size_t x = 0; x < count; ++x) {
        const uint8_t brighter = shades[x];
        tones[x] = tones[x] < FirstTone(1) ? TonePages::kDarkest : brighter;
    }
}

SE_INLINE void ShadeFrom(uint8_t* tones, const PageView* pages, size_t pageCount, size_t count) {
    size_t begin = 0;
    for (; begin + kBlock <= count; begin += kBlock) {
        ShadeBlock(tones + begin, pages, pageCount, begin, kBlock);
    }
    ShadeBlock(tones + begin, pages, pageCount, begin, count - begin);
}

SE_INLINE void LiftRow(const uint8_t* luma, ptrdiff_t width, ptrdiff_t height, ptrdiff_t y, int32_t edge,
                       uint8_t* tones) {
    const uint8_t* const row = luma + y * width;
    ForEdgesOfRow(luma, width, width, height, y, [=](ptrdiff_t x, int32_t strength) {
        const uint8_t tone = row[x];
        const auto lifted = static_cast<uint8_t>(std::min(tone + tone / 2, 255));
        tones[x] = strength < edge ? lifted : tone;
    });
}

}  // namespace

void TonePages::Keep(const CPlane8u& page, int32_t index) {
    const bool blank = SumPixelsWide(page) == page.Size() * kPaper;
    if (blank && drawn_.empty()) return;
    drawn_.push_back({page, FirstTone(index + 1)});
}

void TonePages::Shade(uint8_t* tones, size_t first, size_t count) const {
    std::array<PageView, kCount> views{};
    while (count > 0) {
        first %= pixels_;
        const size_t part = std::min(count, pixels_ - first);
        for (size_t p = 0; p < drawn_.size(); ++p) {
            views[p] = {drawn_[p].plane.data + first, drawn_[p].brighterFrom};
        }
        AtLevel<ShadeFrom>(tones, views.data(), drawn_.size(), part);
        tones += part;
        count -= part;
        first += part;
    }
}

void SprinklePaper(CPlane8u& page, int32_t before, int32_t after) {
    for (int32_t y = 0; y < page.height; ++y) {
        uint8_t* const row = page.Row(y);
        for (int32_t x = before; x < page.width - 1; ++x) {
            uint8_t* const end = row + x + after + 1;
            if (std::find(row + x - before, end, TonePages::kPaper) == end) row[x] = TonePages::kPaper;
        }
    }
}

void LiftFlatAreas(const CPlane8u& luma, int32_t y, int32_t edge, uint8_t* tones) {
    AtLevel<LiftRow>(luma.data, luma.width, luma.height, y, edge, tones);
}

void FinishDrawing(const CPlane8u& drawing, bool soften, CPlane8u& luma) {
    if (!soften || luma.width < 3 || luma.height < 3) {
        luma.CopyPixels(drawing);
        return;
    }
    FilterGauss3(drawing, luma);
    luma.ReplicateBorder(1);
}
