// X-Ray: a darkened, slightly blurred negative of the luma under one fixed bluish green.
#ifndef SPECIALEFFECTS_EFFECTS_TONE_XRAY_H
#define SPECIALEFFECTS_EFFECTS_TONE_XRAY_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// The blur replicates the picture's edge. The frame states the numbers of bytes to replace, of luma no more
/// than the stream has; luma bytes beyond are only darkened.
class CXRaySpecialEffectFilter final : public PlanarEffect<CXRaySpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "X-Ray";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    CPlane8u Workspace;                ///< the radiograph, until the whole frame has been read
    std::vector<uint16_t> ColumnSums;  ///< a row of sums of three, with one more at either end
};

#endif
