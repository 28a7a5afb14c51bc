// Planes as the models of the tone effects use them, and the definitions that two of the models share.
#ifndef SPECIALEFFECTS_TESTS_EFFECTS_TONE_TONEMODELS_H
#define SPECIALEFFECTS_TESTS_EFFECTS_TONE_TONEMODELS_H

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/Plane8u.h"

/// Packed rows of bytes.
struct ModelPlane {
    ModelPlane(int w, int h, uint8_t value = 0)
        : width(w), height(h), pixels(static_cast<size_t>(w * h), value) {}
    ModelPlane(int w, int h, std::span<const uint8_t> bytes)
        : width(w), height(h), pixels(bytes.begin(), bytes.end()) {}

    uint8_t& operator()(int x, int y) { return pixels[static_cast<size_t>(y * width + x)]; }
    uint8_t operator()(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }

    void CopyTo(std::span<uint8_t> bytes) const { std::copy(pixels.begin(), pixels.end(), bytes.begin()); }

    int width, height;
    std::vector<uint8_t> pixels;
};

/// The plain operations on planes, where a model takes one as given.
inline void ModelResize(ModelPlane src, int cut, ModelPlane& dst) {
    const int w = src.width - 2 * cut, h = src.height - 2 * cut;
    if (w < 1 || h < 1 || dst.pixels.empty()) return;
    CPlane8u to = CPlane8u::Over(dst.pixels.data(), dst.width, dst.height);
    to.ResizeRegion(CPlane8u::Over(src.pixels.data(), src.width, src.height), w, h, cut, cut);
}

/// Gaussian of 5 by 5; two pixels at each edge keep what they were.
inline ModelPlane Softened(const ModelPlane& src) {
    constexpr uint32_t kWeights[5][5] = {
        {2, 7, 12, 7, 2}, {7, 31, 52, 31, 7}, {12, 52, 127, 52, 12}, {7, 31, 52, 31, 7}, {2, 7, 12, 7, 2}};
    ModelPlane dst = src;
    for (int y = 2; y < src.height - 2; ++y) {
        for (int x = 2; x < src.width - 2; ++x) {
            uint32_t sum = 0;
            for (int j = 0; j < 5; ++j) {
                for (int i = 0; i < 5; ++i) sum += kWeights[j][i] * src(x + i - 2, y + j - 2);
            }
            dst(x, y) = static_cast<uint8_t>(((sum + 286) * 29382) >> 24);
        }
    }
    return dst;
}

#endif
