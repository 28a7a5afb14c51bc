// Linear scaling with everything prepared, for planes of sizes that stay.
#ifndef SPECIALEFFECTS_IMAGING_RESIZEPLAN_H
#define SPECIALEFFECTS_IMAGING_RESIZEPLAN_H

#include <cstdint>
#include <memory>

#include "imaging/Plane8u.h"

namespace resize {
class Plan;
}

struct PlaneSize {
    int32_t width, height;
};

struct PlaneRect {
    int32_t x, y, width, height;
};

/// Does what `ResizePlane` and `CPlane8u::ResizeRegion` do, without taking memory for each plane. A plan is
/// for one plane at a time; it can be moved.
class ResizePlan {
  public:
    /// Scales nothing.
    ResizePlan();
    /// From all of a plane to all of another one. Scales nothing when a size is below 1. Throws
    /// std::bad_alloc when the allocation fails.
    ResizePlan(PlaneSize from, PlaneSize to);
    /// From a rectangle of a plane, cut to it; nothing for one that is empty or starts outside.
    ResizePlan(PlaneSize from, PlaneRect part, PlaneSize to);
    ResizePlan(ResizePlan&&) noexcept;
    ResizePlan& operator=(ResizePlan&&) noexcept;
    ~ResizePlan();

    /// Planes of other sizes than the plan's are left alone.
    void Apply(const CPlane8u& src, CPlane8u& dst);

  private:
    PlaneSize from_{}, to_{};
    int32_t x_ = 0, y_ = 0;
    std::unique_ptr<resize::Plan> plan_;
};

#endif
