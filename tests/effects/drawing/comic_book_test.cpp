#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

#include "tests/effects/drawing/DrawingModels.h"
#include "tests/imaging/models/ColorModels.h"

namespace {

constexpr const char* kGuid = "{7EA36DF8-6AC3-40AD-A4F3-9B240E651079}";

/// Planes of any size whose chroma is rounded up, as the effect needs it at odd sizes.
struct Planes {
    Planes(int w, int h)
        : width(w),
          height(h),
          y(static_cast<size_t>(w * h)),
          u(static_cast<size_t>((w + 1) / 2 * ((h + 1) / 2))),
          v(u.size()) {}

    int ChromaAt(int column, int row) const { return row / 2 * ((width + 1) / 2) + column / 2; }

    ResultCode Through(EffectDriver& effect) {
        ImageRecord image{
            kFormatPlanar,
            {y.data(), u.data(), v.data()},
            0,
            {static_cast<int32_t>(y.size()), static_cast<int32_t>(u.size()), static_cast<int32_t>(v.size())}};
        FrameRecord frame{{}, &image};
        return effect->ProcessFrame(&frame);
    }

    int width, height;
    std::vector<uint8_t> y, u, v;
};

/// Widens to packed pixels, keeps two levels of each channel, and converts back.
void ComicBookModel(Planes& p) {
    uint8_t* const planes[3] = {p.y.data(), p.u.data(), p.v.data()};
    std::vector<uint8_t> packed(3 * p.y.size());
    model::PrimYuv420ToRgb(planes, packed.data(), p.width, p.height);
    for (uint8_t& channel : packed) channel = channel / 255.0 >= 0.5 ? 255 : 0;
    model::PrimRgbToYuv420(packed.data(), planes, p.width, p.height);
}

TEST(ComicBook, KeepsTheContract) {
    drawing_model::ExpectEffect(kGuid, "Comic Book");
    ExpectNoProperties(kGuid);
}

/// Every luma with every chroma pair of a grid that has both ends and the middle: one 2 by 2 block each.
TEST(ComicBook, EqualsItsModelOnEveryColour) {
    std::vector<int> chroma = {127, 129, 254, 255};
    for (int c = 0; c < 256; c += 4) chroma.push_back(c);
    const int count = static_cast<int>(chroma.size());
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(2 * count, 2 * count), kSuccess);
    for (int luma = 0; luma < 256; luma += 2) {
        Planes planes(2 * count, 2 * count);
        for (int row = 0; row < 2 * count; ++row) {
            for (int x = 0; x < 2 * count; ++x) {
                const auto at = static_cast<size_t>(planes.ChromaAt(x, row));
                planes.y[static_cast<size_t>(row * 2 * count + x)] = static_cast<uint8_t>(luma + x % 2);
                planes.u[at] = static_cast<uint8_t>(chroma[static_cast<size_t>(x / 2)]);
                planes.v[at] = static_cast<uint8_t>(chroma[static_cast<size_t>(row / 2)]);
            }
        }
        Planes expected = planes;
        ComicBookModel(expected);
        ASSERT_EQ(planes.Through(effect), kSuccess);
        ASSERT_EQ(planes.y, expected.y) << luma;
        ASSERT_EQ(planes.u, expected.u) << luma;
        ASSERT_EQ(planes.v, expected.v) << luma;
    }
}

TEST(ComicBook, EqualsItsModelOnScenesOfAnySize) {
    EffectDriver effect(kGuid);
    for (const auto& [w, h] : {std::pair{320, 240},
                               {176, 144},
                               {640, 480},
                               {321, 243},
                               {320, 33},
                               {33, 320},
                               {1, 1},
                               {1, 2},
                               {2, 1},
                               {3, 3}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        for (int i = 0; i < 20; ++i) {
            TestFrame scene(w, h);
            i % 2 == 0 ? scene.DrawScene(i) : scene.Randomize(static_cast<uint64_t>(i));
            TestRandom random(static_cast<uint64_t>(i));
            Planes planes(w, h);
            std::copy(scene.plane(0).begin(), scene.plane(0).end(), planes.y.begin());
            for (auto* plane : {&planes.u, &planes.v}) {
                std::generate(plane->begin(), plane->end(), [&] { return random.Byte(); });
            }
            Planes expected = planes;
            ComicBookModel(expected);
            ASSERT_EQ(planes.Through(effect), kSuccess);
            ASSERT_EQ(planes.y, expected.y) << w << " by " << h << ", frame " << i;
            ASSERT_EQ(planes.u, expected.u) << w << " by " << h << ", frame " << i;
            ASSERT_EQ(planes.v, expected.v) << w << " by " << h << ", frame " << i;
        }
    }
}

TEST(ComicBook, PrintsTheCornersOfTheColourCube) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(64, 64), kSuccess);
    TestFrame frame(64, 64);
    frame.Randomize(1);
    ASSERT_EQ(effect.Process(frame), kSuccess);
    const std::set<uint8_t> lumas(frame.plane(0).begin(), frame.plane(0).end());
    EXPECT_EQ(lumas, (std::set<uint8_t>{0, 29, 76, 105, 149, 178, 225, 255}));
}

TEST(ComicBook, MidGreyTurnsBlackOrWhiteAsAWhole) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(16, 16), kSuccess);
    for (const int grey : {0, 1, 126, 127, 128, 129, 255}) {
        TestFrame frame(16, 16);
        frame.Fill(static_cast<uint8_t>(grey), 128, 128);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame, TestFrame(16, 16).Fill(grey < 128 ? 0 : 255, 128, 128)) << grey;
    }
}

}  // namespace
