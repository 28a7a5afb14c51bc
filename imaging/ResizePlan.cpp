#include "imaging/ResizePlan.h"

#include <algorithm>

#include "imaging/Prim.h"
#include "imaging/ResizeAxis.h"

ResizePlan::ResizePlan() = default;
ResizePlan::ResizePlan(ResizePlan&&) noexcept = default;
ResizePlan& ResizePlan::operator=(ResizePlan&&) noexcept = default;
ResizePlan::~ResizePlan() = default;

ResizePlan::ResizePlan(PlaneSize from, PlaneSize to)
    : ResizePlan(from, {0, 0, from.width, from.height}, to) {}

ResizePlan::ResizePlan(PlaneSize from, PlaneRect part, PlaneSize to)
    : from_(from), to_(to), x_(part.x), y_(part.y) {
    const bool inside = part.x >= 0 && part.y >= 0 && part.x < from.width && part.y < from.height;
    if (!inside || part.width < 1 || part.height < 1 || to.width < 1 || to.height < 1) return;
    const resize::Axis x(std::min(part.width, from.width - part.x),
                         static_cast<double>(to.width) / part.width, to.width);
    const resize::Axis y(std::min(part.height, from.height - part.y),
                         static_cast<double>(to.height) / part.height, to.height);
    if (x.count == 0 || y.count == 0) return;
    plan_ = resize::PlanFor(kPrimLinear, from.width, from.height, x, y);
    Require(plan_ != nullptr);
}

void ResizePlan::Apply(const CPlane8u& src, CPlane8u& dst) {
    const auto hasSize = [](const CPlane8u& plane, PlaneSize size) {
        return !plane.Empty() && plane.width == size.width && plane.height == size.height;
    };
    if (plan_ && hasSize(src, from_) && hasSize(dst, to_)) {
        plan_->Run(src.Row(y_) + x_, src.width, dst.data, dst.width);
    }
}
