#include "effects/animated/AnimationObjects.h"

#include <algorithm>
#include <cstring>

#include "framework/Surroundings.h"
#include "imaging/ScalarColor.h"

namespace {

/// Brightness of a fading sprite for x from 0 to 8: rises fast, peaks near 2 and fades slowly.
uint8_t FadeValue(double x) {
    constexpr double kCoefficients[] = {19.795236361585, 369.733067341368, -199.738438091861,
                                        58.497524260458, -17.016867787585, 3.998718989183,
                                        -0.550613656376, 0.038423391749,   -0.001055715747};
    double value = 0.0, power = 1.0;
    for (const double coefficient : kCoefficients) {
        value += coefficient * power;
        power *= x;
    }
    return static_cast<uint8_t>(std::clamp(static_cast<int32_t>(value), 0, 255));
}

}  // namespace

CMovingAnimationObject::CMovingAnimationObject(int32_t objectWidth, int32_t objectHeight, int32_t frameWidth,
                                               int32_t frameHeight, int32_t frameCount)
    : ObjectWidth(objectWidth),
      ObjectHeight(objectHeight),
      FrameWidth(frameWidth),
      FrameHeight(frameHeight),
      MaxX(std::max(frameWidth - objectWidth - 1, 0)),
      MaxY(std::max(frameHeight - objectHeight - 1, 0)) {
    if (frameCount < 1) return;
    for (int32_t i = 0; i < frameCount; ++i) Frames.push_back(NewPlane(objectWidth, objectHeight));
    FrameCursor = static_cast<size_t>(Rand() % frameCount);
}

void* CMovingAnimationObject::DeletingDestructor(uint32_t flags) {
    return DestroyObject(this, flags);
}

void CMovingAnimationObject::Move() {
    const auto step = [](int32_t& position, int32_t& velocity, int32_t last) {
        const int32_t next = position + velocity;
        position = std::clamp(next, 0, last);
        if (next != position) velocity = -velocity;
    };
    step(X, VelocityX, MaxX);
    step(Y, VelocityY, MaxY);
}

bool CMovingAnimationObject::NextFrame() {
    if (++FrameCursor < Frames.size()) return true;
    FrameCursor = 0;
    return false;
}

CPlane8u* CMovingAnimationObject::GetFrame() {
    return &Frames[FrameCursor];
}

void CMovingAnimationObject::GetPosition(PlanePoint* position) {
    *position = {X, Y};
}
void CMovingAnimationObject::GetColor(uint8_t* color) {
    std::memcpy(color, Color, sizeof Color);
}
void CMovingAnimationObject::SetColor(const uint8_t* color) {
    std::memcpy(Color, color, sizeof Color);
}

void CMovingAnimationObject::BuildFrames() {
    if (Frames.empty()) return;
    int32_t step = 2 * (255 / static_cast<int32_t>(Frames.size()));
    int32_t value = 0;
    for (CPlane8u& frame : Frames) {
        frame.Fill(static_cast<uint8_t>(std::clamp(value, 0, 255)));
        value += step;
        if (value >= 255) step = -step;
    }
}

int32_t CMovingAnimationObject::DrawBelow(int32_t limit) {
    const int32_t drawn = Rand();
    return limit > 0 ? drawn % limit : 0;
}

void CMovingAnimationObject::RandomizePosition() {
    X = DrawBelow(MaxX);
    Y = DrawBelow(MaxY);
}

void CMovingAnimationObject::RandomizeVelocity(int32_t speed) {
    const int32_t range = 2 * speed + 1;
    VelocityX = DrawBelow(range) - speed + 1;
    VelocityY = DrawBelow(range) - speed + 1;
}

void CMovingAnimationObject::RandomizeColor() {
    const auto blue = static_cast<uint8_t>(Rand() % 256);
    const auto green = static_cast<uint8_t>(Rand() % 256);
    const auto red = static_cast<uint8_t>(Rand() % 256);
    const uint8_t alpha = Color[3];
    RgbToYuvColor(Color, red, green, blue);
    Color[3] = alpha;
}

CBitmapAnimationObject::CBitmapAnimationObject(int32_t objectWidth, int32_t objectHeight, int32_t frameWidth,
                                               int32_t frameHeight, const CPlane8u& source)
    : CMovingAnimationObject(objectWidth, objectHeight, frameWidth, frameHeight, 0),
      Picture(NewPlane(objectWidth, objectHeight)) {
    ResizePlane(source, Picture);
    FadeLength = Rand() % 14 + 20;
    FadeStep = Rand() % FadeLength;
    CBitmapAnimationObject::BuildFrames();
}

void* CBitmapAnimationObject::DeletingDestructor(uint32_t flags) {
    return DestroyObject(this, flags);
}

void CBitmapAnimationObject::BuildFrames() {
    const CPlane8u sharp = Picture;
    FilterGauss3(sharp, Picture);
}

bool CBitmapAnimationObject::NextFrame() {
    constexpr int32_t kSpeed = 8;
    const bool ended = ++FadeStep > FadeLength;
    if (ended) FadeStep = 0;
    // The sprite's luma rises and falls together with its opacity.
    Color[0] = Color[3] = FadeValue(8.0 / FadeLength * FadeStep);
    if (ended) {
        RandomizePosition();
        RandomizeVelocity(kSpeed);
    }
    return !ended;
}

void CBitmapAnimationObject::RandomizePosition() {
    const auto inMiddle = [](int32_t position, int32_t last) {
        return position > last / 4 && position < 3 * last / 4;
    };
    int32_t x = DrawBelow(MaxX), y = DrawBelow(MaxY);
    if (Rand() % 10 < 8) {
        while (inMiddle(x, MaxX) && inMiddle(y, MaxY)) {
            x = DrawBelow(MaxX);
            y = DrawBelow(MaxY);
        }
    }
    X = x;
    Y = y;
}
