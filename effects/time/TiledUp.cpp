#include "effects/time/TiledUp.h"

#include <algorithm>
#include <cstring>

#include "framework/Surroundings.h"
#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr int16_t kFace = -10, kVerticalJoint = -20, kHorizontalJoint = -25;
constexpr int32_t kTintedTiles = 10;  ///< chroma is tiled too from this size on
constexpr int32_t kReliefBias = 45;

int32_t TileSizeFor(int32_t width) {
    const int32_t size = width > 640 ? 16 : width == 640 ? 5 : width >= 320 ? 8 : 5;
    return size + width % size;
}

SE_INLINE void AddGrout(uint8_t* SE_RESTRICT y, const int16_t* SE_RESTRICT grout, size_t count) {
    for (size_t i = 0; i < count; ++i) y[i] = static_cast<uint8_t>(std::clamp(y[i] + grout[i], 0, 255));
}

SE_INLINE void AddShade(uint8_t* SE_RESTRICT y, const uint8_t* SE_RESTRICT shade, size_t count) {
    for (size_t i = 0; i < count; ++i) y[i] = static_cast<uint8_t>(std::clamp(y[i] + shade[i] - 128, 0, 255));
}

}  // namespace

std::span<const Property<CTiledUpSpecialEffectFilter>> CTiledUpSpecialEffectFilter::Properties() {
    static constexpr Property<CTiledUpSpecialEffectFilter> rows[] = {
        IntegerProperty<&CTiledUpSpecialEffectFilter::TileSize>("TileSize", "5", "4,32")
            .Says("Side length of a tile in pixels.")
            .OnSet([](CTiledUpSpecialEffectFilter& effect, int32_t size) { effect.SetTileSize(size); }),
    };
    return rows;
}

void CTiledUpSpecialEffectFilter::Prepare() {
    TileSize = static_cast<int16_t>(TileSizeFor(Width()));
    BuildGrids();
    Shade = NewPlane(Width(), Height());
    GroutMap.resize(Shade.Size());
    BuildGroutMap();
}

void CTiledUpSpecialEffectFilter::Release() {
    ReleaseMemory(Shade, LumaGrid, ChromaGrid, GroutMap);
}

void CTiledUpSpecialEffectFilter::SetTileSize(int32_t size) {
    if (size == TileSize) return;
    TileSize = static_cast<int16_t>(size);
    if (GroutMap.empty()) return;
    BuildGrids();
    BuildGroutMap();
}

CTiledUpSpecialEffectFilter::Grid CTiledUpSpecialEffectFilter::MakeGrid(int32_t width, int32_t height) const {
    const int32_t columns = width / TileSize, rows = height / TileSize;
    return {NewPlane(columns, rows), ResizePlan({width, height}, {columns, rows})};
}

void CTiledUpSpecialEffectFilter::BuildGrids() {
    LumaGrid = MakeGrid(Width(), Height());
    ChromaGrid = MakeGrid(Width() / 2, Height() / 2);
}

void CTiledUpSpecialEffectFilter::BuildGroutMap() {
    const int32_t width = Width(), height = Height(), tile = TileSize;
    const auto at = [&](int32_t x, int32_t y) -> int16_t& {
        return GroutMap[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    };
    std::fill(GroutMap.begin(), GroutMap.end(), kFace);
    // Horizontal joints are uneven: each tile's piece lies on one of two rows.
    for (int32_t y0 = 0; y0 < height - 2; y0 += tile) {
        int32_t line = y0;
        for (int32_t x = 0; x < width; ++x) {
            if (x % tile == 0) {
                line = y0 + Rand() % 2;
                if (line >= height) line = y0;
            }
            at(x, line) = kHorizontalJoint;
        }
    }
    for (int32_t x0 = 0; x0 < width - 2; x0 += tile) {
        for (int32_t y = 0; y < height; ++y) at(x0, y) = kVerticalJoint;
    }
}

/// Fills each tile with its value from the picture scaled down to the grid. Pixels beyond the last whole tile
/// take that tile's value.
void CTiledUpSpecialEffectFilter::Pixelate(const FramePlane& plane, Grid& grid) const {
    if (grid.values.Empty()) return;
    const int32_t tile = TileSize, columns = grid.values.width, rows = grid.values.height;
    CPlane8u picture = CPlane8u::Over(plane.data, plane.width, plane.height);
    grid.shrink.Apply(picture, grid.values);

    const auto width = static_cast<size_t>(plane.width);
    for (int32_t y = 0; y < plane.height; ++y) {
        uint8_t* const row = picture.Row(y);
        if (y % tile != 0 && y < rows * tile) {
            std::memcpy(row, picture.Row(y - 1), width);
            continue;
        }
        const uint8_t* const values = grid.values.Row(std::min(y / tile, rows - 1));
        for (int32_t column = 0; column < columns; ++column) {
            const int32_t x = column * tile;
            const int32_t end = column + 1 == columns ? plane.width : x + tile;
            std::memset(row + x, values[column], static_cast<size_t>(end - x));
        }
    }
}

void CTiledUpSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    Pixelate(frame.y, LumaGrid);
    if (TileSize >= kTintedTiles) {
        Pixelate(frame.u, ChromaGrid);
        Pixelate(frame.v, ChromaGrid);
    }
    const CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    AtLevel<AddGrout>(y.data, GroutMap.data(), y.Size());
    ShadeByGradient(y, Shade, kReliefBias);
    AtLevel<AddShade>(y.data, Shade.data, y.Size());
}

template struct EffectClass<CTiledUpSpecialEffectFilter>;
