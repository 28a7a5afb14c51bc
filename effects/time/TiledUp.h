// Tiled Up: the picture laid out of square tiles, with grout lines and lit as a relief.
#ifndef SPECIALEFFECTS_EFFECTS_TIME_TILEDUP_H
#define SPECIALEFFECTS_EFFECTS_TIME_TILEDUP_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"
#include "imaging/ResizePlan.h"

/// Each `Configure` for planar frames overwrites "TileSize" with a value chosen from the width; a host sets
/// it afterwards. Setting it rebuilds the grout at once, with new random numbers; before `Configure` and
/// after `Shutdown` it is only stored. A plane smaller than one tile in either direction is not tiled.
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
    std::vector<int16_t> GroutMap;  ///< added to each pixel's luma, always negative
    int16_t TileSize = 16;
};

#endif
