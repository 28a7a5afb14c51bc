#include <gtest/gtest.h>

#include <set>

#include "effects/drawing/Chalk.h"
#include "tests/effects/drawing/DrawingModels.h"

namespace {

using namespace drawing_model;

constexpr const char* kPlain = "{DD6B365B-A6CD-4473-80D8-20F7A662B981}";
constexpr const char* kInked = "{C043B0F7-A2E1-40F3-AAC7-2019FB2571C3}";
constexpr const char* kOutline = "{C1A1DEF8-8962-45EF-B416-4C51F4DED591}";

int Tone(int luma) {
    const int tones[8] = {15, 47, 95, 127, 174, 206, 238, 255};
    return tones[luma / 32];
}

void TonesModel(TestFrame& frame, bool drawEdges) {
    PlainPlane luma = LumaOf(frame);
    PlainPlane scratch = luma;
    Gauss5(scratch, luma);
    PlainPlane edgeSource = luma;
    Median5(luma, scratch);
    Median5(scratch, luma);
    for (uint8_t& pixel : luma.pixels) pixel = static_cast<uint8_t>(Tone(pixel));
    if (drawEdges) {
        PlainBox(edgeSource, 3);
        const std::vector<int> strengths = EdgeStrengths(edgeSource);
        for (size_t i = 0; i < strengths.size(); ++i) {
            if (strengths[i] > 60) luma.pixels[i] = 10;
        }
    }
    luma.WriteTo(frame.plane(0));
    for (const int index : {1, 2}) {
        PlainPlane chroma = ChromaOf(frame, index);
        const PlainPlane sharp = chroma;
        PlainGauss3(sharp, chroma);
        chroma.WriteTo(frame.plane(index));
    }
}

void OutlineModel(TestFrame& frame) {
    PlainPlane luma = LumaOf(frame);
    PlainBox(luma, 3);
    const std::vector<int> strengths = EdgeStrengths(luma);
    for (size_t i = 0; i < strengths.size(); ++i) {
        const int g = strengths[i];
        luma.pixels[i] = static_cast<uint8_t>(g > 90 ? 20 : g > 60 ? 110 - g : 221);
    }
    PlainBox(luma, 3);
    frame.Fill(0, 128, 128);
    luma.WriteTo(frame.plane(0));
}

const std::vector<std::pair<int, int>> kTinySizes = {{1, 1}, {2, 9}, {4, 4}, {5, 5},   {6, 7},
                                                     {9, 9}, {7, 6}, {6, 6}, {11, 30}, {64, 5}};

TEST(Chalk, KeepsTheContract) {
    for (const char* guid : {kPlain, kInked, kOutline}) ExpectEffect(guid, "Chalk");
}

TEST(Chalk, HasOneProperty) {
    for (const auto& [guid, initial] : {std::pair{kPlain, false}, {kInked, true}, {kOutline, false}}) {
        ExpectOnlyProperty(guid, PropTypeSet::Boolean, "DrawEdges", "TRUE");
        EffectDriver effect(guid);
        ExpectBooleanProperty(effect, "DrawEdges", initial);
        EXPECT_EQ(effect.Set("DRAWEDGES", "true"), kSuccess);
        EXPECT_EQ(effect.Get("drawedges"), "TRUE");
    }
}

TEST(Chalk, EqualsItsModel) {
    EffectDriver plain(kPlain), inked(kInked), outline(kOutline);
    ExpectEqualsModel(plain, EveryFrame([](TestFrame& frame) { TonesModel(frame, false); }), {{176, 144}});
    ExpectEqualsModel(inked, EveryFrame([](TestFrame& frame) { TonesModel(frame, true); }));
    ExpectEqualsModel(outline, EveryFrame(OutlineModel));
}

TEST(Chalk, EqualsItsModelOnTinyFrames) {
    EffectDriver inked(kInked), outline(kOutline);
    ExpectEqualsModel(inked, EveryFrame([](TestFrame& frame) { TonesModel(frame, true); }), kTinySizes);
    ExpectEqualsModel(outline, EveryFrame(OutlineModel), kTinySizes);
}

TEST(Chalk, AnyOtherVariantIsTheFirst) {
    for (const int variant : {0, 4, -1}) {
        EffectDriver effect = EffectDriver::Of<CChalkSpecialEffectFilter>(variant);
        EXPECT_EQ(effect.Get("DrawEdges"), "FALSE");
        ExpectEqualsModel(effect, EveryFrame([](TestFrame& frame) { TonesModel(frame, false); }), {{64, 48}});
    }
}

/// The property, whenever it is set, turns either of the two tone variants into the other one; it does not
/// affect the outline.
TEST(Chalk, TheFirstTwoVariantsDifferInThePropertyAlone) {
    EffectDriver plain(kPlain), inked(kInked), outline(kOutline), outlineSet(kOutline);
    for (EffectDriver* effect : {&plain, &inked, &outline, &outlineSet}) effect->Configure(96, 80);
    outlineSet.Set("DrawEdges", "TRUE");
    for (int i = 0; i < 4; ++i) {
        plain.Set("DrawEdges", i % 2 == 0 ? "TRUE" : "FALSE");
        inked.Set("DrawEdges", i < 2 ? "TRUE" : "FALSE");
        TestFrame scene(96, 80);
        scene.DrawScene(i);
        TestFrame expected = scene, a = scene, b = scene, c = scene, d = scene;
        TonesModel(expected, i % 2 == 0);
        plain.Process(a);
        EXPECT_EQ(a, expected);
        expected = scene;
        TonesModel(expected, i < 2);
        inked.Process(b);
        EXPECT_EQ(b, expected);
        outline.Process(c);
        outlineSet.Process(d);
        EXPECT_EQ(c, d);
    }
}

/// A flat frame takes its tone everywhere, also in the two pixels that no filter reaches.
TEST(Chalk, HasOneToneForThirtyTwoLumas) {
    EffectDriver effect(kPlain);
    ASSERT_EQ(effect.Configure(32, 16), kSuccess);
    for (int luma = 0; luma < 256; ++luma) {
        TestFrame frame(32, 16);
        frame.Fill(static_cast<uint8_t>(luma), 100, 200);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame, TestFrame(32, 16).Fill(static_cast<uint8_t>(Tone(luma)), 100, 200)) << luma;
    }
}

TEST(Chalk, LeavesTheFrameOfThePictureUnfiltered) {
    EffectDriver effect(kPlain);
    ASSERT_EQ(effect.Configure(33, 21), kSuccess);
    TestFrame frame(33, 21);
    frame.Randomize(6);
    const TestFrame before = frame;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    for (int y = 0; y < 21; ++y) {
        for (int x = 0; x < 33; ++x) {
            if (x >= 2 && y >= 2 && x < 31 && y < 19) continue;
            const auto at = static_cast<size_t>(y * 33 + x);
            EXPECT_EQ(frame.plane(0)[at], Tone(before.plane(0)[at])) << x << ", " << y;
        }
    }
}

/// A gentle ramp falls into bands of one tone each. Its slope is no edge, and neither are the steps between
/// the bands: edges belong to the picture before it was reduced.
TEST(Chalk, InksNoStepsBetweenTones) {
    EffectDriver effect(kInked);
    ASSERT_EQ(effect.Configure(128, 32), kSuccess);
    TestFrame frame(128, 32);
    for (int i = 0; i < 128 * 32; ++i) frame.y()[i] = static_cast<uint8_t>(2 * (i % 128));
    ASSERT_EQ(effect.Process(frame), kSuccess);
    const std::set<uint8_t> tones(frame.plane(0).begin(), frame.plane(0).end());
    EXPECT_EQ(tones, (std::set<uint8_t>{15, 47, 95, 127, 174, 206, 238, 255}));
}

/// On a frame too small for the box means the edges stay as they were found. A pixel of level a on black
/// makes an edge of strength 2 * a at its diagonal neighbours; no edge is ever of odd strength.
TEST(Chalk, RampsTheOutline) {
    EffectDriver effect(kOutline);
    ASSERT_EQ(effect.Configure(5, 5), kSuccess);
    for (const auto& [strength, line] : {std::pair{0, 221},
                                         {58, 221},
                                         {60, 221},
                                         {62, 48},
                                         {64, 46},
                                         {88, 22},
                                         {90, 20},
                                         {92, 20},
                                         {510, 20}}) {
        TestFrame frame(5, 5);
        frame.y()[3 * 5 + 3] = static_cast<uint8_t>(strength / 2);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame.y()[2 * 5 + 2], line) << strength;
        EXPECT_EQ(frame.y()[0], 221) << "the outermost pixels have no edge";
    }
}

/// The board around the picture is not touched by the second mean either.
TEST(Chalk, OutlinesNothingAtTheBorder) {
    EffectDriver effect(kOutline);
    ASSERT_EQ(effect.Configure(33, 21), kSuccess);
    TestFrame frame(33, 21);
    frame.Randomize(6);
    ASSERT_EQ(effect.Process(frame), kSuccess);
    for (int y = 0; y < 21; ++y) {
        for (int x = 0; x < 33; ++x) {
            const bool border = x == 0 || y == 0 || x == 32 || y == 20;
            EXPECT_TRUE(!border || frame.y()[y * 33 + x] == 221) << x << ", " << y;
        }
    }
}

}  // namespace
