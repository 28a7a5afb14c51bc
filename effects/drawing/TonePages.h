// A stack of ten tone pages, from blank paper to flat grey. The pages between are drawn once. Pixels of a
// frame are looked up on the page of their tone.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_TONEPAGES_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_TONEPAGES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/Plane8u.h"
#include "imaging/ReleaseMemory.h"

class TonePages {
  public:
    static constexpr int32_t kCount = 10;
    static constexpr uint8_t kPaper = 255;
    static constexpr uint8_t kDarkest = 30;

    /// Draws the stack from the brightest page down: draw(page, level) adds the strokes of tone `level` to a
    /// copy of the next brighter page. The darkest page has no strokes.
    template <class Draw>
    void Build(int32_t width, int32_t height, Draw draw) {
        Release();
        CPlane8u page = NewPlane(width, height);
        page.Fill(kPaper);
        pixels_ = page.Size();
        for (int32_t i = kCount - 2; i > 0; --i) {
            draw(page, i * 256 / kCount);
            Keep(page, i);
        }
    }

    static bool IsBlank(const CPlane8u& page) { return SumPixelsWide(page) == page.Size() * kPaper; }

    void Release() { ReleaseMemory(drawn_); }

    /// Replaces each of `count` tones by the pixel of that tone's page. Tones map to the page's pixels from
    /// number `first` on, row by row, and wrap round at the end. The pages must have been built.
    void Shade(uint8_t* tones, size_t first, size_t count) const;

  private:
    /// A page that is not blank, and the first tone of the next brighter page.
    struct Page {
        CPlane8u plane;
        uint8_t brighterFrom;
    };

    void Keep(const CPlane8u& page, int32_t index);

    size_t pixels_ = 0;        // of a page
    std::vector<Page> drawn_;  // from bright to dark
};

/// Sets a pixel to paper unless paper is already among the `before` pixels on its left, itself and the
/// `after` pixels on its right. Works row by row from the left, so a pixel just set counts for the next.
/// These dots of paper show through bright hatching. The last column and the first `before` columns are
/// unchanged.
void SprinklePaper(CPlane8u& page, int32_t before, int32_t after);

/// The tones of row `y` of `luma`: brightened by half where an edge is weaker than `edge`, unchanged along
/// the edges.
void LiftFlatAreas(const CPlane8u& luma, int32_t y, int16_t edge, uint8_t* tones);

/// Copies a finished drawing into the frame, which has the same size. If `soften`, applies a 3 by 3 Gaussian,
/// and the outermost pixels repeat their inner neighbours; a plane too small for that stays sharp.
void FinishDrawing(const CPlane8u& drawing, bool soften, CPlane8u& luma);

#endif
