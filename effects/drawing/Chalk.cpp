#include "effects/drawing/Chalk.h"

#include <array>

#include "effects/drawing/Edges.h"
#include "imaging/BitMedian.h"
#include "imaging/Lookup.h"
#include "imaging/Prim.h"
#include "imaging/ReleaseMemory.h"

namespace {

// A tone stands for 32 luma values. Between the filters it is a row of flags, which medians are votes on:
// flag k says whether the tone is above k.
constexpr auto FlagTable = [] {
    std::array<uint8_t, 256> table{};
    for (size_t luma = 0; luma < 256; ++luma) table[luma] = static_cast<uint8_t>((1 << luma / 32) - 1);
    return table;
}();

/// The luma of a tone, by its flags.
constexpr auto ToneTable = [] {
    constexpr uint8_t kTones[8] = {15, 47, 95, 127, 174, 206, 238, 255};
    std::array<uint8_t, 256> table{};
    for (size_t tone = 0; tone < 8; ++tone) table[(size_t{1} << tone) - 1] = kTones[tone];
    return table;
}();

/// Inks the pixels of `luma` that lie on an edge of `row`.
SE_INLINE void InkEdges(const uint8_t* row, uint8_t* luma, ptrdiff_t width, bool inside) {
    constexpr int16_t kEdge = 60;
    constexpr uint8_t kInk = 10;
    ForEdgesOfRow(row, width, width, inside, [=](ptrdiff_t x, int16_t strength) {
        const uint8_t pale = luma[x];
        luma[x] = strength > kEdge ? kInk : pale;
    });
}

/// Draws the edges of `row` on `luma`, darker where they are stronger, and leaves the rest pale.
SE_INLINE void OutlineEdges(const uint8_t* row, uint8_t* luma, ptrdiff_t width, bool inside) {
    constexpr int16_t kEdge = 60, kStrongEdge = 90;
    constexpr uint8_t kBoard = 221, kLine = 20;
    ForEdgesOfRow(row, width, width, inside, [=](ptrdiff_t x, int16_t strength) {
        const auto line = static_cast<uint8_t>(kLine + kStrongEdge - std::min(strength, kStrongEdge));
        luma[x] = strength > kEdge ? line : kBoard;
    });
}

/// draw(row of `from`, row of `to`, width, inside) for each of the rows.
template <class Draw>
void DrawBand(PlaneRows from, PlaneRows to, RowRange rows, int32_t height, Draw draw) {
    for (int32_t y = rows.begin; y < rows.end; ++y) draw(from[y], to[y], from.width(), IsInside(height, y));
}

}  // namespace

std::span<const Property<CChalkSpecialEffectFilter>> CChalkSpecialEffectFilter::Properties() {
    static constexpr ValueName kEdges[] = {{0, "plain", "flat tones only"}, {1, "inked", "near-black edges"}};
    static constexpr Property<CChalkSpecialEffectFilter> rows[] = {
        BooleanProperty<&CChalkSpecialEffectFilter::DrawEdges>("DrawEdges", "TRUE")
            .Says("Whether edges are inked; chalk-3 always draws its outlines.", kEdges),
    };
    return rows;
}

void CChalkSpecialEffectFilter::Prepare() {
    constexpr int32_t kKept = 4;
    for (RowWindow* window : {&Smooth, &Tones, &Voted, &EdgeSource}) *window = RowWindow(Width(), kKept);
    ChromaScratch = NewPlane(Width() / 2, kBandHeight);
    Blur = BoxFilter(Width(), Height(), 3);
}

void CChalkSpecialEffectFilter::Release() {
    ReleaseMemory(Smooth, Tones, Voted, EdgeSource, ChromaScratch, Blur);
}

void CChalkSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    const CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    CPlane8u u = CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height);
    CPlane8u v = CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height);
    if (OutlineOnly) {
        u.Fill(128);
        v.Fill(128);
        DrawOutline(y, y.height);
    } else {
        FilterGauss3InPlace(u, ChromaScratch);
        FilterGauss3InPlace(v, ChromaScratch);
        DrawTones(y, y.height);
    }
}

/// All filters except the softening of edges skip the same ring; it keeps the frame's pixels.
void CChalkSpecialEffectFilter::DrawTones(PlaneRows luma, int32_t height) {
    const auto smooth = [&](RowRange rows) {
        const PlaneRows smoothed = Smooth.Advance(rows), tones = Tones.Advance(rows);
        FilterBand(luma, smoothed, rows, height, 2,
                   [](auto... region) { PrimFilterGauss8uC1(region..., kPrimMask5x5); });
        LookupBytes(FlagTable.data(), smoothed[rows.begin], tones[rows.begin], smoothed.bytes(rows));
    };
    const auto vote = [&](RowRange rows) {
        FilterBand(Tones.Rows(), Voted.Advance(rows), rows, height, 2, FilterMajority5);
        if (DrawEdges) Blur.ApplyBand(Smooth.Rows(), EdgeSource.Advance(rows), rows);
    };
    const auto draw = [&](RowRange rows) {
        FilterBand(Voted.Rows(), luma, rows, height, 2, FilterMajority5);
        LookupBytes(ToneTable.data(), luma[rows.begin], luma.bytes(rows));
        if (DrawEdges) DrawBand(EdgeSource.Rows(), luma, rows, height, AtLevel<InkEdges>);
    };
    RunInBands(height, BandPass{2, smooth}, BandPass{2, vote}, BandPass{2, draw});
}

void CChalkSpecialEffectFilter::DrawOutline(PlaneRows luma, int32_t height) {
    const auto smooth = [&](RowRange rows) { Blur.ApplyBand(luma, Smooth.Advance(rows), rows); };
    const auto outline = [&](RowRange rows) {
        DrawBand(Smooth.Rows(), EdgeSource.Advance(rows), rows, height, AtLevel<OutlineEdges>);
    };
    const auto soften = [&](RowRange rows) { Blur.ApplyBand(EdgeSource.Rows(), luma, rows); };
    RunInBands(height, BandPass{1, smooth}, BandPass{1, outline}, BandPass{1, soften});
}

template struct EffectClass<CChalkSpecialEffectFilter>;
