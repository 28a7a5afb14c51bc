// Tiled Up: the picture laid out of square tiles, with grout lines and lit as a relief.
#ifndef SPECIALEFFECTS_EFFECTS_TIME_TILEDUP_H
#define SPECIALEFFECTS_EFFECTS_TIME_TILEDUP_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// Each `Configure` for planar frames chooses "TileSize" from the width anew, whatever the property held; a
/// host sets it afterwards. A change builds the grout at once, with fresh random numbers; before `Configure`,
/// and after `Shutdown`, it is only stored. A plane narrower or lower than one tile is not tiled.
class CTiledUpSpecialEffectFilter final : public PlanarEffect<CTiledUpSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Tiled Up";
    static std::span<const Property<CTiledUpSpecialEffectFilter>> Properties();

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    void SetTileSize(int32_t size);
    void BuildGroutMap();
    /// A plane scaled down to one value a tile.
    struct Grid {
        CPlane8u values;
        ResizePlan shrink;
    };

    Grid MakeGrid(int32_t width, int32_t height) const;
    void BuildGrids();
    void Pixelate(const FramePlane& plane, Grid& grid) const;

    CPlane8u Shade;
    Grid LumaGrid, ChromaGrid;
    std::vector<int16_t> GroutMap;  ///< what each pixel's luma gains, below 0 throughout
    int16_t TileSize = 16;
};

#endif
