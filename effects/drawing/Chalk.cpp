#include "effects/drawing/Chalk.h"

#include <array>

#include "effects/drawing/Edges.h"
#include "imaging/Lookup.h"
#include "imaging/ReleaseMemory.h"

namespace {

/// Each tone stands for 32 luma values.
constexpr auto ToneTable = [] {
    constexpr uint8_t kTones[8] = {15, 47, 95, 127, 174, 206, 238, 255};
    std::array<uint8_t, 256> table{};
    for (size_t luma = 0; luma < 256; ++luma) table[luma] = kTones[luma / 32];
    return table;
}();

/// Inks the pixels of `luma` that lie on an edge of `source`.
SE_INLINE void InkEdges(const uint8_t* source, uint8_t* luma, ptrdiff_t width, ptrdiff_t height) {
    constexpr int32_t kEdge = 60;
    constexpr uint8_t kInk = 10;
    for (ptrdiff_t y = 0; y < height; ++y) {
        uint8_t* const row = luma + y * width;
        ForEdgesOfRow(source, width, width, height, y,
                      [=](ptrdiff_t x, int32_t strength) { row[x] = strength > kEdge ? kInk : row[x]; });
    }
}

/// Draws the edges of `source` on `luma`, darker where they are stronger, and leaves the rest pale.
SE_INLINE void OutlineEdges(const uint8_t* source, uint8_t* luma, ptrdiff_t width, ptrdiff_t height) {
    constexpr int32_t kEdge = 60, kStrongEdge = 90;
    constexpr uint8_t kBoard = 221, kLine = 20;
    for (ptrdiff_t y = 0; y < height; ++y) {
        uint8_t* const row = luma + y * width;
        ForEdgesOfRow(source, width, width, height, y, [=](ptrdiff_t x, int32_t strength) {
            const auto line = static_cast<uint8_t>(kLine + kStrongEdge - std::min(strength, kStrongEdge));
            row[x] = strength > kEdge ? line : kBoard;
        });
    }
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
    EdgeSource = NewPlane(Width(), Height());
    Scratch = NewPlane(Width(), Height());
    ChromaScratch = NewPlane(Width() / 2, kBandHeight);
    Blur = BoxFilter(Width(), Height(), 3);
}

void CChalkSpecialEffectFilter::Release() {
    ReleaseMemory(EdgeSource, Scratch, ChromaScratch, Blur);
}

void CChalkSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u y = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    CPlane8u u = CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height);
    CPlane8u v = CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height);
    if (OutlineOnly) {
        DrawOutline(y, u, v);
    } else {
        DrawTones(y, u, v);
    }
}

void CChalkSpecialEffectFilter::DrawTones(CPlane8u& y, CPlane8u& u, CPlane8u& v) {
    // All three filters skip the same ring; it keeps the frame's pixels.
    FilterGauss5(y, Scratch, FilterRing::kCopied);
    if (DrawEdges) Blur.Apply(Scratch, EdgeSource);
    FilterMedian5(Scratch, y);
    FilterMedian5(y, Scratch);
    LookupBytes(ToneTable.data(), Scratch.data, y.data, y.Size());
    FilterGauss3InPlace(u, ChromaScratch);
    FilterGauss3InPlace(v, ChromaScratch);
    if (DrawEdges) AtLevel<InkEdges>(EdgeSource.data, y.data, y.width, y.height);
}

void CChalkSpecialEffectFilter::DrawOutline(CPlane8u& y, CPlane8u& u, CPlane8u& v) {
    u.Fill(128);
    v.Fill(128);
    Blur.Apply(y, Scratch);
    AtLevel<OutlineEdges>(Scratch.data, y.data, y.width, y.height);
    Blur.ApplyInPlace(y);
}

template struct EffectClass<CChalkSpecialEffectFilter>;
