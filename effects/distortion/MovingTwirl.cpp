#include "effects/distortion/MovingTwirl.h"

#include <cmath>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr int32_t kOne = 4096;  // 1.0 in fixed point
constexpr int32_t kStartPhase = 5734;
constexpr int32_t kPhaseStep = 321;
constexpr double kPhaseLimit = 12867.963508736;  // pi

/// -30.00 to 29.99 radians in steps of 0.01.
constexpr int32_t kTableEntries = 6000;

std::vector<int32_t> MakeSinCosTable() {
    std::vector<int32_t> table(kTableEntries);
    for (int32_t i = 0; i < kTableEntries; ++i) {
        const double a = (i - 3000.0) / 100.0;
        const auto sine = static_cast<int32_t>(std::sin(a) * 4096.0);
        const auto cosine = static_cast<int32_t>(std::cos(a) * 4096.0);
        table[static_cast<size_t>(i)] = cosine * 65536 + (sine & 0xFFFF);
    }
    return table;
}

/// The parameters of a row that its source indices depend on.
struct Twist {
    int32_t phase;
    const int32_t* sinCos;
    int32_t centerX, centerY, width, pixels;
};

/// Divisions truncate. A source outside the plane, possible on frames higher than wide, is replaced by the
/// pixel itself; `self` is the index of the first pixel.
SE_INLINE void FindSources(const Twist& twist, const uint16_t* SE_RESTRICT radius,
                           const uint16_t* SE_RESTRICT share, const int16_t* SE_RESTRICT angle, int32_t self,
                           int32_t count, int32_t* SE_RESTRICT sources) {
    const int32_t phase = twist.phase;
    const int32_t* const sinCos = twist.sinCos;
    const int32_t centerX = twist.centerX, centerY = twist.centerY, width = twist.width;
    const auto pixels = static_cast<uint32_t>(twist.pixels);
    for (int32_t i = 0; i < count; ++i) {
        const int32_t r = radius[i];
        const int32_t a = (share[i] * phase / kOne + angle[i]) * 100;
        const int32_t entry = sinCos[a / kOne + kTableEntries / 2];
        const int32_t sine = static_cast<int16_t>(entry), cosine = entry >> 16;
        const int32_t row = (sine * r + centerY) / kOne;
        const int32_t column = (cosine * r + centerX) / kOne;
        const int32_t source = row * width + column;
        sources[i] = static_cast<uint32_t>(source) < pixels ? source : self + i;
    }
}

}  // namespace

/// Mirrors the rows at the last one, which is the middle row. Only the sign of the angle differs.
void CMovingTwirlSpecialEffectFilter::Disc::AddLowerHalf() {
    if (rows.empty()) return;
    const size_t middle = rows.size() - 1;
    size_t begin = radius.size() - static_cast<size_t>(rows[middle].count);
    for (size_t i = middle; i-- > 0;) {
        const Row upper = rows[i];
        const size_t end = begin;
        begin -= static_cast<size_t>(upper.count);
        rows.push_back({2 * rows[middle].y - upper.y, upper.firstColumn, upper.count});
        for (size_t k = begin; k < end; ++k) {
            radius.push_back(radius[k]);
            share.push_back(share[k]);
            angle.push_back(static_cast<int16_t>(-angle[k]));
        }
    }
}

/// The centre is a separate argument because that of a chroma plane can lie between two pixels.
CMovingTwirlSpecialEffectFilter::Disc CMovingTwirlSpecialEffectFilter::MakeDisc(int32_t width, int32_t height,
                                                                                int32_t centerX,
                                                                                int32_t centerY) {
    Disc disc;
    disc.width = width;
    disc.pixels = width * height;
    disc.centerX = centerX;
    disc.centerY = centerY;
    const int32_t hw = width / 2, hh = height / 2;
    for (int32_t y = 0; y <= hh && y < height; ++y) {
        Disc::Row row{y, 0, 0};
        for (int32_t x = 0; x < width; ++x) {
            const int32_t dx = x - hw, dy = y - hh;
            const auto r = static_cast<int32_t>(std::sqrt(static_cast<double>(dx * dx + dy * dy)));
            if (r >= hh) continue;
            if (row.count++ == 0) row.firstColumn = x;
            disc.radius.push_back(static_cast<uint16_t>(r));
            disc.share.push_back(static_cast<uint16_t>(4096.0 * (hh - r) / hh));
            disc.angle.push_back(static_cast<int16_t>(std::atan2(dy, dx) * 4096.0));
        }
        if (row.count > 0) disc.rows.push_back(row);
    }
    disc.AddLowerHalf();
    return disc;
}

void CMovingTwirlSpecialEffectFilter::Prepare() {
    const int32_t hw = Width() / 2, hh = Height() / 2;
    Scratch = NewPlane(Width(), Height());
    SinCosTable = MakeSinCosTable();
    Luma = MakeDisc(Width(), Height(), hw * kOne, hh * kOne);
    Chroma = MakeDisc(hw, hh, hw * kOne / 2, hh * kOne / 2);
    Sources.resize(static_cast<size_t>(Width()));
    TwistPhase = kStartPhase;
    Direction = 1;
}

void CMovingTwirlSpecialEffectFilter::Release() {
    ReleaseMemory(Scratch, SinCosTable, Luma, Chroma, Sources);
}

/// The phase is not clamped at its limits: the next frame brings it back.
void CMovingTwirlSpecialEffectFilter::Advance() {
    TwistPhase += Direction * kPhaseStep;
    if (TwistPhase < -kPhaseLimit || TwistPhase > kPhaseLimit) Direction = -Direction;
}

template <class Take>
void CMovingTwirlSpecialEffectFilter::ForEachRow(const Disc& disc, Take take) {
    const Twist twist{TwistPhase, SinCosTable.data(), disc.centerX, disc.centerY, disc.width, disc.pixels};
    size_t done = 0;
    for (const Disc::Row& row : disc.rows) {
        const int32_t firstPixel = row.y * disc.width + row.firstColumn;
        AtLevel<FindSources>(twist, disc.radius.data() + done, disc.share.data() + done,
                             disc.angle.data() + done, firstPixel, row.count, Sources.data());
        take(Sources.data(), firstPixel, row.count);
        done += static_cast<size_t>(row.count);
    }
}

void CMovingTwirlSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    Advance();

    const uint8_t* const from = Scratch.data;
    std::memcpy(Scratch.data, frame.y.data, static_cast<size_t>(Luma.pixels));
    ForEachRow(Luma, [&](const int32_t* sources, int32_t firstPixel, int32_t count) {
        uint8_t* const to = frame.y.data + firstPixel;
#pragma GCC unroll 4  // or the speed depends on where the linker puts the loop
        for (int32_t i = 0; i < count; ++i) to[i] = from[sources[i]];
    });

    const uint8_t* const fromV = from + Chroma.pixels;
    std::memcpy(Scratch.data, frame.u.data, static_cast<size_t>(Chroma.pixels));
    std::memcpy(Scratch.data + Chroma.pixels, frame.v.data, static_cast<size_t>(Chroma.pixels));
    ForEachRow(Chroma, [&](const int32_t* sources, int32_t firstPixel, int32_t count) {
        uint8_t* const toU = frame.u.data + firstPixel;
        uint8_t* const toV = frame.v.data + firstPixel;
#pragma GCC unroll 4  // or the speed depends on where the linker puts the loop
        for (int32_t i = 0; i < count; ++i) {
            toU[i] = from[sources[i]];
            toV[i] = fromV[sources[i]];
        }
    });
}

template struct EffectClass<CMovingTwirlSpecialEffectFilter>;
