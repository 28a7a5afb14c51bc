// Graphic Pen: long strokes of dark ink that all lean the same way.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_GRAPHICPEN_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_GRAPHICPEN_H

#include "effects/drawing/TonePages.h"
#include "framework/EffectBase.h"

/// Like Sketch with other hatching: it can also remove the colour, and one variant moves the pages along
/// their own hatching, so that the lines keep being drawn while the picture stands still. `Configure` draws
/// the pages with `rand`, for packed streams too.
class CGraphicPenSpecialEffectFilter final : public PlanarEffect<CGraphicPenSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Graphic Pen";
    static constexpr bool PreparesPacked = true;
    static std::span<const Property<CGraphicPenSpecialEffectFilter>> Properties();

    /// Variants 2 to 4 brighten all but the edges by half; 3 softens the result, and in 4 the hatching
    /// crawls.
    explicit CGraphicPenSpecialEffectFilter(int32_t variant)
        : EdgeLight(variant >= 2 && variant <= 4), Soften(variant == 3), Crawl(variant == 4) {}

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    const bool EdgeLight, Soften, Crawl;
    bool Colored = true;
    TonePages Pages;
    CPlane8u SoftenTemp;      // the drawing, when it cannot be made in the frame itself
    int32_t CrawlOffset = 0;  // columns
    uint32_t FrameCount = 0;
};

#endif
