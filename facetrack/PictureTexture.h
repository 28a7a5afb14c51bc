// One snapshot: captured from the frame, flown to its slot, and kept there as a thumbnail.
#ifndef SPECIALEFFECTS_FACETRACK_PICTURETEXTURE_H
#define SPECIALEFFECTS_FACETRACK_PICTURETEXTURE_H

#include <cstdint>
#include <vector>

#include "framework/SpecialEffectFilter.h"
#include "imaging/Plane8u.h"

/// Three planes that belong together: luma, and chroma at half its size.
struct PlaneSet {
    CPlane8u y, u, v;

    /// Owned planes for pictures of up to this size.
    void Allocate(int32_t width, int32_t height);
};

/// All drawing and capturing is clipped to the frame; what lies outside it counts as black.
class CPictureTexture {
  public:
    CPictureTexture(int32_t frameWidth, int32_t frameHeight, int32_t thumbWidth, int32_t thumbHeight);

    struct Point {
        int32_t x, y;
    };

    /// Captures the region and starts a flight of `base` * `pace` steps with `rotation` full turns. A null
    /// slot keeps the stored one. kFailure for a pace or base of 0. A region that is empty or larger than the
    /// frame flies unseen.
    ResultCode Start(const PlaneSet& frame, Point origin, const Point* slot, Point regionSize,
                     int32_t rotation, float pace, int32_t base);

    /// One step on; false when the flight is over.
    bool Advance();
    bool InFlight() const { return Step != StepCount; }
    void PlaceSlot(Point slot) { Slot = slot; }

    /// The thumbnail in its slot, once there is one.
    void DrawThumb(PlaneSet& frame) const;
    /// The picture on its way, turned and scaled; on arrival it becomes the thumbnail.
    void DrawMoving(PlaneSet& frame);

  private:
    void Paste(PlaneSet& frame) const;
    void DrawTurned(PlaneSet& frame);
    void KeepThumb(const PlaneSet& frame);

    Point FrameSize;
    Point ThumbSize;
    Point RegionSize{};
    Point Origin{};  ///< corner of the captured region
    Point Slot{};    ///< landing corner
    float ScaleX = 1, ScaleY = 1, Angle = 0;
    float PosX = 0, PosY = 0;
    float VelX = 0, VelY = 0, TurnStep = 0, ScaleStepX = 0, ScaleStepY = 0;
    int32_t Step = 0, StepCount = 0;
    bool Landed = false, HasThumb = false;
    PlaneSet Region;               ///< what was captured
    PlaneSet Scaled;               ///< this frame's resized copy
    std::vector<int32_t> Columns;  ///< where its columns come from
    PlaneSet Thumb;
};

#endif
