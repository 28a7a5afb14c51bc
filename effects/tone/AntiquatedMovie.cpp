#include "effects/tone/AntiquatedMovie.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "framework/Surroundings.h"
#include "imaging/Lookup.h"
#include "imaging/Prim.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr uint8_t kNeutral = 128;

using ByteTable = std::array<uint8_t, 256>;

/// v * factor + offset, truncated, for each byte v.
consteval ByteTable LinearTable(double factor, double offset) {
    ByteTable table{};
    for (int32_t v = 0; v < 256; ++v) {
        const auto value = static_cast<int32_t>(v * factor + offset);
        table[static_cast<size_t>(v)] = static_cast<uint8_t>(std::clamp(value, 0, 255));
    }
    return table;
}
constexpr ByteTable LutLuma = LinearTable(1.216, -11.0);
constexpr ByteTable LutChromaFalling = LinearTable(-0.161, 131.0);

// ---- hairs -----------------------------------------------------------------------------------------

constexpr int32_t kHairBox = 32;     // a hair stays within a square of this side
constexpr int32_t kHairMargin = 64;  // frames must be larger than this to have hairs

/// One coordinate of a cubic Bezier curve in its polynomial form.
class Bezier {
  public:
    explicit Bezier(const int32_t (&p)[4])
        : a_(3 * (p[1] - p[2]) - p[0] + p[3]),
          b_(3 * (p[2] - 2 * p[1] + p[0])),
          c_(3 * (p[1] - p[0])),
          start_(p[0]) {}

    /// The nearest pixel. The curve stays between its control points, which are not negative.
    int32_t At(double t) const {
        return static_cast<int32_t>(b_ * (t * t) + a_ * (t * t * t) + c_ * t + start_ + 0.5);
    }

  private:
    double a_, b_, c_, start_;
};

/// A thin black curve somewhere on the plane.
void DrawHair(CPlane8u& plane) {
    const int32_t left = Rand() % (plane.width - kHairMargin) + 5;
    const int32_t top = Rand() % (plane.height - kHairMargin) + 5;
    int32_t x[4], y[4];
    for (int point = 0; point < 4; ++point) {
        x[point] = Rand() % kHairBox;
        y[point] = Rand() % kHairBox;
    }
    const Bezier curveX(x), curveY(y);
    for (int32_t k = 0; k <= 100; ++k) {
        const double t = k / 100.0;
        plane.Row(top + curveY.At(t))[left + curveX.At(t)] = 0;
    }
}

// ---- dust and scratches ----------------------------------------------------------------------------

/// A bright vertical stroke of random length, with a random brightness in each row.
void DrawDust(CPlane8u& plane) {
    const int32_t x = Rand() % plane.width;
    const int32_t top = Rand() % plane.height;
    const int32_t rows = Rand() % (plane.height - top);
    for (int32_t y = top; y < top + rows; ++y) {
        uint8_t& pixel = plane.Row(y)[x];
        pixel = static_cast<uint8_t>(std::min(pixel + Rand() % 30 + 10, 255));
    }
}

void DrawScratch(CPlane8u& plane, int32_t x) {
    if (x < 0 || x >= plane.width) return;
    for (int32_t y = 0; y < plane.height; ++y) plane.Row(y)[x] = 200;
}

// ---- vignette --------------------------------------------------------------------------------------

/// Darkens by the sum of the distances from the foci of the ellipse inscribed in the frame.
void FillVignette(CPlane8u& plane) {
    const double w = plane.width, h = plane.height;
    const double cx = plane.width / 2, cy = plane.height / 2;
    const bool upright = h > w;
    const double c = upright ? std::sqrt(cy * cy - cx * cx) : std::sqrt(cx * cx - cy * cy);
    const double diagonal = std::sqrt(w * w + h * h);
    for (int32_t y = 0; y < plane.height; ++y) {
        uint8_t* const row = plane.Row(y);
        for (int32_t x = 0; x < plane.width; ++x) {
            // Along and across the axis of the foci.
            const double along = upright ? y - cy : x - cx, across = upright ? x - cx : y - cy;
            const double r1 = std::sqrt((along + c) * (along + c) + across * across);
            const double r2 = std::sqrt((along - c) * (along - c) + across * across);
            const double light = 365.0 - 255.0 * (r1 + r2) / diagonal;
            row[x] = static_cast<uint8_t>(std::clamp(light, 0.0, 255.0));
        }
    }
}

}  // namespace

std::span<const Property<CAntiquatedMovieSpecialEffectFilter>>
CAntiquatedMovieSpecialEffectFilter::Properties() {
    static constexpr Property<CAntiquatedMovieSpecialEffectFilter> rows[] = {
        BooleanProperty<&CAntiquatedMovieSpecialEffectFilter::Sepia>("Sepia", "TRUE")
            .Says("Whether the film has a sepia tint."),
        BooleanProperty<&CAntiquatedMovieSpecialEffectFilter::Vignetting>("Vignetting", "TRUE")
            .Says("Whether the corners are darkened."),
    };
    return rows;
}

void CAntiquatedMovieSpecialEffectFilter::Prepare() {
    GrainPlane = NewPlane(Width(), Height() + 1);
    uint32_t seed = 544;  // the same grain for every stream
    PrimAddGaussNoise8uC1(GrainPlane.data, GrainPlane.width, GrainPlane.width, GrainPlane.height, 20.0, 17.0,
                          &seed);
    ToneHalfPlane = NewPlane(Width() / 2, Height() / 2);
    ToneHalf = ResizePlan({Width(), Height()}, {Width() / 2, Height() / 2});
    SoftenPlane = NewPlane(Width(), kBandHeight);
    VignettePlane = NewPlane(Width(), Height());
    FillVignette(VignettePlane);
    JitterRows = 1;
    DriftColumn = 0;
}

void CAntiquatedMovieSpecialEffectFilter::Release() {
    ReleaseMemory(GrainPlane, VignettePlane, ToneHalfPlane, ToneHalf, SoftenPlane);
}

void CAntiquatedMovieSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    CPlane8u luma = CPlane8u::Over(frame.y.data, Width(), Height());
    frame.FillChroma(kNeutral, kNeutral);
    DamageFilm(luma);
    EqualizeHistogram(luma);
    AddGrainAndSoften(luma);
    if (Vignetting) {
        PrimMulScale8uC1(VignettePlane.data, luma.width, luma.data, luma.width, luma.width, luma.height);
    }
    JitterGate(luma);
    if (Sepia) Tint(luma, frame.u);
}

void CAntiquatedMovieSpecialEffectFilter::DamageFilm(CPlane8u& luma) {
    if (luma.width > kHairMargin && luma.height > kHairMargin) {
        for (int i = 0; i < 2; ++i) DrawHair(luma);
    }
    for (int i = 0; i < 50; ++i) DrawDust(luma);
    DrawScratches(luma);
}

/// Five scratches that shake in place and three that drift to the right.
void CAntiquatedMovieSpecialEffectFilter::DrawScratches(CPlane8u& luma) {
    const int32_t w = luma.width;
    DriftColumn = (DriftColumn + 1) % w;
    for (const int32_t x : {w * 8 / 100, w * 25 / 100, w * 80 / 100, w - 10, w - 13}) {
        DrawScratch(luma, Rand() % 2 + x);
    }
    for (const int32_t offset : {0, 200, 379}) DrawScratch(luma, (DriftColumn + offset) % w);
}

void CAntiquatedMovieSpecialEffectFilter::AddGrainAndSoften(CPlane8u& luma) {
    const int32_t shift = Rand() % GrainPlane.width;
    PrimAddSfs8uC1(GrainPlane.data + shift, GrainPlane.width, luma.data, luma.width, luma.width, luma.height,
                   0);
    FilterGauss5InPlace(luma, SoftenPlane);
}

/// The picture moves up; the last rows keep their content.
void CAntiquatedMovieSpecialEffectFilter::JitterGate(CPlane8u& luma) {
    JitterRows = std::clamp(JitterRows + Rand() % 3 - 1, 0, 10);
    if (JitterRows == 0 || JitterRows >= luma.height) return;
    std::memmove(luma.data, luma.Row(JitterRows),
                 luma.Size() - static_cast<size_t>(JitterRows) * static_cast<size_t>(luma.width));
}

/// Takes away more blue where the picture is brighter; the other chroma plane stays neutral.
void CAntiquatedMovieSpecialEffectFilter::Tint(CPlane8u& luma, const FramePlane& u) {
    ToneHalf.Apply(luma, ToneHalfPlane);
    LookupBytes(LutLuma.data(), luma.data, luma.Size());
    LookupBytes(LutChromaFalling.data(), ToneHalfPlane.data, u.data, ToneHalfPlane.Size());
}

template struct EffectClass<CAntiquatedMovieSpecialEffectFilter>;
