#include "effects/animated/Clouds.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <utility>

#include "framework/Surroundings.h"
#include "imaging/ExactDivision.h"
#include "imaging/Files.h"
#include "imaging/GradientNoise.h"
#include "imaging/Lookup.h"
#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/ReleaseMemory.h"
#include "imaging/ScalarColor.h"

namespace {

constexpr const char* kFile = "perlin.dat";
constexpr int32_t kPictureWidth = 640, kPictureHeight = 480;

/// The picture at position `t` of the loop, 0 <= t < 1. Cross-fades two stretches of the noise, one of which
/// ends where the other begins, so that the last picture leads into the first.
void DrawPicture(CPlane8u& picture, const GradientNoise& noise, double t) {
    std::array<double, kPictureWidth> ending, beginning;
    for (int32_t y = 0; y < picture.height; ++y) {
        for (int32_t x = 0; x < kPictureWidth; ++x) ending[static_cast<size_t>(x)] = x / 64.0;
        beginning = ending;
        noise.Turbulence(ending, y / 64.0, 2 * t, 2, 2, 7);
        noise.Turbulence(beginning, y / 64.0, 2 * (t - 1), 2, 2, 7);
        uint8_t* const row = picture.Row(y);
        for (size_t x = 0; x < kPictureWidth; ++x) {
            const double value = ((1 - t) * ending[x] + t * beginning[x] + 1.0) * 255.0 * 0.5;
            row[x] = static_cast<uint8_t>(std::clamp(static_cast<int32_t>(value), 0, 255));
        }
    }
}

/// A temporary file; the destructor removes it if it still exists.
struct TemporaryFile {
    const std::string path;
    ~TemporaryFile() { files::Remove(path.c_str()); }
};

/// Writes the file of the pictures completely or not at all. Writes nothing for an empty path.
void WritePictures(const std::string& path, int count) {
    // Draw the noise tables even if the file cannot be written.
    const auto& noise = CurrentSurroundings().Shared<GradientNoise>(Rand);
    if (path.empty()) return;
    CPlane8u picture = NewPlane(kPictureWidth, kPictureHeight);
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    const TemporaryFile temporary{path + "." + std::to_string(now) + ".tmp"};
    files::File file = files::OpenToWrite(temporary.path.c_str());
    if (file == nullptr) return;
    for (int i = 0; i < count; ++i) {
        DrawPicture(picture, noise, static_cast<double>(i) / count);
        files::Write(file, picture.data, picture.Size());
    }
    if (files::CloseWritten(std::move(file))) files::Rename(temporary.path.c_str(), path.c_str());
}

SE_INLINE void BlendPictures(const uint8_t* SE_RESTRICT now, const uint8_t* SE_RESTRICT next, int32_t weight,
                             uint8_t* SE_RESTRICT mask, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        mask[i] = static_cast<uint8_t>(((256 - weight) * now[i] + weight * next[i]) >> 8);
    }
}

/// Blends a flat value into a plane.
SE_INLINE void BlendColor(uint8_t* SE_RESTRICT pixels, const uint8_t* SE_RESTRICT mask, uint8_t value,
                          size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const auto sum = static_cast<uint16_t>((255 - mask[i]) * pixels[i] + mask[i] * value);
        pixels[i] = static_cast<uint8_t>(DivideBy255(sum));
    }
}

}  // namespace

std::span<const Property<CCloudsSpecialEffectFilter>> CCloudsSpecialEffectFilter::Properties() {
    // The initial colour differs from the default text, and the lowest intensity from the range text. Hosts
    // rely on both.
    static constexpr ValueName kTypes[] = {
        {1, "veil", "an even veil"},
        {2, "patches", "patches with clear sky between them"},
        {3, "hanging", "clouds that hang from the upper edge"},
    };
    static constexpr Property<CCloudsSpecialEffectFilter> rows[] = {
        ColorProperty<&CCloudsSpecialEffectFilter::CloudColor>("CloudColor", "0,0,255")
            .Says("Colour of the clouds."),
        IntegerProperty<&CCloudsSpecialEffectFilter::Intensity>("Intensity", "90", "1,100")
            .Says("Opacity of the clouds in percent.")
            .ClampedTo(0, 100),
        IntegerProperty<&CCloudsSpecialEffectFilter::Type>("Type", "1", "1,3")
            .Says("Shape of the clouds.", kTypes),
    };
    return rows;
}

void CCloudsSpecialEffectFilter::Prepare() {
    Surroundings& surroundings = CurrentSurroundings();
    const std::string path = surroundings.DataFile(kFile);
    files::File file = files::OpenToRead(path.c_str());
    // Something else of this name, such as a folder, is left alone.
    if (file == nullptr && (!files::Exists(path.c_str()) || files::RegularFileSize(path.c_str()))) {
        WritePictures(surroundings.NewDataFile(kFile), kPictures);
        file = files::OpenToRead(surroundings.DataFile(kFile).c_str());
    }
    CPlane8u scratch = NewPlane(kPictureWidth, kPictureHeight);
    ResizePlan fit({kPictureWidth, kPictureHeight}, {Width(), Height()});
    for (CPlane8u& picture : NoiseFrames) {
        picture = NewPlane(Width(), Height());
        static_cast<void>(files::Read(file, scratch.data, scratch.Size()));
        fit.Apply(scratch, picture);
    }
    Mask = NewPlane(Width(), Height());
    SmallMask = NewPlane(Width() / 2, Height() / 2);
    Shrink = ResizePlan({Width(), Height()}, {Width() / 2, Height() / 2});
}

void CCloudsSpecialEffectFilter::Release() {
    ReleaseMemory(NoiseFrames, Mask, SmallMask, Shrink);
}

/// At a `weight` of 256 only `next` counts.
void CCloudsSpecialEffectFilter::FillMask(const CPlane8u& now, const CPlane8u& next, int32_t weight) {
    if (Type == 3) {
        // Densest at the upper edge, nothing in the lower two thirds.
        Mask.Fill(0);
        const int32_t third = Mask.height / 3;
        for (int32_t y = 0; y < third; ++y) {
            const int32_t g = 2 * (third - y) / 3;
            std::array<uint8_t, 256> table{};
            for (int32_t i = 0; i < 256; ++i) {
                const int32_t s = i + g;
                table[static_cast<size_t>(i)] =
                    static_cast<uint8_t>(std::clamp(s * s / 150 - y - 100, 0, 255));
            }
            LookupBytes(table.data(), now.Row(y), Mask.Row(y), static_cast<size_t>(Mask.width));
        }
        return;
    }
    if (weight == 0) {
        Mask.CopyPixels(now);
    } else {
        AtLevel<BlendPictures>(now.data, next.data, weight, Mask.data, Mask.Size());
    }
    if (Type == 2) {
        std::array<uint8_t, 256> patches{};
        for (int32_t v = 0; v < 256; ++v) {
            patches[static_cast<size_t>(v)] = static_cast<uint8_t>(std::clamp(v * v / 150 - 50, 0, 255));
        }
        LookupBytes(patches.data(), Mask.data, Mask.Size());
    }
}

void CCloudsSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    auto& loop = CurrentSurroundings().Shared<CloudLoop>();
    const int32_t phase = loop.CloudPhase.exchange(0);
    const uint32_t place = phase == 0 ? ++loop.CloudFrame : loop.CloudFrame.load();
    FillMask(NoiseFrames[place % kPictures], NoiseFrames[(place + 1) % kPictures], phase * 256);
    if (Intensity != 100) {
        const auto scale = static_cast<uint8_t>(std::clamp(Intensity * 255 / 100, 0, 255));
        PrimMulCSfs8uC1(scale, Mask.data, Mask.width, Mask.width, Mask.height, 8);
    }

    uint8_t color[4];
    RgbToYuvColor(color, PackedRed(CloudColor), PackedGreen(CloudColor), PackedBlue(CloudColor));
    AtLevel<BlendColor>(frame.y.data, Mask.data, color[0], Mask.Size());
    Shrink.Apply(Mask, SmallMask);
    AtLevel<BlendColor>(frame.v.data, SmallMask.data, color[2], SmallMask.Size());
    AtLevel<BlendColor>(frame.u.data, SmallMask.data, color[1], SmallMask.Size());
}

template struct EffectClass<CCloudsSpecialEffectFilter>;
