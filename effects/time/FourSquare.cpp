#include "effects/time/FourSquare.h"

#include <array>

#include "imaging/Lookup.h"
#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/ReleaseMemory.h"
#include "imaging/ScalarColor.h"

struct CFourSquareSpecialEffectFilter::Planes {
    CPlane8u y, u, v;
};

namespace {

struct Rgb {
    uint8_t r, g, b;
};

using Table = std::array<uint8_t, 256>;

/// Chroma by luma: the tint grows with the luma; exact black and white have colours of their own.
consteval Table ChromaTable(int32_t tint, uint8_t black, uint8_t white) {
    Table table{};
    for (int32_t i = 0; i < 256; ++i) {
        table[static_cast<size_t>(i)] = static_cast<uint8_t>(i * tint / 255 + 128);
    }
    table[0] = black;
    table[255] = white;
    return table;
}

/// Ignores differences below 2.
SE_INLINE void HoldSmallChanges(uint8_t* SE_RESTRICT now, const uint8_t* SE_RESTRICT before, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const int difference = now[i] > before[i] ? now[i] - before[i] : before[i] - now[i];
        now[i] = difference < 2 ? before[i] : now[i];
    }
}

}  // namespace

/// The print of one quadrant: luma of black and white, chroma of all tones.
struct CFourSquareSpecialEffectFilter::Print {
    uint8_t blackY, whiteY;
    Table TableU, TableV;

    consteval Print(Rgb black, Rgb white, Rgb tint)
        : blackY(RgbToY(black.r, black.g, black.b)),
          whiteY(RgbToY(white.r, white.g, white.b)),
          TableU(ChromaTable(static_cast<int32_t>(tint.b * 0.439 - (tint.g * 0.291 + tint.r * 0.148)),
                             RgbToU(black.r, black.g, black.b), RgbToU(white.r, white.g, white.b))),
          TableV(ChromaTable(static_cast<int32_t>(tint.r * 0.439 - tint.g * 0.368 - tint.b * 0.071),
                             RgbToV(black.r, black.g, black.b), RgbToV(white.r, white.g, white.b))) {}
};

void CFourSquareSpecialEffectFilter::Prepare() {
    const int32_t halfWidth = Width() / 2, halfHeight = Height() / 2;
    for (CPlane8u* plane : {&Small, &Scratch, &Previous, &TileY}) *plane = NewPlane(halfWidth, halfHeight);
    for (CPlane8u* plane : {&SmallChroma, &ChromaScratch, &TileU, &TileV}) {
        *plane = NewPlane(Width() / 4, Height() / 4);
    }
    ShrinkLuma = ResizePlan({Width(), Height()}, {halfWidth, halfHeight});
    ShrinkChroma = ResizePlan({halfWidth, halfHeight}, {Width() / 4, Height() / 4});
    HasPrevious = false;
}

void CFourSquareSpecialEffectFilter::Release() {
    ReleaseMemory(Small, SmallChroma, Scratch, ChromaScratch, Previous, TileY, TileU, TileV, ShrinkLuma,
                  ShrinkChroma);
}

void CFourSquareSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    static constexpr Print kTopLeft({225, 75, 25}, {253, 192, 39}, {180, 255, 180});
    static constexpr Print kTopRight({50, 180, 50}, {255, 255, 180}, {255, 128, 255});
    static constexpr Print kBottomLeft({0, 0, 0}, {180, 180, 255}, {255, 0, 0});
    static constexpr Print kBottomRight({0, 0, 255}, {225, 225, 0}, {255, 80, 0});

    Planes planes{CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height),
                  CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height),
                  CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height)};
    ShrinkLuma.Apply(planes.y, Scratch);
    FilterGauss3(Scratch, Small, FilterRing::kCopied);
    Steady();
    ThresholdPlane(Small, 60, 0, 180, 255);
    ShrinkChroma.Apply(Small, SmallChroma);

    const int32_t x = Width() / 2, y = Height() / 2;
    PrintQuadrant(kTopLeft, 0, 0, planes);
    PrintQuadrant(kTopRight, x, 0, planes);
    PrintQuadrant(kBottomLeft, 0, y, planes);
    PrintQuadrant(kBottomRight, x, y, planes);
}

void CFourSquareSpecialEffectFilter::Steady() {
    if (HasPrevious) AtLevel<HoldSmallChanges>(Small.data, Previous.data, Small.Size());
    HasPrevious = true;
    Previous.CopyPixels(Small);
}

void CFourSquareSpecialEffectFilter::PrintQuadrant(const Print& print, int32_t x, int32_t y, Planes& frame) {
    PrimThresholdLTValGTVal8uC1(Small.data, Small.width, TileY.data, TileY.width, Small.width, Small.height,
                                1, print.blackY, 254, print.whiteY);
    LookupBytes(print.TableU.data(), SmallChroma.data, TileU.data, SmallChroma.Size());
    LookupBytes(print.TableV.data(), SmallChroma.data, TileV.data, SmallChroma.Size());

    const auto softenAndPaste = [](const CPlane8u& tile, CPlane8u& scratch, CPlane8u& plane, int32_t atX,
                                   int32_t atY) {
        FilterGauss3(tile, scratch, FilterRing::kCopied);
        plane.Paste(scratch, atX, atY);
    };
    softenAndPaste(TileY, Scratch, frame.y, x, y);
    softenAndPaste(TileU, ChromaScratch, frame.u, x / 2, y / 2);
    softenAndPaste(TileV, ChromaScratch, frame.v, x / 2, y / 2);
}

template struct EffectClass<CFourSquareSpecialEffectFilter>;
