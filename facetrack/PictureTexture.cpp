#include "facetrack/PictureTexture.h"

#include <algorithm>
#include <cstring>

#include "imaging/Prim.h"
#include "imaging/ResizeAxis.h"

namespace {

constexpr uint8_t kBlackLuma = 0, kNeutralChroma = 128, kWhite = 255;
constexpr int32_t kFrameThickness = 2;

/// Copies the part of `src` at (x, y) to a `width` by `height` picture with packed rows; `outside` where
/// there is no source.
void Capture(const CPlane8u& src, int32_t x, int32_t y, uint8_t* dst, int32_t width, int32_t height,
             uint8_t outside) {
    if (width < 1 || height < 1) return;
    std::memset(dst, outside, static_cast<size_t>(width) * static_cast<size_t>(height));
    const int32_t left = std::clamp(-x, 0, width), right = std::clamp(src.width - x, left, width);
    const int32_t top = std::clamp(-y, 0, height), bottom = std::clamp(src.height - y, top, height);
    if (left == right) return;
    for (int32_t row = top; row < bottom; ++row) {
        std::memcpy(dst + static_cast<ptrdiff_t>(row) * width + left, src.Row(y + row) + x + left,
                    static_cast<size_t>(right - left));
    }
}

/// How a picture lies on a plane of the frame: scaled, its corner at (x, y), then turned about its own
/// middle.
struct Turn {
    float scaleX, scaleY, angle;
    double x, y;
    uint32_t interpolation;
};

/// Scales with the nearest pixels. `columns` has room for an index for each column of the result, so that
/// nothing is allocated although the picture has another size in every frame.
void Scale(const CPlane8u& region, int32_t width, int32_t height, CPlane8u& scaled, int32_t scaledWidth,
           int32_t scaledHeight, const Turn& turn, std::vector<int32_t>& columns) {
    if (width < 1 || height < 1) return;
    const resize::Axis x(width, turn.scaleX, scaledWidth), y(height, turn.scaleY, scaledHeight);
    resize::NearestColumns(x, columns.data());
    resize::ScaleNearest(x, columns.data(), y, region.data, width, scaled.data, scaledWidth);
}

void DrawTurnedPlane(const CPlane8u& scaled, int32_t width, int32_t height, CPlane8u& frame,
                     const Turn& turn) {
    double shiftX = 0, shiftY = 0;
    PrimGetRotateShift(width * 0.5, height * 0.5, turn.angle, &shiftX, &shiftY);
    PrimRotate8uC1(scaled.data, width, height, width, 0, 0, width, height, frame.data, frame.width, 0, 0,
                   frame.width, frame.height, turn.angle, shiftX + turn.x, shiftY + turn.y,
                   turn.interpolation);
}

}  // namespace

void PlaneSet::Allocate(int32_t width, int32_t height) {
    y = NewPlane(width, height);
    u = NewPlane(width / 2, height / 2);
    v = NewPlane(width / 2, height / 2);
}

CPictureTexture::CPictureTexture(int32_t frameWidth, int32_t frameHeight, int32_t thumbWidth,
                                 int32_t thumbHeight)
    : FrameSize{frameWidth, frameHeight}, ThumbSize{thumbWidth, thumbHeight} {
    Region.Allocate(frameWidth, frameHeight);
    // On a narrow frame a thumbnail can be wider than the frame.
    Scaled.Allocate(std::max(frameWidth, thumbWidth), std::max(frameHeight, thumbHeight));
    Columns.resize(static_cast<size_t>(std::max(frameWidth, thumbWidth)));
    Thumb.Allocate(thumbWidth, thumbHeight);
}

ResultCode CPictureTexture::Start(const PlaneSet& frame, Point origin, const Point* slot, Point regionSize,
                                  int32_t rotation, float pace, int32_t base) {
    if (slot != nullptr) Slot = *slot;
    if (pace == 0.0F || base == 0) return kFailure;
    Landed = false;
    Origin = origin;
    RegionSize = regionSize;
    if (RegionSize.x < 1 || RegionSize.y < 1 || RegionSize.x > FrameSize.x || RegionSize.y > FrameSize.y) {
        RegionSize = {0, 0};
    }
    const int32_t halfWidth = RegionSize.x / 2, halfHeight = RegionSize.y / 2;
    Capture(frame.y, origin.x, origin.y, Region.y.data, RegionSize.x, RegionSize.y, kBlackLuma);
    Capture(frame.u, origin.x / 2, origin.y / 2, Region.u.data, halfWidth, halfHeight, kNeutralChroma);
    Capture(frame.v, origin.x / 2, origin.y / 2, Region.v.data, halfWidth, halfHeight, kNeutralChroma);

    const float steps = static_cast<float>(base) * pace;
    const auto perStep = [&](int32_t whole) { return static_cast<float>(whole) / steps; };
    const auto scaleStep = [&](int32_t thumb, int32_t region) {
        return region == 0 ? 0.0F : (static_cast<float>(thumb) / static_cast<float>(region) - 1.0F) / steps;
    };
    ScaleX = ScaleY = 1;
    Angle = 0;
    PosX = static_cast<float>(Origin.x);
    PosY = static_cast<float>(Origin.y);
    VelX = perStep(Slot.x - Origin.x);
    VelY = perStep(Slot.y - Origin.y);
    TurnStep = perStep(rotation * 360);
    ScaleStepX = scaleStep(ThumbSize.x, RegionSize.x);
    ScaleStepY = scaleStep(ThumbSize.y, RegionSize.y);
    Step = 0;
    StepCount = static_cast<int32_t>(pace) * base;
    return kSuccess;
}

bool CPictureTexture::Advance() {
    if (!InFlight()) {
        Landed = true;
        return false;
    }
    ++Step;
    PosX += VelX;
    PosY += VelY;
    Angle += TurnStep;
    ScaleX += ScaleStepX;
    ScaleY += ScaleStepY;
    return true;
}

void CPictureTexture::Paste(PlaneSet& frame) const {
    frame.y.Paste(Thumb.y, Slot.x, Slot.y);
    frame.u.Paste(Thumb.u, Slot.x / 2, Slot.y / 2);
    frame.v.Paste(Thumb.v, Slot.x / 2, Slot.y / 2);
}

void CPictureTexture::DrawThumb(PlaneSet& frame) const {
    if (HasThumb) Paste(frame);
}

void CPictureTexture::DrawMoving(PlaneSet& frame) {
    if (Landed) {
        Paste(frame);
        return;
    }
    DrawTurned(frame);
    if (!InFlight()) {
        KeepThumb(frame);
        Paste(frame);
    }
}

void CPictureTexture::DrawTurned(PlaneSet& frame) {
    constexpr uint32_t kLumaQuality = kPrimSmoothEdge | kPrimCubic,
                       kChromaQuality = kPrimSmoothEdge | kPrimNearest;
    const auto width = static_cast<int32_t>(static_cast<float>(RegionSize.x) * ScaleX);
    const auto height = static_cast<int32_t>(static_cast<float>(RegionSize.y) * ScaleY);
    if (width < 1 || height < 1 || width > Scaled.y.width || height > Scaled.y.height) return;
    const Turn luma{ScaleX, ScaleY, Angle, PosX, PosY, kLumaQuality};
    Scale(Region.y, RegionSize.x, RegionSize.y, Scaled.y, width, height, luma, Columns);
    CPlane8u::Over(Scaled.y.data, width, height).FillBorder(kFrameThickness, kWhite);

    const auto halfWidth = static_cast<int32_t>(0.5 * RegionSize.x * ScaleX);
    const auto halfHeight = static_cast<int32_t>(0.5 * RegionSize.y * ScaleY);
    const Turn chroma{ScaleX, ScaleY, Angle, PosX * 0.5, PosY * 0.5, kChromaQuality};
    const bool hasChroma =
        halfWidth >= 1 && halfHeight >= 1 && halfWidth <= Scaled.u.width && halfHeight <= Scaled.u.height;
    if (hasChroma) {
        Scale(Region.u, RegionSize.x / 2, RegionSize.y / 2, Scaled.u, halfWidth, halfHeight, chroma, Columns);
        Scale(Region.v, RegionSize.x / 2, RegionSize.y / 2, Scaled.v, halfWidth, halfHeight, chroma, Columns);
    }
    DrawTurnedPlane(Scaled.y, width, height, frame.y, luma);
    if (hasChroma) {
        DrawTurnedPlane(Scaled.u, halfWidth, halfHeight, frame.u, chroma);
        DrawTurnedPlane(Scaled.v, halfWidth, halfHeight, frame.v, chroma);
    }
}

void CPictureTexture::KeepThumb(const PlaneSet& frame) {
    Capture(frame.y, Slot.x, Slot.y, Thumb.y.data, Thumb.y.width, Thumb.y.height, kBlackLuma);
    Capture(frame.u, Slot.x / 2, Slot.y / 2, Thumb.u.data, Thumb.u.width, Thumb.u.height, kNeutralChroma);
    Capture(frame.v, Slot.x / 2, Slot.y / 2, Thumb.v.data, Thumb.v.width, Thumb.v.height, kNeutralChroma);
    Thumb.y.FillBorder(kFrameThickness, kWhite);
    HasThumb = true;
}
