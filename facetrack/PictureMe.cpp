#include "facetrack/PictureMe.h"

#include <algorithm>
#include <limits>
#include <new>

#include "framework/Surroundings.h"
#include "imaging/Files.h"
#include "imaging/ReleaseMemory.h"

using Effect = CPictureMeSpecialEffectFilter;

namespace {

/// A view of a plane whose rows are in reverse order for the length of a scope.
struct UpsideDown {
    UpsideDown(uint8_t* data, int32_t width, int32_t height) : plane(CPlane8u::Over(data, width, height)) {
        plane.Mirror(kPrimMirrorRows);
    }
    ~UpsideDown() { plane.Mirror(kPrimMirrorRows); }
    UpsideDown(const UpsideDown&) = delete;
    UpsideDown& operator=(const UpsideDown&) = delete;

    CPlane8u plane;
};

}  // namespace

/// The result of `operation`; kOutOfMemory, with the workspace released, when memory ran out in it.
template <class Operation>
ResultCode Effect::Report(Operation operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        Shutdown();
        return kOutOfMemory;
    }
}

std::span<const Property<Effect>> Effect::Properties() {
    static constexpr Property<Effect> rows[] = {
        IntegerProperty<&Effect::Speed>("Speed", "5", "1,5")
            .Says("Speed at which a snapshot flies to its place."),
        IntegerProperty<&Effect::RotationSpeed>("Rotation Speed", "1", "1,5")
            .Says("Speed at which a snapshot turns on its way."),
        // The upper bound is what fits the frame, not that of the range text.
        IntegerProperty<&Effect::TexturesNumber>("Textures Number", "3", "1,10")
            .Says("Number of thumbnails; limited to as many as fit the height of the frame.")
            .ClampedTo(1, std::numeric_limits<int32_t>::max())
            .OnSet([](Effect& effect, int32_t count) {
                effect.TexturesNumber = std::max(std::min(count, effect.MaxTextures), 1);
            }),
        IntegerProperty<&Effect::PictureSize>("Picture Size", "32", "10,50")
            .Says("Height of a thumbnail in percent of the frame height; applies from the next snapshot on."),
    };
    return rows;
}

ResultCode Effect::Configure(StreamDescription* description) {
    if (description == nullptr) return kInvalidArgument;
    ReleaseWorkspace();
    Configured = false;
    Stream = *description;
    if (!IsServed(Stream)) return kInvalidArgument;
    if (Stream.Format == kFormatPlanar) {
        DetectorWidth = Stream.Width;
        DetectorHeight = Stream.Height;
        const ResultCode result = GuardConfigure([this] {
            try {
                const std::string cascade = CurrentSurroundings().DataFile(CascadePath);
                if (files::Exists(cascade.c_str())) StartDetector(cascade.c_str());
            } catch (const std::bad_alloc&) {
                ReleaseWorkspace();
                throw;
            }
            return kSuccess;
        });
        if (result != kSuccess) return result;
    }
    Configured = true;
    return kSuccess;
}

void Effect::StartDetector(const char* path) {
    Detector.SetCascadePath(path);
    // Without a cascade it finds no faces, and the regions of the host remain.
    static_cast<void>(Detector.Initialize(DetectorWidth, DetectorHeight));
    Layout(false);
}

ResultCode Effect::LoadSettings(SettingsRecord* settings) {
    if (settings == nullptr) return kFailure;
    return Report([&] {
        ReleaseWorkspace();
        StartDetector(settings->Path);
        return kSuccess;
    });
}

ResultCode Effect::Shutdown() {
    ReleaseWorkspace();
    Configured = false;
    return kSuccess;
}

void Effect::ReleaseWorkspace() {
    ReleaseMemory(Textures);
    CurrentTexture = 0;
    Animating = false;
    Detector.ReleaseCascade();
}

void Effect::Layout(bool keepCount) {
    constexpr int32_t kUsualCount = 3;  // half of what fits where fewer fit
    if (!IsServed(Stream)) return;      // a stream that was refused has no frames to lay anything over
    const int32_t size = AppliedPictureSize * Stream.Height / 100;
    ThumbWidth = ThumbHeight = (size - 2) / 4 * 4;
    MaxTextures = Stream.Height / (ThumbHeight + 1);
    if (!keepCount) TexturesNumber = MaxTextures < kUsualCount ? MaxTextures / 2 : kUsualCount;
    TexturesNumber = std::min(TexturesNumber, MaxTextures);
    SetTextureCount(TexturesNumber);
    CurrentTexture = 0;
    PlaceSlots();
}

/// Appends new textures; removes surplus ones from the front.
void Effect::SetTextureCount(int32_t count) {
    const auto wanted = static_cast<size_t>(std::max(count, 0));
    if (Textures.size() == wanted) return;
    if (Textures.size() > wanted) {
        Textures.erase(Textures.begin(), Textures.end() - static_cast<ptrdiff_t>(wanted));
        CurrentTexture = 0;
    }
    while (Textures.size() < wanted) {
        Textures.push_back(
            std::make_unique<CPictureTexture>(Stream.Width, Stream.Height, ThumbWidth, ThumbHeight));
    }
    TexturesNumber = static_cast<int32_t>(Textures.size());
    PlaceSlots();
}

/// A column from the lower right corner up. A moving picture keeps its target.
void Effect::PlaceSlots() {
    constexpr int32_t kMargin = 2;
    for (size_t i = 0; i < Textures.size(); ++i) {
        if (Textures[i]->InFlight()) continue;
        Textures[i]->PlaceSlot(
            {Stream.Width - ThumbWidth - kMargin,
             Stream.Height - ThumbHeight - kMargin - (ThumbHeight + kMargin) * static_cast<int32_t>(i)});
    }
}

ResultCode Effect::ProcessFrame(FrameRecord* frame) {
    if (frame == nullptr || !IsReadable(frame->Image) || frame->Image->Plane[0] == nullptr) {
        return kInvalidArgument;
    }
    return Report([&] {
        RegionRect rect{};
        if (Configured) rect = TrackFace(frame->Image->Plane[0]);
        RegionRecord region{0, &rect};
        return ProcessRegion(frame, &region);
    });
}

/// Where the tracker sees a face; all zero without one.
RegionRect Effect::TrackFace(uint8_t* plane) {
    // The cascade counts rows from the bottom of the window, so it gets the picture upside down.
    {
        UpsideDown luma(plane, Stream.Width, Stream.Height);
        Detector.TrackFrame(luma.plane);
    }

    const CFaceRect face = Detector.GetFace();
    if (face.width < 1 || face.height < 1) return {};
    return {face.x, face.x + face.width - 1, Stream.Height - face.y - face.height,
            Stream.Height - face.y - 1};
}

/// Makes the rectangle a square with a side that is a multiple of 4, at least 24. At the right and lower
/// edges it moves back by its overhang and shrinks by as much. Returns false for a rectangle far outside any
/// frame.
bool Effect::AdjustRegion(RegionRect& rect) const {
    constexpr int64_t kSmallest = 24;
    const int64_t size = std::max((int64_t{rect.bottom} - rect.top) / 4 * 4, kSmallest);
    const auto adjust = [&](int32_t& begin, int32_t& end, int32_t limit) {
        int64_t first = begin, last = begin + size;
        if (last > limit) {
            first = 2 * first - limit + size;
            last = limit;
        }
        const auto far = int64_t{4} * kLargestSide;
        if (first < -far || first > far) return false;
        begin = static_cast<int32_t>(first);
        end = static_cast<int32_t>(last);
        return true;
    };
    return adjust(rect.left, rect.right, Stream.Width) && adjust(rect.top, rect.bottom, Stream.Height);
}

void Effect::StartPicture(const PlaneSet& frame, RegionRect rect) {
    constexpr int32_t kBase = 30;
    if (AppliedPictureSize != PictureSize) {
        AppliedPictureSize = PictureSize;
        Textures.clear();
        Layout(true);
    }
    SetTextureCount(TexturesNumber);
    if (Textures.empty() || !AdjustRegion(rect)) return;
    const auto pace = static_cast<float>(6 - Speed);
    Animating = Textures[CurrentTexture]->Start(frame, {rect.left, rect.top}, nullptr,
                                                {rect.right - rect.left, rect.bottom - rect.top},
                                                RotationSpeed, pace, kBase) == kSuccess;
}

ResultCode Effect::ProcessRegion(FrameRecord* frame, RegionRecord* region) {
    return Report([&] { return DrawPictures(frame, region); });
}

ResultCode Effect::DrawPictures(FrameRecord* frame, const RegionRecord* region) {
    if (const ResultCode refusal = CheckFrame(frame, Stream); refusal != kSuccess) return refusal;
    if (Stream.Format == kFormatPacked) return kNotImplemented;
    if (Stream.Format != kFormatPlanar) return kInvalidArgument;
    const ImageRecord& image = *frame->Image;
    for (const uint8_t* plane : image.Plane) {
        if (plane == nullptr) return kInvalidArgument;
    }
    if (!Configured) return kFailure;

    const int32_t width = Stream.Width, height = Stream.Height;
    PlaneSet planes{CPlane8u::Over(image.Plane[0], width, height),
                    CPlane8u::Over(image.Plane[1], width / 2, height / 2),
                    CPlane8u::Over(image.Plane[2], width / 2, height / 2)};
    const RegionRect rect = region != nullptr && region->Rect != nullptr ? *region->Rect : RegionRect{};
    if (!Animating && (rect.left != 0 || rect.right != 0 || rect.top != 0 || rect.bottom != 0)) {
        StartPicture(planes, rect);
    }
    for (const auto& texture : Textures) texture->DrawThumb(planes);
    if (!Animating) return kSuccess;

    CPictureTexture& moving = *Textures[CurrentTexture];
    moving.DrawMoving(planes);
    if (moving.Advance()) return kSuccess;
    CurrentTexture = (CurrentTexture + 1) % Textures.size();
    Animating = false;
    return kSuccess;
}

template struct EffectClass<CPictureMeSpecialEffectFilter>;
