// Rain Drops: the picture through a wet window pane.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_RAINDROPS_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_RAINDROPS_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/BoxFilter.h"
#include "imaging/Plane8u.h"

/// Water on the pane, in a coarse grid of cells. Rain falls on random cells, heavy cells start to run, and
/// running water moves from cell to cell and leaves some behind, while the rest dries.
class WaterGrid {
  public:
    /// Makes dry glass of random stickiness; calls `rand` once a cell.
    void Prepare(int32_t columns, int32_t rows);

    /// Adds rain to one random cell. Does nothing, and draws no random number, on a grid without cells.
    void AddRain();

    /// Advances all runners by one step, then all cells.
    void Run();

    int32_t columns() const { return GridWidth; }
    int32_t rows() const { return GridHeight; }
    double water(int32_t x, int32_t y) const { return At(x, y).Water; }

  private:
    struct Cell {
        double Stickiness;  ///< 0 to 0.999
        double Water;       ///< 0 or more
    };
    struct Runner {
        int32_t CellX, CellY;
        double Progress, Speed;
    };

    Cell& At(int32_t x, int32_t y) {
        return Cells[static_cast<size_t>(y) * static_cast<size_t>(GridWidth) + static_cast<size_t>(x)];
    }
    const Cell& At(int32_t x, int32_t y) const { return const_cast<WaterGrid*>(this)->At(x, y); }
    int32_t& RunnersAt(int32_t x, int32_t y) {
        return RunnerCount[static_cast<size_t>(&At(x, y) - Cells.data())];
    }
    bool StartRunner(int32_t x, int32_t y);
    void Step(Runner& runner);
    int32_t ChooseDirection(int32_t x, int32_t y) const;

    int32_t GridWidth = 0, GridHeight = 0;
    std::vector<Cell> Cells;
    std::vector<Runner> Runners;       ///< in the order in which they started
    std::vector<int32_t> RunnerCount;  ///< number of runners on each cell
};

/// Radius of the dome that shows the water of a cell. 0, no dome, for a film too thin to show and for a drop
/// larger than 16 pixels.
int32_t DomeRadius(double water);

/// Each frame draws a height map of small round domes from the water, and the map bends the luma like a lens.
/// A frame shows the water of the frame before. Chroma is unchanged.
class CRainDropsSpecialEffectFilter final : public PlanarEffect<CRainDropsSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Rain Drops";
    static constexpr bool PreparesPacked = true;
    static std::span<const Property<CRainDropsSpecialEffectFilter>> Properties();

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    void DrawBumpMap();
    void DrawDome(int32_t x, int32_t y, int32_t radius);

    WaterGrid Grid;
    CPlane8u BumpMap, Source;
    BoxFilter Soften;
    std::vector<int32_t> JitterX, JitterY;  ///< offset of a drop from the middle of its cell, -2 to 2
    int32_t RainRate = 5;
};

#endif
