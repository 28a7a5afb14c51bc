#include "effects/animated/LensFlares.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "framework/Surroundings.h"
#include "imaging/ScalarColor.h"

namespace {

constexpr double kPi = 3.1415926535;

int32_t ClippedRadius(const CPlane8u& plane, int32_t radius) {
    return std::min({plane.width / 2, plane.height / 2, radius});
}

/// 0 inside radius 1, 1 outside it, with a smooth step between.
double Edge(double d) {
    if (d < 0.99) return 0.0;
    if (d >= 1.01) return 1.0;
    const double u = (d - 0.99) / 0.020000000000000018;
    return u * u * (3 - 2 * u);
}

/// Calls `pixel(value, distance from the centre)` for every pixel.
template <class Pixel>
void ForEachDistance(CPlane8u& plane, Pixel pixel) {
    for (int32_t row = 0; row < plane.height; ++row) {
        for (int32_t column = 0; column < plane.width; ++column) {
            const int32_t x = column - plane.width / 2, y = row - plane.height / 2;
            pixel(plane.Row(row)[column], std::sqrt(static_cast<double>(x * x + y * y)));
        }
    }
}

}  // namespace

void SoftDisc(CPlane8u& plane, int32_t radius) {
    const int32_t r = ClippedRadius(plane, radius);
    if (r < 1) return;
    ForEachDistance(plane, [&](uint8_t& pixel, double distance) {
        const double d = distance / r;
        pixel = static_cast<uint8_t>(255 * ((1 - d) * (1 - d)) * (1 - Edge(d)));
    });
}

void GlareDisc(CPlane8u& plane, int32_t radius) {
    const int32_t r = ClippedRadius(plane, radius);
    if (r < 1) return;
    const auto square = [](double value) { return value * value; };
    ForEachDistance(plane, [&](uint8_t& pixel, double distance) {
        if (distance * distance >= r * r) return;
        const double d = distance / r, q = d + 0.02;
        const double value = std::exp(-square(d / 0.02)) * 2.61e6 * 0.384 + 20.91 / (q * q * q) * 0.478 +
                             72.37 / (q * q) * 0.138;
        pixel = static_cast<uint8_t>(std::clamp(value, 0.0, 255.0));
    });
}

void Star(CPlane8u& plane, int32_t radius, int32_t spikes) {
    const int32_t middleX = plane.width / 2, middleY = plane.height / 2, limit = std::min(middleX, middleY);
    const int32_t r = radius > limit ? limit - 1 : radius;
    CPlane8u core = NewPlane(plane.width, plane.height);
    SoftDisc(core, r / 2);

    const auto drawSpikes = [] { return Rand() % 7 + 5; };
    int32_t n = spikes < 0 ? drawSpikes() : spikes;
    for (int32_t degree = 0; degree < 360; ++degree) {
        if (spikes == 0) n = drawSpikes();
        const double a = degree;
        const int32_t lobe = 360 / n + 360 % n;
        const double c = std::cos((a + 25.0) * kPi / lobe);
        const double length = std::fabs(c * c * r);
        const double t = a * kPi / 180.0;
        const double sine = std::sin(t), cosine = std::cos(t);
        for (double s = 0.0; s < length; s += 1.0) {
            const int32_t x = middleX + static_cast<int32_t>(sine * s);
            const int32_t y = middleY + static_cast<int32_t>(cosine * s);
            if (x < 0 || x >= plane.width || y < 0 || y >= plane.height) continue;
            // Several pixels may map to one; the first wins.
            uint8_t& pixel = plane.Row(y)[x];
            if (pixel == 0) pixel = static_cast<uint8_t>((1 - s / length) * 255.0);
        }
    }
    for (size_t i = 0; i < plane.Size(); ++i) {
        plane.data[i] = static_cast<uint8_t>(std::min(plane.data[i] + core.data[i], 255));
    }
}

void Ring(CPlane8u& plane, int32_t radius) {
    const int32_t r = ClippedRadius(plane, radius);
    if (r < 1) return;
    ForEachDistance(plane, [&](uint8_t& pixel, double distance) {
        const double d = distance / r;
        const auto light = static_cast<int32_t>(d * d * d * d * d * d * (1 - Edge(d)) * 255.0) & 255;
        pixel = static_cast<uint8_t>(std::min(pixel + light, 255));
    });
}

CLensFlaresMovingAnimation::CLensFlaresMovingAnimation(int32_t objectWidth, int32_t objectHeight,
                                                       int32_t frameWidth, int32_t frameHeight,
                                                       int32_t flareType, int32_t frameCount,
                                                       int32_t maxSpeed)
    : CMovingAnimationObject(objectWidth, objectHeight, frameWidth, frameHeight, frameCount),
      FlareType(flareType),
      MaxSpeed(maxSpeed) {
    CLensFlaresMovingAnimation::BuildFrames();
    RandomizePosition();
    RandomizeVelocity(MaxSpeed);
    RandomizeColor();
}

void* CLensFlaresMovingAnimation::DeletingDestructor(uint32_t flags) {
    return DestroyObject(this, flags);
}

bool CLensFlaresMovingAnimation::NextFrame() {
    if (CMovingAnimationObject::NextFrame()) return true;
    RandomizePosition();
    if (FlareType != kPlainGlow) RandomizeColor();
    RandomizeVelocity(MaxSpeed);
    return false;
}

void CLensFlaresMovingAnimation::BuildFrames() {
    const int32_t half = std::min(ObjectWidth, ObjectHeight) / 2;
    const int32_t step = half / std::max(static_cast<int32_t>(Frames.size()), 1);
    auto radius = static_cast<int32_t>(half * 0.85);
    const int32_t spikes = Rand() % 5 + 3;
    int32_t sign = 1;
    for (CPlane8u& frame : Frames) {
        frame.Fill(0);
        switch (FlareType) {
            case kPlainGlow:
                SoftDisc(frame, radius);
                break;
            case kGlare:
                GlareDisc(frame, radius);
                break;
            case kRaggedStar:
                Star(frame, radius, 0);
                break;
            case kRegularStar:
                Star(frame, radius, spikes);
                break;
            case kChangingStar:
                Star(frame, radius, -1);
                break;
            case kRingedStar:
                Star(frame, radius, 0);
                Ring(frame, static_cast<int32_t>(radius * 0.6));
                break;
            default:
                break;
        }
        // The flare swells once and shrinks.
        radius += sign * step;
        if (radius >= half) sign = -sign;
    }
}

CFlaresField::CFlaresField(int32_t width, int32_t height, int32_t mode)
    : CAnimationFramework(width, height),
      Mode(mode),
      FlareSize(height >= 240   ? 76
                : height >= 120 ? 38
                                : 128) {}

void* CFlaresField::DeletingDestructor(uint32_t flags) {
    return DestroyObject(this, flags);
}

void CFlaresField::AddFlares(int32_t count) {
    constexpr int32_t kFrames = 5, kSpeed = 15;
    for (int32_t i = 0; i < count; ++i) {
        const int32_t type = Mode == 0 ? Rand() % 7 + 1 : Mode;
        AnimationObject flare =
            MakeOwned<CLensFlaresMovingAnimation>(FlareSize, FlareSize, Width, Height, type, kFrames, kSpeed);
        if (Mode == kPlainGlow) {
            // All flares of a plain-glow field have the same deep blue.
            uint8_t color[4];
            flare->SetColor(RgbToYuvColor(color, 36, 25, 200));
        }
        AddObject(std::move(flare));
    }
}
