// Graphic Pen: long strokes of dark ink that all lean the same way.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_GRAPHICPEN_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_GRAPHICPEN_H

#include "effects/drawing/TonePages.h"
#include "framework/EffectBase.h"

/// The sister of Sketch: its pages are hatched otherwise, it can take the colour away, and one variant moves
/// the pages along their own hatching, so that the lines seem to be drawn on and on while the picture keeps
/// still. `Configure` draws the pages with `rand`, for packed streams too.
class CGraphicPenSpecialEffectFilter final : public PlanarEffect<CGraphicPenSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Graphic Pen";
    static constexpr bool PreparesPacked = true;
    static std::span<const Property<CGraphicPenSpecialEffectFilter>> Properties();

    /// Variants 2 to 4 lift all but the edges by half; 3 softens the result, and in 4 the hatching crawls.
    explicit CGraphicPenSpecialEffectFilter(int32_t variant)
        : EdgeLight(variant >= 2 && variant <= 4), Soften(variant == 3), Crawl(variant == 4) {}

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    const bool EdgeLight, Soften, Crawl;
    bool Colored = true;
    TonePages Pages;
    CPlane8u SoftenTemp;      // the drawing, where it cannot be made in the frame itself
    int32_t CrawlOffset = 0;  // columns
    uint32_t FrameCount = 0;
};

#endif
