// What the models of Sketch and Graphic Pen share: ten planes, each a copy of the next brighter one with more
// strokes on it, and the planes' look-up.
#ifndef SPECIALEFFECTS_TESTS_EFFECTS_DRAWING_TONEPAGEMODEL_H
#define SPECIALEFFECTS_TESTS_EFFECTS_DRAWING_TONEPAGEMODEL_H

#include <cstdlib>
#include <vector>

#include "tests/effects/drawing/DrawingModels.h"

namespace drawing_model {

class TonePageModel {
  public:
    /// draw(page, level) draws one page; the darkest is flat.
    template <class Draw>
    TonePageModel(int width, int height, Draw draw) : pages_(10, PlainPlane(width, height, 255)) {
        for (size_t i = 9; i-- > 0;) {
            pages_[i] = pages_[i + 1];
            if (const int level = static_cast<int>(i) * 256 / 10; level != 0) {
                draw(pages_[i], level);
            } else {
                pages_[i] = PlainPlane(width, height, 30);
            }
        }
    }

    /// The pixel number `at` of the page for `luma`.
    uint8_t operator()(int luma, size_t at) const {
        return pages_[static_cast<size_t>(luma * 10 / 256)].pixels[at];
    }

  private:
    std::vector<PlainPlane> pages_;
};

inline bool Inside(const PlainPlane& page, int x, int y) {
    return x >= 0 && y >= 0 && x < page.width && y < page.height;
}

inline int64_t SumOf(const PlainPlane& page) {
    int64_t sum = 0;
    for (const uint8_t pixel : page.pixels) sum += pixel;
    return sum;
}

/// The 3 by 3 Gaussian of the finished drawing and the repair of its frame.
inline void SoftenDrawing(PlainPlane& luma) {
    if (luma.width < 3 || luma.height < 3) return;
    PlainPlane soft(luma.width, luma.height);
    PlainGauss3(luma, soft);
    luma = soft;
    ReplicateRing(luma);
}

inline int Lifted(int luma) {
    return std::min(luma + luma / 2, 255);
}

/// `Configure` takes the same numbers from the generator for a packed stream as for a planar one.
inline void ExpectPackedDrawsTheSame(const char* guid) {
    EffectDriver effect(guid);
    std::srand(8);
    ASSERT_EQ(effect.Configure(80, 60), kSuccess);
    const int next = std::rand();
    std::srand(8);
    ASSERT_EQ(effect.Configure(80, 60, kFormatPacked), kSuccess);
    EXPECT_EQ(std::rand(), next);
    std::srand(8);
    EXPECT_NE(std::rand(), next);
}

}  // namespace drawing_model

#endif
