#include "effects/distortion/IppDistortion.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "effects/distortion/Gather.h"
#include "effects/distortion/RemapTable.h"
#include "framework/StreamRules.h"

namespace {

constexpr size_t PixelCount(int32_t width, int32_t height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

}  // namespace

ResultCode CSpecialEffectFilter_IppDistortion::Configure(StreamDescription* description) {
    if (description == nullptr) return kInvalidArgument;
    CSpecialEffectFilter_IppDistortion::Shutdown();
    Stream = *description;
    if (!IsServed(Stream)) return kInvalidArgument;

    const bool planar = Stream.Format == kFormatPlanar;
    const size_t pixels = PixelCount(Stream.Width, Stream.Height);
    const size_t chromaPixels = PixelCount(Stream.Width / 2, Stream.Height / 2);
    // Pixels without a source are never written, so they show forever what stands here at the start: black.
    std::vector<uint8_t> scratch(planar ? pixels : 3 * pixels);
    if (planar) {
        scratch.resize(pixels + 2 * chromaPixels, 128);
        HalfMap = BuildIndices(Stream.Width / 2, Stream.Height / 2);
    }
    FullMap = BuildIndices(Stream.Width, Stream.Height);
    Scratch = std::move(scratch);
    return kSuccess;
}

std::vector<uint32_t> CSpecialEffectFilter_IppDistortion::BuildIndices(int32_t width, int32_t height) {
    const size_t count = PixelCount(width, height);
    std::vector<float> xMap(count), yMap(count);
    BuildRemapTable(xMap.data(), yMap.data(), width, height);
    return RemapTable{xMap.data(), yMap.data(), width, height}.NearestIndices();
}

ResultCode CSpecialEffectFilter_IppDistortion::ProcessFrame(FrameRecord* frame) {
    if (const ResultCode refusal = CheckFrame(frame, Stream); refusal != kSuccess) return refusal;
    if (Scratch.empty()) return kFailure;

    const ImageRecord& image = *frame->Image;
    const int planes = Stream.Format == kFormatPlanar ? 3 : 1;
    if (std::find(image.Plane, image.Plane + planes, nullptr) != image.Plane + planes)
        return kInvalidArgument;
    if (Stream.Format == kFormatPlanar) {
        ProcessPlanar(image);
    } else {
        ProcessPacked(image.Plane[0]);
    }
    return kSuccess;
}

void CSpecialEffectFilter_IppDistortion::ProcessPlanar(const ImageRecord& image) {
    const PlanarFrame frame(image, Stream);
    uint8_t* bent = Scratch.data();
    const auto bend = [&bent](const std::vector<uint32_t>& map, const FramePlane& plane) {
        GatherPixels(map, plane.data, bent);
        std::memcpy(plane.data, bent, std::min(map.size(), static_cast<size_t>(std::max(plane.size, 0))));
        bent += map.size();
    };
    bend(FullMap, frame.y);
    bend(HalfMap, frame.u);
    bend(HalfMap, frame.v);
}

void CSpecialEffectFilter_IppDistortion::ProcessPacked(uint8_t* pixels) {
    uint8_t* bent = Scratch.data();
    for (const uint32_t index : FullMap) {
        if (index != kKeepPixel) std::memcpy(bent, pixels + 3 * size_t{index}, 3);
        bent += 3;
    }
    std::memcpy(pixels, Scratch.data(), Scratch.size());
}

ResultCode CSpecialEffectFilter_IppDistortion::Shutdown() {
    HalfMap = {};
    FullMap = {};
    Scratch = {};
    return kSuccess;
}
