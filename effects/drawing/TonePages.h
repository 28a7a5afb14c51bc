// A stack of ten tone pages, the brightest of blank paper and the darkest of flat grey, with pages between
// them that are drawn once. Pixels of a frame are looked up on the page of their tone.
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

    /// Draws the stack from the brightest page down: draw(page, level) adds the strokes of the tone `level`
    /// to a copy of the next brighter page. The darkest page has none.
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

    void Release() { ReleaseMemory(drawn_); }

    /// Replaces each of `count` tones by what the page of that tone shows. The tones are laid on the pixels
    /// from number `first` on, row after row; past their last pixel the pages start again. For pages that
    /// have been built.
    void Shade(uint8_t* tones, size_t first, size_t count) const;

  private:
    /// A page that is not blank, and the tone from which on a brighter page is used.
    struct Page {
        CPlane8u plane;
        uint8_t brighterFrom;
    };

    void Keep(const CPlane8u& page, int32_t index);

    size_t pixels_ = 0;        // of a page
    std::vector<Page> drawn_;  // from bright to dark
};

/// Sets a pixel to paper wherever none is among the `before` pixels on its left, itself and the `after` ones
/// on its right: row by row from the left, so that a pixel just set counts for the next. These are the dots
/// of paper that show through bright hatching. The last column and the first `before` ones are left alone.
void SprinklePaper(CPlane8u& page, int32_t before, int32_t after);

/// The tones of row `y` of `luma`: half as much again where an edge is weaker than `edge`, and as they are
/// along the edges.
void LiftFlatAreas(const CPlane8u& luma, int32_t y, int32_t edge, uint8_t* tones);

/// Brings a finished drawing into the frame, of the same size. Softened, it goes through a Gaussian of 3 by
/// 3, and the outermost pixels repeat their neighbours inside; a plane too small for that stays sharp.
void FinishDrawing(const CPlane8u& drawing, bool soften, CPlane8u& luma);

#endif
