// Rain Drops: the picture through a wet window pane.
#ifndef SPECIALEFFECTS_EFFECTS_ANIMATED_RAINDROPS_H
#define SPECIALEFFECTS_EFFECTS_ANIMATED_RAINDROPS_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/BoxFilter.h"
#include "imaging/Plane8u.h"

/// Water on the pane: a coarse grid of cells. Rain falls on random cells, heavy cells start to run, and the
/// running water trickles down from cell to cell, leaving some behind, while the rest dries.
class WaterGrid {
  public:
    /// Dry glass of random stickiness, `rand` once a cell.
    void Prepare(int32_t columns, int32_t rows);

    /// Rain on one random cell. A grid without cells gets none, and draws nothing.
    void AddRain();

    /// One step of all runners, then of all cells.
    void Run();

    int32_t columns() const { return GridWidth; }
    int32_t rows() const { return GridHeight; }
    double water(int32_t x, int32_t y) const { return At(x, y).Water; }

  private:
    struct Cell {
        double Stickiness;  ///< 0 to 0.999
        double Water;       ///< from 0 up
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
    std::vector<int32_t> RunnerCount;  ///< how many stand on each cell
};

/// Radius of the dome that stands for the water of a cell: 0, which is no dome, for a film too thin to show
/// and for a drop larger than 16 pixels.
int32_t DomeRadius(double water);

/// From the water a height map of small round domes is drawn for each frame, which bends the luma like a
/// lens; a frame shows the water of the previous frame. Chroma is left alone.
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
    std::vector<int32_t> JitterX, JitterY;  ///< where in its cell a drop sits, -2 to 2 off the middle
    int32_t RainRate = 5;
};

#endif
