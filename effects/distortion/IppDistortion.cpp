#include "effects/distortion/IppDistortion.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "effects/distortion/Gather.h"
#include "effects/distortion/RemapTable.h"
#include "framework/StreamRules.h"
#include "imaging/ReleaseMemory.h"

namespace {

constexpr size_t PixelCount(int32_t width, int32_t height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height);
}

}  // namespace

ResultCode CSpecialEffectFilter_IppDistortion::Configure(StreamDescription* description) {
    return GuardConfigure([&] { return Build(description); });
}

ResultCode CSpecialEffectFilter_IppDistortion::Build(const StreamDescription* description) {
    if (description == nullptr) return kInvalidArgument;
    CSpecialEffectFilter_IppDistortion::Shutdown();
    Stream = *description;
    if (!IsServed(Stream)) return kInvalidArgument;

    const bool planar = Stream.Format == kFormatPlanar;
    const size_t pixels = PixelCount(Stream.Width, Stream.Height);
    const size_t chromaPixels = PixelCount(Stream.Width / 2, Stream.Height / 2);
    // Pixels without a source are never written, so they keep this initial black.
    std::vector<uint8_t> scratch;
    scratch.reserve(planar ? pixels + 2 * chromaPixels : 3 * pixels);
    scratch.resize(planar ? pixels : 3 * pixels);
    GatherMap halfMap;
    if (planar) {
        scratch.resize(pixels + 2 * chromaPixels, 128);
        halfMap = BuildMap(Stream.Width / 2, Stream.Height / 2, 1);
    }
    FullMap = BuildMap(Stream.Width, Stream.Height, planar ? 1 : 3);
    HalfMap = std::move(halfMap);
    Scratch = std::move(scratch);
    return kSuccess;
}

GatherMap CSpecialEffectFilter_IppDistortion::BuildMap(int32_t width, int32_t height, int32_t pixelBytes) {
    OwnedRemapTable owned(width, height);
    const RemapTable table = owned.View();
    BuildRemapTable(table.xMap, table.yMap, width, height);
    return MakeGatherMap(table.NearestIndices(), width, pixelBytes);
}

ResultCode CSpecialEffectFilter_IppDistortion::ProcessFrame(FrameRecord* frame) {
    if (const ResultCode refusal = CheckFrame(frame, Stream); refusal != kSuccess) return refusal;
    if (Scratch.empty()) return kFailure;

    const ImageRecord& image = *frame->Image;
    const int planes = Stream.Format == kFormatPlanar ? 3 : 1;
    if (std::find(image.Plane, image.Plane + planes, nullptr) != image.Plane + planes) {
        return kInvalidArgument;
    }
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
    const auto bend = [&bent](const GatherMap& map, const FramePlane& plane) {
        const size_t pixels = PixelCount(plane.width, plane.height);
        map.Apply(plane.data, bent);
        std::memcpy(plane.data, bent, std::min(pixels, static_cast<size_t>(std::max(plane.size, 0))));
        bent += pixels;
    };
    bend(FullMap, frame.y);
    bend(HalfMap, frame.u);
    bend(HalfMap, frame.v);
}

void CSpecialEffectFilter_IppDistortion::ProcessPacked(uint8_t* pixels) {
    FullMap.Apply(pixels, Scratch.data());
    std::memcpy(pixels, Scratch.data(), Scratch.size());
}

ResultCode CSpecialEffectFilter_IppDistortion::Shutdown() {
    ReleaseMemory(HalfMap, FullMap, Scratch);
    return kSuccess;
}
