#include "effects/tone/Sepia.h"

#include <algorithm>

#include "imaging/Bands.h"
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
    Workspace.resize(PackedBytes(Width(), std::min(Height(), kBandRows)));
    Chroma.Prepare(Width(), Height());
}

void CSepiaSpecialEffectFilter::Release() {
    ReleaseMemory(Workspace, Chroma);
}

ResultCode CSepiaSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    return Chroma.Apply(frame, [this](uint8_t* const planes[3]) {
        const auto width = ptrdiff_t{Width()}, chromaWidth = (width + 1) / 2;
        for (int32_t y = 0; y < Height(); y += kBandRows) {
            const int32_t rows = std::min(kBandRows, Height() - y);
            uint8_t* const band[3] = {planes[0] + y * width, planes[1] + y / 2 * chromaWidth,
                                      planes[2] + y / 2 * chromaWidth};
            PrimYuv420ToRgb(band, Workspace.data(), Width(), rows);
            PrimColorTwist8uC3(Workspace.data(), 3 * Width(), Width(), rows, ColorTwistMatrix);
            PrimRgbToYuv420(Workspace.data(), band, Width(), rows);
        }
    });
}

ResultCode CSepiaSpecialEffectFilter::ProcessPacked(uint8_t* pixels) {
    if (pixels == nullptr) return kInvalidArgument;
    if (!ServesStream()) return kSuccess;
    PrimColorTwist8uC3(pixels, 3 * Width(), Width(), Height(), ColorTwistMatrix);
    return kSuccess;
}

template struct EffectClass<CSepiaSpecialEffectFilter>;
