#include "bench/Scenes.h"

#include <algorithm>
#include <stdexcept>

#include "imaging/Files.h"
#include "imaging/Plane8u.h"

namespace bench {
namespace {

constexpr int32_t kPictures = 12;

uint32_t NextNoise(uint32_t& state) {
    state = state * 1664525U + 1013904223U;
    return state >> 24;
}

void AddSensorNoise(CPlane8u& luma, uint32_t seed) {
    for (size_t k = 0; k < luma.Size(); ++k) {
        const int32_t value = luma.data[k] + static_cast<int32_t>(NextNoise(seed) >> 5) - 4;
        luma.data[k] = static_cast<uint8_t>(std::clamp(value, 0, 255));
    }
}

/// A disc, a bar and texture that move, with sensor noise.
void DrawShapes(uint8_t* data, int32_t width, int32_t height, int32_t index) {
    CPlane8u luma = CPlane8u::Over(data, width, height);
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* const row = luma.Row(y);
        for (int32_t x = 0; x < width; ++x) {
            const int32_t u = x * 256 / width, v = y * 256 / height, cx = 90 + 6 * index, cy = 128;
            int32_t value = (u + v) / 2;
            if ((u - cx) * (u - cx) + (v - cy) * (v - cy) < 50 * 50) value = 190 + (x / 8 + y / 8) % 2 * 30;
            if (u / 12 == index) value = 25;
            row[x] = static_cast<uint8_t>(value);
        }
    }
    AddSensorNoise(luma, 12345U + static_cast<uint32_t>(index));
}

CPlane8u LoadPortrait() {
    CPlane8u portrait(640, 480);
    const files::File file = files::OpenToRead(SE_SOURCE_DIR "/tests/facetrack/portrait.pgm");
    char header[15];  // "P5", the size and the largest value
    if (!files::Read(file, header, sizeof header) || !files::Read(file, portrait.data, portrait.Size())) {
        throw std::runtime_error("cannot read tests/facetrack/portrait.pgm");
    }
    return portrait;
}

const CPlane8u& Portrait() {
    static const CPlane8u portrait = LoadPortrait();
    return portrait;
}

/// The portrait under a slow pan and zoom; `window` of its 640 columns fill the frame.
void DrawPortrait(uint8_t* data, int32_t width, int32_t height, int32_t index, int32_t window, int32_t left) {
    CPlane8u luma = CPlane8u::Over(data, width, height);
    window += 2 * index;
    luma.ResizeRegion(Portrait(), window, window * height / width, left + 2 * index, 8 + index);
    AddSensorNoise(luma, 1);
}
void DrawFace(uint8_t* luma, int32_t width, int32_t height, int32_t index) {
    DrawPortrait(luma, width, height, index, 520, 20);
}
void DrawCloseFace(uint8_t* luma, int32_t width, int32_t height, int32_t index) {
    DrawPortrait(luma, width, height, index, 370, 90);
}

/// The portrait's face six times, so that the later stages of a cascade have work as well.
void DrawCrowd(uint8_t* data, int32_t width, int32_t height, int32_t index) {
    CPlane8u luma = CPlane8u::Over(data, width, height);
    CPlane8u one(width / 3, height / 2);
    const int32_t window = 200 + 2 * index;
    one.ResizeRegion(Portrait(), window, window * one.height / one.width, 180, 30 + index);
    for (int32_t i = 0; i < 6; ++i) luma.Paste(one, i % 3 * one.width, i / 3 * one.height);
    AddSensorNoise(luma, 1);
}

/// Random squares as large as a pixel at the face detector's finest scale: edges everywhere.
void DrawSquares(uint8_t* data, int32_t width, int32_t height, int32_t index) {
    CPlane8u luma = CPlane8u::Over(data, width, height);
    const int32_t side = std::max(width / 120, 1);
    auto noise = static_cast<uint32_t>(index);
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* const row = luma.Row(y);
        if (y % side != 0) {
            std::copy_n(luma.Row(y - 1), width, row);
            continue;
        }
        for (int32_t x = 0; x < width; ++x) {
            row[x] = x % side == 0 ? static_cast<uint8_t>(NextNoise(noise)) : row[x - 1];
        }
    }
}

constexpr Scene kScenes[] = {{"shapes", "shapes and texture that move, with sensor noise", DrawShapes},
                             {"face", "a portrait under a slow pan and zoom", DrawFace},
                             {"close", "the same from close by", DrawCloseFace},
                             {"crowd", "its face six times", DrawCrowd},
                             {"squares", "edges everywhere and no face", DrawSquares}};

Frame DrawFrame(const Scene& scene, int32_t width, int32_t height, int32_t index) {
    const auto luma = static_cast<size_t>(width) * static_cast<size_t>(height);
    const auto chromaWidth = static_cast<size_t>(width / 2);
    Frame frame(luma + 2 * chromaWidth * static_cast<size_t>(height / 2));
    scene.drawLuma(frame.data(), width, height, index);
    uint32_t noise = static_cast<uint32_t>(index);
    for (size_t k = luma; k < frame.size(); ++k) {
        const size_t x = (k - luma) % chromaWidth;
        frame[k] = static_cast<uint8_t>(112 + x * 32 / chromaWidth + (NextNoise(noise) >> 5));
    }
    return frame;
}

}  // namespace

std::span<const Scene> Scenes() {
    return kScenes;
}

std::vector<Frame> DrawClip(const Scene& scene, int32_t width, int32_t height) {
    std::vector<Frame> clip;
    clip.reserve(2 * kPictures - 2);
    for (int32_t i = 0; i < kPictures; ++i) clip.push_back(DrawFrame(scene, width, height, i));
    for (size_t i = kPictures - 2; i > 0; --i) clip.push_back(clip[i]);
    return clip;
}

}  // namespace bench
