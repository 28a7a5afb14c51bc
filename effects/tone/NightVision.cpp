#include "effects/tone/NightVision.h"

#include "imaging/Prim.h"

void CNightVisionSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    if (!ServesStream()) return;
    for (const FramePlane& plane : {frame.y, frame.u, frame.v}) {
        PrimNot8uC1(plane.data, plane.width, plane.width, plane.height);
    }
}

template struct EffectClass<CNightVisionSpecialEffectFilter>;
