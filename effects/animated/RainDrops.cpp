#include "effects/animated/RainDrops.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "framework/Surroundings.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr int32_t kCell = 12;   ///< pixels a cell
constexpr double kHeavy = 1.5;  ///< water above which a cell starts to run
constexpr double kWet = 0.5;    ///< water that attracts a runner
constexpr int32_t kLargestRadius = 16;
constexpr int32_t kMostDrops = 10;  ///< of rain on a frame

/// Water that a runner leaves on a cell.
double Retained(double water, double stickiness) {
    const double m = 0.2 * stickiness;
    if (water < m) return water;
    if (water > m + 5.999999999999999) return 5.0 * stickiness;
    return (water - m) * (stickiness * 0.8) + m;
}

/// Height of a dome by the squared distance from its rim.
const auto& Dome() {
    static const auto table = [] {
        std::array<int32_t, kLargestRadius * kLargestRadius + 1> heights{};
        for (size_t i = 0; i < heights.size(); ++i) {
            heights[i] = static_cast<int32_t>(8.0 * std::sqrt(static_cast<float>(i)));
        }
        return heights;
    }();
    return table;
}

}  // namespace

int32_t DomeRadius(double water) {
    constexpr double kFilm = 0.05;
    if (water < kFilm) return 0;
    const double radius = std::pow(water, 0.3333333333333333) * 4.0;
    return radius < kLargestRadius + 1 ? static_cast<int32_t>(radius) : 0;
}

void WaterGrid::Prepare(int32_t columns, int32_t rows) {
    GridWidth = columns;
    GridHeight = rows;
    Cells.resize(static_cast<size_t>(columns) * static_cast<size_t>(rows));
    for (Cell& cell : Cells) cell = {Rand() % 1000 / 1000.0, 0.0};
    Runners.clear();
    // On tall narrow panes runners gather in the same cells, yet they need less than two thirds of this.
    Runners.reserve(Cells.size() + static_cast<size_t>(kMostDrops) * static_cast<size_t>(rows));
    RunnerCount.assign(Cells.size(), 0);
}

void WaterGrid::AddRain() {
    if (Cells.empty()) return;
    const int32_t x = Rand() % GridWidth;
    const int32_t y = Rand() % GridHeight;
    At(x, y).Water += Rand() % 100 / 10.0;
    StartRunner(x, y);
}

/// Starts a runner on a heavy cell that has none.
bool WaterGrid::StartRunner(int32_t x, int32_t y) {
    if (!(At(x, y).Water > kHeavy) || RunnersAt(x, y) > 0) return false;
    Runners.push_back({x, y, 0.0, 1.0});
    ++RunnersAt(x, y);
    return true;
}

void WaterGrid::Run() {
    for (Runner& runner : Runners) Step(runner);
    std::erase_if(Runners, [&](const Runner& runner) { return runner.CellY >= GridHeight; });
    for (int32_t y = 0; y < GridHeight; ++y) {
        for (int32_t x = 0; x < GridWidth; ++x) {
            if (StartRunner(x, y)) continue;
            double& water = At(x, y).Water;
            water -= water / 100;
        }
    }
}

void WaterGrid::Step(Runner& runner) {
    runner.Progress += runner.Speed;
    if (runner.Progress < 1.0) return;
    runner.Progress -= 1.0;

    Cell& cell = At(runner.CellX, runner.CellY);
    const double water = cell.Water;
    const double kept = Retained(water, cell.Stickiness);
    cell.Water = kept;
    --RunnersAt(runner.CellX, runner.CellY);
    if (runner.CellY + 1 >= GridHeight) {
        runner.CellY = GridHeight;
        return;
    }
    runner.CellX += ChooseDirection(runner.CellX, runner.CellY);
    ++runner.CellY;
    At(runner.CellX, runner.CellY).Water += water - kept;
    ++RunnersAt(runner.CellX, runner.CellY);
}

/// Runners follow water. On dry glass they follow the stickiest cell, with a slight preference for straight
/// down.
int32_t WaterGrid::ChooseDirection(int32_t x, int32_t y) const {
    const auto below = [&](int32_t step) -> const Cell* {
        return x + step >= 0 && x + step < GridWidth ? &At(x + step, y + 1) : nullptr;
    };
    const auto isWet = [](const Cell* cell) { return cell != nullptr && cell->Water > kWet; };
    const Cell* const left = below(-1);
    const Cell* const right = below(1);
    if (isWet(below(0))) return 0;
    if (isWet(left) && isWet(right)) return right->Water < left->Water ? -1 : 1;
    if (isWet(left)) return -1;
    if (isWet(right)) return 1;

    double best = 0.0;
    int32_t direction = 0;
    for (const int32_t step : {-1, 0, 1}) {
        const Cell* const cell = below(step);
        if (cell == nullptr) continue;
        const double score = cell->Stickiness * (step == 0 ? 0.8 : 0.7);
        if (score > best) {
            best = score;
            direction = step;
        }
    }
    return direction;
}

std::span<const Property<CRainDropsSpecialEffectFilter>> CRainDropsSpecialEffectFilter::Properties() {
    static constexpr Property<CRainDropsSpecialEffectFilter> rows[] = {
        IntegerProperty<&CRainDropsSpecialEffectFilter::RainRate>("RainRate", "5", "1,10")
            .Says("Intensity of the rain."),
    };
    return rows;
}

void CRainDropsSpecialEffectFilter::Prepare() {
    BumpMap = NewPlane(Width(), Height());
    Source = NewPlane(Width(), Height());
    Soften = BoxFilter(Width(), Height(), 3);
    Grid.Prepare(Width() / kCell, Height() / kCell);
    const size_t cells = static_cast<size_t>(Grid.columns()) * static_cast<size_t>(Grid.rows());
    JitterX.resize(cells);
    JitterY.resize(cells);
    for (size_t i = 0; i < cells; ++i) {
        JitterX[i] = Rand() % 5 - 2;
        JitterY[i] = Rand() % 5 - 2;
    }
}

void CRainDropsSpecialEffectFilter::Release() {
    ReleaseMemory(BumpMap, Source, Soften, Grid, JitterX, JitterY);
}

void CRainDropsSpecialEffectFilter::DrawBumpMap() {
    constexpr uint8_t kGlass = 100;
    BumpMap.Fill(kGlass);
    size_t cell = 0;
    for (int32_t cy = 0; cy < Grid.rows(); ++cy) {
        for (int32_t cx = 0; cx < Grid.columns(); ++cx, ++cell) {
            const int32_t radius = DomeRadius(Grid.water(cx, cy));
            if (radius == 0) continue;
            DrawDome(JitterX[cell] + kCell * cx + kCell / 2, JitterY[cell] + kCell * cy + kCell / 2, radius);
        }
    }
    Soften.ApplyInPlace(BumpMap);
    Soften.ApplyInPlace(BumpMap);
}

/// Domes add up modulo 256.
void CRainDropsSpecialEffectFilter::DrawDome(int32_t x, int32_t y, int32_t radius) {
    const auto& dome = Dome();
    const int32_t top = std::max(-radius, -y), bottom = std::min(radius, BumpMap.height - 1 - y);
    const int32_t left = std::max(-radius, -x), right = std::min(radius, BumpMap.width - 1 - x);
    for (int32_t dy = top; dy <= bottom; ++dy) {
        uint8_t* const row = BumpMap.Row(y + dy) + x;
        for (int32_t dx = left; dx <= right; ++dx) {
            const int32_t d = radius * radius - dx * dx - dy * dy;
            if (d >= 1) row[dx] = static_cast<uint8_t>(row[dx] + dome[static_cast<size_t>(d)]);
        }
    }
}

void CRainDropsSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    constexpr double kFullRain = 307200.0;  // pixels of 640 by 480
    CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    DrawBumpMap();
    Source.CopyPixels(y);
    DisplaceByGradient(BumpMap, Source, y);

    const double share = static_cast<double>(int64_t{Width()} * Height()) / kFullRain;
    for (int32_t i = 0; i < RainRate; ++i) {
        if (share >= 1.0 || RandomChance(share, Rand)) Grid.AddRain();
    }
    Grid.Run();
}

template struct EffectClass<CRainDropsSpecialEffectFilter>;
