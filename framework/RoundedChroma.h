// Chroma planes of (width + 1) / 2 by (height + 1) / 2 samples, as conversions from and to packed pixels need
// them, for frames whose planes are width / 2 by height / 2.
#ifndef SPECIALEFFECTS_FRAMEWORK_ROUNDEDCHROMA_H
#define SPECIALEFFECTS_FRAMEWORK_ROUNDEDCHROMA_H

#include <cstdint>
#include <vector>

#include "framework/StreamRules.h"

/// At even sizes both are the same, and this only passes the frame's planes on. At odd sizes `PlaneSize`
/// decides for each plane:
///
///   at least the rounded-up size              rounded up
///   0 or less, and width / 2 by height / 2    rounded up: a size of 0 means unknown, and the planes
///     are assumed large enough
///   at least width / 2 by height / 2          rounded down
///   less                                      the frame is refused
///
/// A plane that is rounded down is used through a copy in which its last column and its last row are
/// repeated, or which is 128 when the plane has no pixel. Only the plane's own pixels are written back.
class RoundedChroma {
  public:
    /// Makes the copies, at odd sizes.
    void Prepare(int32_t width, int32_t height);

    /// Calls `convert(planes)`, which works in place on Y, U and V planes of which the chroma is rounded up.
    /// kInvalidArgument, without the call, for a frame that is refused.
    template <class Convert>
    ResultCode Apply(const PlanarFrame& frame, Convert convert) {
        if (!IsLargeEnough(frame, frame.u) || !IsLargeEnough(frame, frame.v)) return kInvalidArgument;
        uint8_t* const planes[3] = {frame.y.data, RoundUp(frame, frame.u, u_), RoundUp(frame, frame.v, v_)};
        convert(planes);
        RoundDown(frame, planes[1], frame.u);
        RoundDown(frame, planes[2], frame.v);
        return kSuccess;
    }

  private:
    static bool IsLargeEnough(const PlanarFrame& frame, const FramePlane& chroma);
    static uint8_t* RoundUp(const PlanarFrame& frame, const FramePlane& chroma, std::vector<uint8_t>& copy);
    static void RoundDown(const PlanarFrame& frame, const uint8_t* rounded, const FramePlane& chroma);

    std::vector<uint8_t> u_, v_;
};

#endif
