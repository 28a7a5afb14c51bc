#include "effects/animated/Fire.h"

#include <array>

#include "imaging/Lookup.h"
#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"

namespace {

struct FirePalette {
    std::array<uint8_t, 256> Y{}, U{}, V{};
};

consteval uint8_t Truncated(double value) {
    return static_cast<uint8_t>(value <= 0.0 ? 0 : value >= 255.0 ? 255 : static_cast<int>(value));
}

/// White, red, dark violet, blue, white, in studio range.
consteval FirePalette MakePalette() {
    FirePalette palette;
    for (size_t index = 0; index < 256; ++index) {
        const auto i = static_cast<double>(index);
        const double t = (i - 64) / 128, a = i / 64, b = 1 - (i - 192) / 64;
        double red = 255, green = 255 * (1 - i / 128), blue = 255;
        if (index < 64) {
            blue = 255 * (1 - a);
        } else if (index < 192) {
            red = 255 * (1 - t * t);
            blue = 255 * (t * t);
        } else {
            red = 255 * (1 - b * b * b);
        }
        if (index < 128) {
            blue = green > blue ? green : blue;
        } else {
            green = index < 192 ? 0 : 255 * (1 - b * b);
        }
        palette.Y[index] = Truncated(0.257 * red + 0.504 * green + 0.098 * blue + 16 + 0.5);
        palette.U[index] = Truncated(0.439 * blue - (0.291 * green + 0.148 * red) + 128 + 0.5);
        palette.V[index] = Truncated(0.439 * red - 0.368 * green - 0.071 * blue + 128 + 0.5);
    }
    return palette;
}
constexpr FirePalette kPalette = MakePalette();

/// Weight of the blur in 1/1024 by luma: 1024 * (luma / 256)^2, truncated.
constexpr uint32_t BlurWeight(uint32_t luma) {
    return luma * luma >> 6;
}

constexpr uint8_t Mix(uint32_t weight, uint8_t sharp, uint8_t blurred) {
    return static_cast<uint8_t>(((1024 - weight) * sharp + weight * blurred) >> 10);
}

/// Luma to palette index, in place.
SE_INLINE void MixRow(uint8_t* SE_RESTRICT y, const uint8_t* SE_RESTRICT blurred, size_t width) {
    const size_t pairs = width / 2;
    for (size_t i = 0; i < pairs; ++i) {
        const uint8_t left = y[2 * i], right = y[2 * i + 1];
        const uint32_t weight = BlurWeight(left);
        y[2 * i] = Mix(weight, left, blurred[2 * i]);
        y[2 * i + 1] = Mix(weight, right, blurred[2 * i + 1]);
    }
    if (width % 2 != 0) y[width - 1] = Mix(BlurWeight(y[width - 1]), y[width - 1], blurred[width - 1]);
}

}  // namespace

void CFireSpecialEffectFilter::Prepare() {
    Border = 10 * Width() / 640;
    Padded = NewPlane(Width() + 2 * Border, Height() + 2 * Border);
    Blur = BoxFilter(Padded.width, Padded.height, 2 * Border + 1);
    FullU = NewPlane(Width(), Height());
    FullV = NewPlane(Width(), Height());
    Shrink = ResizePlan({Width(), Height()}, {Width() / 2, Height() / 2});
}

void CFireSpecialEffectFilter::Release() {
    ReleaseMemory(Padded, Blur, FullU, FullV, Shrink);
}

void CFireSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    const int32_t width = Width(), height = Height();
    CPlane8u y = CPlane8u::Over(frame.y.data, width, height);
    Padded.CopyWithBorder(y, Border);
    // The filter does nothing on frames no larger than the mask; the unblurred copy then serves as the blur.
    Blur.ApplyInPlace(Padded);

    for (int32_t row = 0; row < height; ++row) {
        AtLevel<MixRow>(y.Row(row), Padded.Row(Border + row) + Border, static_cast<size_t>(width));
    }
    LookupBytes(kPalette.U.data(), y.data, FullU.data, y.Size());
    LookupBytes(kPalette.V.data(), y.data, FullV.data, y.Size());
    LookupBytes(kPalette.Y.data(), y.data, y.Size());

    CPlane8u u = CPlane8u::Over(frame.u.data, frame.u.width, frame.u.height);
    CPlane8u v = CPlane8u::Over(frame.v.data, frame.v.width, frame.v.height);
    Shrink.Apply(FullU, u);
    Shrink.Apply(FullV, v);
}

template struct EffectClass<CFireSpecialEffectFilter>;
