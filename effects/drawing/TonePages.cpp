#include "effects/drawing/TonePages.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

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

SE_INLINE void LiftRow(const uint8_t* row, ptrdiff_t width, bool inside, int16_t edge, uint8_t* tones) {
    ForEdgesOfRow(row, width, width, inside, [=](ptrdiff_t x, int16_t strength) {
        const uint8_t tone = row[x];
        const auto brighter = static_cast<uint16_t>(tone + tone / 2);
        const auto lifted = static_cast<uint8_t>(std::min<uint16_t>(brighter, 255));
        tones[x] = strength < edge ? lifted : tone;
    });
}

// ---- pixels as bits, for SprinklePaper ---------------------------------------------------------------

/// Windows in a word: a multiple of each period, 2 and 3. The other bits are pixels that the windows reach.
constexpr size_t kWindows = 60;
constexpr uint64_t kWindowBits = (uint64_t{1} << kWindows) - 1;

uint64_t LoadWord(const uint8_t* pixels) {
    uint64_t word = 0;
    std::memcpy(&word, pixels, sizeof word);
    return word;
}

/// Bit i is set where pixel i of 64 is not paper.
uint64_t InkedPixels(const uint8_t* pixels) {
    constexpr uint64_t kLow = 0x7F7F7F7F7F7F7F7F, kEach = 0x0101010101010101;
    uint64_t bits = 0;
    for (size_t i = 0; i < 8; ++i) {
        const uint64_t ink = ~LoadWord(pixels + 8 * i);
        const uint64_t inked = ((((ink & kLow) + kLow) | ink) >> 7) & kEach;
        bits |= (inked * 0x0102040810204080) >> 56 << (8 * i);
    }
    return bits;
}

/// Sets pixel i to paper where bit i is set.
void PaintPaper(uint64_t bits, uint8_t* pixels) {
    static_assert(TonePages::kPaper == 255);
    constexpr uint64_t kLow = 0x7F7F7F7F7F7F7F7F, kEach = 0x0101010101010101;
    for (; bits != 0; bits >>= 8, pixels += 8) {
        const uint64_t chosen = (bits & 255) * kEach & 0x8040201008040201;
        const uint64_t paper = ((((chosen & kLow) + kLow) | chosen) >> 7 & kEach) * 255;
        const uint64_t word = LoadWord(pixels) | paper;
        std::memcpy(pixels, &word, sizeof word);
    }
}

/// Picks from each run of set bits the first one and each `period`th after it. Runs go on from word to word.
class EveryNth {
  public:
    explicit EveryNth(size_t period) : period_(period) {
        for (size_t i = 0; i < kWindows; i += period) pattern_ |= uint64_t{1} << i;
    }

    uint64_t Next(uint64_t bits) {
        const uint64_t starts = bits & ~(bits << 1 | before_);
        uint64_t picked = 0;
        for (size_t phase = 0; phase < period_; ++phase) {
            const uint64_t places = pattern_ << phase;
            // The sum clears the runs that start at these places, or go on from before.
            const uint64_t runs = bits & ~(bits + ((starts & places) | (goesOn_ >> phase & 1)));
            picked |= runs & places;
            goesOn_ = (goesOn_ & ~(uint64_t{1} << phase)) | runs >> (kWindows - 1) << phase;
        }
        before_ = bits >> (kWindows - 1);
        return picked;
    }

  private:
    size_t period_;
    uint64_t pattern_ = 0;
    uint64_t before_ = 0;  ///< whether the last bit of the word before was set
    uint64_t goesOn_ = 0;  ///< whether a run of each phase reached it
};

}  // namespace

void TonePages::Keep(const CPlane8u& page, int32_t index) {
    if (drawn_.empty() && IsBlank(page)) return;
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
    // A window of pixels is `start` to `start + length - 1`. In a run of windows without paper the first one
    // gets a dot, and then every one that does not reach back to the dot before it: each (before + 1)th.
    const auto period = static_cast<size_t>(before + 1), length = period + static_cast<size_t>(after);
    const int32_t starts = page.width - 1 - before;
    if (starts <= 0) return;
    const auto words = (static_cast<size_t>(starts) + kWindows - 1) / kWindows;
    std::vector<uint8_t> row(words * kWindows + 8, TonePages::kPaper);
    std::vector<uint64_t> dots(words);
    for (int32_t y = 0; y < page.height; ++y) {
        uint8_t* const pixels = page.Row(y);
        std::memcpy(row.data(), pixels, static_cast<size_t>(page.width));
        EveryNth every(period);
        for (size_t i = 0; i < words; ++i) {
            const uint64_t inked = InkedPixels(&row[i * kWindows]);
            uint64_t bare = inked & kWindowBits;
            for (size_t k = 1; k < length; ++k) bare &= inked >> k;
            dots[i] = every.Next(bare);
        }
        const auto last = static_cast<size_t>(starts) - (words - 1) * kWindows;
        dots[words - 1] &= ~uint64_t{0} >> (64 - last);
        for (size_t i = 0; i < words; ++i)
            PaintPaper(dots[i], &row[i * kWindows + static_cast<size_t>(before)]);
        std::memcpy(pixels, row.data(), static_cast<size_t>(page.width));
    }
}

void LiftFlatAreas(const CPlane8u& luma, int32_t y, int16_t edge, uint8_t* tones) {
    AtLevel<LiftRow>(luma.Row(y), luma.width, IsInside(luma.height, y), edge, tones);
}

void FinishDrawing(const CPlane8u& drawing, bool soften, CPlane8u& luma) {
    if (!soften || luma.width < 3 || luma.height < 3) {
        luma.CopyPixels(drawing);
        return;
    }
    FilterGauss3(drawing, luma);
    luma.ReplicateBorder(1);
}
