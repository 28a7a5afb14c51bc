#include <gtest/gtest.h>

#include "tests/effects/drawing/DrawingModels.h"
#include "tests/imaging/models/GeometryModels.h"

namespace {

using namespace drawing_model;

constexpr const char* kGuid = "{D0329FE9-2E4F-46ED-BA05-70DB47014CD9}";

uint8_t PaletteEntry(const int (&stops)[3], int i) {
    if (i < 128) {
        const double t = i * 0.0078125;
        return static_cast<uint8_t>(t * stops[1] + (1.0 - t) * stops[0]);
    }
    const double t = (i - 128) / 127.0;
    return static_cast<uint8_t>(t * stops[2] + (1.0 - t) * stops[1]);
}

constexpr int kUStops[3] = {116, 187, 181};
constexpr int kVStops[3] = {165, 132, 35};

void CottonCandyModel(TestFrame& frame) {
    const int w = frame.width(), h = frame.height();
    PlainPlane luma = LumaOf(frame);
    model::EqualizeHistogram(luma.pixels.data(), w * h);

    PlainPlane padded(w + 20, h + 20);
    for (int y = 0; y < h + 20; ++y) {
        for (int x = 0; x < w + 20; ++x) {
            padded(x, y) = luma(std::clamp(x - 10, 0, w - 1), std::clamp(y - 10, 0, h - 1));
        }
    }
    PlainBox(padded, 20);
    PlainPlane blurred(w, h);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) blurred(x, y) = padded(x + 10, y + 10);
    }
    for (size_t i = 0; i < luma.pixels.size(); ++i) {
        const int b = blurred.pixels[i];
        luma.pixels[i] = static_cast<uint8_t>(255 - (((255 - b / 4 - b / 2) * luma.pixels[i]) >> 8));
    }
    luma.WriteTo(frame.plane(0));

    PlainPlane half(w / 2, h / 2);
    PlainResize(blurred, half);
    for (size_t i = 0; i < half.pixels.size(); ++i) {
        frame.u()[i] = PaletteEntry(kUStops, half.pixels[i]);
        frame.v()[i] = PaletteEntry(kVStops, half.pixels[i]);
    }
}

TEST(CottonCandy, KeepsTheContract) {
    ExpectEffect(kGuid, "Cotton Candy");
    ExpectNoProperties(kGuid);
}

TEST(CottonCandy, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, EveryFrame(CottonCandyModel));
}

/// A frame no larger than the blur is not blurred: the luma lights itself.
TEST(CottonCandy, EqualsItsModelOnTinyFrames) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, EveryFrame(CottonCandyModel),
                      {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 5}, {20, 40}, {40, 20}, {21, 21}, {22, 64}});
}

TEST(CottonCandy, AUniformFrameIsFlatAndOfTheHighStop) {
    ExpectUniformFramesBecome(kGuid, 191, 181, 35);
}

/// Detail that the blur removes shows in the luma and not in the chroma.
TEST(CottonCandy, ColoursFollowTheBlur) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(96, 96), kSuccess);
    TestFrame frame(96, 96);
    for (int i = 0; i < 96 * 96; ++i) frame.y()[i] = (i % 96 + i / 96) % 2 == 0 ? 40 : 220;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    const PlainPlane u = ChromaOf(frame, 1);
    const auto [lowest, highest] = std::minmax_element(u.pixels.begin(), u.pixels.end());
    EXPECT_LE(*highest - *lowest, 1);
    EXPECT_GT(std::abs(frame.y()[48 * 96 + 48] - frame.y()[48 * 96 + 49]), 30);
}

}  // namespace
