#include "effects/tone/Sepia.h"

#include "imaging/Prim.h"
#include "imaging/ReleaseMemory.h"

namespace {

/// Rows give the first, second and third channel of the output. The offset of the third is intentional: black
/// becomes one level of blue.
constexpr float ColorTwistMatrix[12] = {
    0.393F, 0.769F, 0.189F, 0.0F,  //
    0.349F, 0.686F, 0.168F, 0.0F,  //
    0.272F, 0.534F, 0.131F, 1.0F,  //
};

}  // namespace

void CSepiaSpecialEffectFilter::Prepare() {
    Workspace.resize(PackedBytes(Width(), Height()));
    Chroma.Prepare(Width(), Height());
}

void CSepiaSpecialEffectFilter::Release() {
    ReleaseMemory(Workspace, Chroma);
}

ResultCode CSepiaSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    return Chroma.Apply(frame, [this](uint8_t* const planes[3]) {
        PrimYuv420ToRgb(planes, Workspace.data(), Width(), Height());
        PrimColorTwist8uC3(Workspace.data(), 3 * Width(), Width(), Height(), ColorTwistMatrix);
        PrimRgbToYuv420(Workspace.data(), planes, Width(), Height());
    });
}

ResultCode CSepiaSpecialEffectFilter::ProcessPacked(uint8_t* pixels) {
    if (pixels == nullptr) return kInvalidArgument;
    if (!ServesStream()) return kSuccess;
    PrimColorTwist8uC3(pixels, 3 * Width(), Width(), Height(), ColorTwistMatrix);
    return kSuccess;
}

template struct EffectClass<CSepiaSpecialEffectFilter>;
