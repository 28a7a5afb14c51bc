#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "tests/effects/distortion/remap_model.h"

namespace {

constexpr const char* kGuid = "{AAD9F53D-60B9-4EDA-92B7-3E0A568DE28A}";

float SphereMap(int x, int y, int width, int height, bool wantY, bool large) {
    const double cx = width * 0.5, cy = height * 0.5;
    const double R = large ? (cx > cy ? cx : cy) : (cx < cy ? cx : cy);
    const double dx = x - cx, dy = y - cy, d = sqrt(dx * dx + dy * dy);
    if (R <= d) return 0;
    if (d == 0) return static_cast<float>(wantY ? cy : cx);
    const double k = (d / sqrt(R * R + R * R) + 1) * 0.5;
    const double f = asin(d / R) * k * (1 / asin(1.0)) * R / d;
    return static_cast<float>(wantY ? f * dy + cy : f * dx + cx);
}

float CurveMap(int type, int x, int y, int width, int height, bool wantY, bool large) {
    const int cx = width / 2, cy = height / 2, dx = x - cx, dy = y - cy;
    const double d = sqrt(static_cast<double>(dx * dx + dy * dy));
    const int R = large ? cx : cy;
    const double g = type == 2 ? cos(d / R) : acos(d / R);
    if (d == 0) return static_cast<float>(wantY ? cy : cx);
    if (!(d < R)) return 0;
    return static_cast<float>(wantY ? g * dy + cy : g * dx + cx);
}

TableMaker FishEyeTable(int type, bool large) {
    return [=](float* xMap, float* yMap, int width, int height) {
        for (int i = 0; i < width * height; ++i) {
            const int x = i % width, y = i / width;
            for (const bool wantY : {false, true}) {
                (wantY ? yMap : xMap)[i] = type == 1 ? SphereMap(x, y, width, height, wantY, large)
                                                     : CurveMap(type, x, y, width, height, wantY, large);
            }
        }
    };
}

void PaintFirstPixel(TestFrame& frame) {
    frame.y()[0] = 0;
    if (frame.format() == kFormatPlanar) frame.u()[0] = frame.v()[0] = 128;
}

TEST(FishEye, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Fish Eye");
    ExpectContract(effect, {.planarOnly = false, .refusesStreams = false, .keepsRefusedFrames = false});
}

TEST(FishEye, HasTwoProperties) {
    EffectDriver effect(kGuid);
    CInternalInfo* const info = effect->GetInternalInfo();
    ASSERT_EQ(info->GetPropCount(), 2);
    char name[32], initial[32], range[32];
    EXPECT_EQ(info->GetPropTypeInfo(0, name, 32, initial, 32, range, 32), PropTypeSet::Boolean);
    EXPECT_EQ(std::string(name) + "|" + initial + "|" + range, "LargeSphere|TRUE|");
    EXPECT_EQ(info->GetPropTypeInfo(1, name, 32, initial, 32, range, 32), PropTypeSet::Integer);
    EXPECT_EQ(std::string(name) + "|" + initial + "|" + range, "EffectType|1|1,3");

    ExpectBooleanProperty(effect, "LargeSphere", false);
    EXPECT_EQ(effect.Get("EffectType"), "1");
    for (const auto& [text, value] :
         {std::pair{"2", "2"}, {"7", "3"}, {"0", "1"}, {"-4", "1"}, {" 3x", "3"}, {"", "1"}, {"x", "1"}}) {
        EXPECT_EQ(effect.Set("effecttype", text), kSuccess);
        EXPECT_EQ(effect.Get("EFFECTTYPE"), value) << text;
    }
    EXPECT_EQ(effect.Set("Sphere", "1"), kInvalidArgument);
    EXPECT_EQ(effect.Get("Sphere"), "?80070057");
}

TEST(FishEye, FillsTheTables) {
    EffectDriver effect(kGuid);
    for (int type = 1; type <= 3; ++type) {
        for (const bool large : {false, true}) {
            effect.Set("LargeSphere", large ? "TRUE" : "FALSE");
            effect.Set("EffectType", std::to_string(type));
            const TableMaker maker = FishEyeTable(type, large);
            for (const auto& [w, h] : {std::pair{320, 240}, {177, 143}, {40, 90}, {64, 64}}) {
                EXPECT_EQ(TableOf(effect, w, h), MakeTable(maker, w, h)) << w << " by " << h;
            }
            for (int w = 1; w <= 12; ++w) {
                for (int h = 1; h <= 12; ++h) {
                    EXPECT_EQ(TableOf(effect, w, h), MakeTable(maker, w, h)) << w << " by " << h;
                }
            }
        }
    }
}

TEST(FishEye, EqualsItsModel) {
    EffectDriver effect(kGuid);
    for (int type = 1; type <= 3; ++type) {
        for (const bool large : {false, true}) {
            const auto set = [&, type = type, large = large] {
                effect.Set("LargeSphere", large ? "TRUE" : "FALSE");
                effect.Set("EffectType", std::to_string(type));
            };
            ExpectFramesOfTheTable(effect, FishEyeTable(type, large), set, PaintFirstPixel);
        }
    }
}

TEST(FishEye, MapsTheCentreToItselfAndTheRimToBlack) {
    EffectDriver effect(kGuid);
    const Table table = TableOf(effect, 320, 240);
    EXPECT_EQ(table.x[120 * 320 + 160], 160.0F);
    EXPECT_EQ(table.y[120 * 320 + 160], 120.0F);
    EXPECT_EQ(table.x[120 * 320 + 40], 0.0F);  // exactly the radius away
    EXPECT_EQ(table.y[120 * 320 + 40], 0.0F);
    EXPECT_GT(table.x[120 * 320 + 41], 40.0F);
    // The arc cosine shows the centre along the rim.
    effect.Set("EffectType", "3");
    const Table inverted = TableOf(effect, 320, 240);
    EXPECT_NEAR(inverted.x[120 * 320 + 41], 160 - std::acos(119 / 120.0) * 119, 0.001);
}

TEST(FishEye, RebuildsAtOnceAndForgetsTheTypeAtConfigure) {
    EffectDriver effect(kGuid);
    const TestFrame scene = TestFrame(96, 64).DrawScene(3);
    const auto expectFrame = [&](int type, bool large) {
        TestFrame frame = scene, expected = scene;
        PaintFirstPixel(expected);
        RemapModel(FishEyeTable(type, large), 96, 64).Process(expected);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, expected), "") << type << large;
    };
    effect.Set("EffectType", "2");  // stored, and builds nothing
    effect.Set("LargeSphere", "true");
    TestFrame untouched = scene;
    EXPECT_EQ(effect.Process(untouched), kFailure);
    EXPECT_EQ(effect.Get("EffectType"), "2");

    ASSERT_EQ(effect.Configure(96, 64), kSuccess);
    expectFrame(1, true);
    effect.Set("EffectType", "7");
    expectFrame(3, true);
    effect.Set("LargeSphere", "no");
    expectFrame(3, false);
    effect.Set("EffectType", "2");
    expectFrame(2, false);
    effect.Set("LargeSphere", "TRUE");
    ASSERT_EQ(effect.Configure(96, 64), kSuccess);
    EXPECT_EQ(effect.Get("EffectType"), "1");
    EXPECT_EQ(effect.Get("LargeSphere"), "TRUE");
    expectFrame(1, true);
}

TEST(FishEye, PaintsTheFirstPixelOfRefusedFramesToo) {
    EffectDriver effect(kGuid);
    TestFrame frame = TestFrame(8, 8).Fill(50, 60, 70);
    EXPECT_EQ(effect.Process(frame), kFailure);
    EXPECT_EQ(frame.y()[0], 0);
    EXPECT_EQ(frame.y()[1], 50);
    EXPECT_EQ(frame.u()[0], 128);
    EXPECT_EQ(frame.u()[1], 60);
    EXPECT_EQ(frame.v()[0], 128);
    EXPECT_EQ(frame.v()[1], 70);

    ASSERT_EQ(effect.Configure(8, 8), kSuccess);
    TestFrame packed = TestFrame(8, 8, kFormatPacked).Fill(50, 0, 0);
    EXPECT_EQ(effect.Process(packed), kFailure);
    EXPECT_EQ(packed.y()[0], 0);
    EXPECT_EQ(packed.y()[1], 50);

    // Not of a planar frame that lacks a plane, nor of another format.
    for (int plane = 0; plane < 3; ++plane) {
        TestFrame lacking = TestFrame(8, 8).Fill(50, 60, 70);
        const TestFrame before = lacking;
        lacking.image().Plane[plane] = nullptr;
        EXPECT_EQ(effect.Process(lacking), kInvalidArgument);
        EXPECT_EQ(FirstDifference(lacking, before), "");
    }
    TestFrame other = TestFrame(8, 8).Fill(50, 60, 70);
    other.image().Format = 1;
    EXPECT_EQ(effect.Process(other), kFailure);
    EXPECT_EQ(other.y()[0], 50);
}

/// The first bytes of a frame's planes after it went through `effect`, which were 50, 60 and 70.
std::string FirstBytes(EffectDriver& effect, int32_t format, const int32_t (&planeSizes)[3]) {
    TestFrame frame = TestFrame(8, 8).Fill(50, 60, 70);
    frame.image().Format = format;
    std::copy_n(planeSizes, 3, frame.image().PlaneSize);
    effect.Process(frame);
    return std::to_string(frame.y()[0]) + " " + std::to_string(frame.u()[0]) + " " +
           std::to_string(frame.v()[0]);
}

TEST(FishEye, PaintsPlanesThatTheFrameOrTheStreamGivesPixels) {
    constexpr int32_t none[] = {0, 0, 0}, all[] = {64, 16, 16}, mixed[] = {-1, 1, 0};
    constexpr int32_t other = 1;
    struct Case {
        int32_t width, height, format;  ///< of the stream
        const char *planarNone, *planarMixed, *packedNone, *packedAll;
    };
    for (const Case& stream : {
             Case{0, 0, kFormatPlanar, "50 60 70", "50 128 70", "50 60 70", "0 60 70"},
             Case{0, 5, kFormatPlanar, "50 60 70", "50 128 70", "50 60 70", "0 60 70"},
             Case{5, -1, kFormatPlanar, "50 60 70", "50 128 70", "50 60 70", "0 60 70"},
             Case{1, 5, kFormatPlanar, "0 60 70", "0 128 70", "50 60 70", "0 60 70"},
             Case{5, 1, kFormatPlanar, "0 60 70", "0 128 70", "50 60 70", "0 60 70"},
             Case{2, 2, kFormatPlanar, "0 128 128", "0 128 128", "50 60 70", "0 60 70"},
             Case{20000, 2, kFormatPlanar, "0 128 128", "0 128 128", "50 60 70", "0 60 70"},
             Case{1, 1, kFormatPacked, "50 60 70", "50 128 70", "0 60 70", "0 60 70"},
             Case{0, 1, kFormatPacked, "50 60 70", "50 128 70", "50 60 70", "0 60 70"},
             Case{8, 8, other, "50 60 70", "50 128 70", "50 60 70", "0 60 70"},
         }) {
        SCOPED_TRACE(testing::Message()
                     << stream.width << " by " << stream.height << ", format " << stream.format);
        EffectDriver effect(kGuid);
        EXPECT_EQ(effect.Configure(stream.width, stream.height, stream.format), kSuccess);
        for (const bool shutDown : {false, true}) {
            if (shutDown) effect->Shutdown();  // the stream stays known
            EXPECT_EQ(FirstBytes(effect, kFormatPlanar, none), stream.planarNone);
            EXPECT_EQ(FirstBytes(effect, kFormatPlanar, mixed), stream.planarMixed);
            EXPECT_EQ(FirstBytes(effect, kFormatPlanar, all), "0 128 128");
            EXPECT_EQ(FirstBytes(effect, kFormatPacked, none), stream.packedNone);
            EXPECT_EQ(FirstBytes(effect, kFormatPacked, all), stream.packedAll);
            EXPECT_EQ(FirstBytes(effect, other, all), "50 60 70");
        }
    }
}

TEST(FishEye, PaintsNothingInEmptyPlanes) {
    for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {0, 0}, {1, 9}, {9, 1}, {1, 1}}) {
        EffectDriver effect(kGuid);
        TestFrame frame(width, height);
        EXPECT_EQ(effect.Process(frame), kFailure);
        EXPECT_TRUE(frame.GuardsIntact());
        ASSERT_EQ(effect.Configure(width, height), kSuccess);
        EXPECT_EQ(effect.Process(frame), width > 0 && height > 0 ? kSuccess : kFailure);
        EXPECT_TRUE(frame.GuardsIntact()) << width << " by " << height;
    }
}

TEST(FishEye, ShowsTheDiscOnBlack) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    TestFrame frame = TestFrame(64, 48).Fill(200, 60, 70);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(frame.y()[63], 0);
    EXPECT_EQ(frame.u()[31], 128);
    EXPECT_EQ(frame.y()[24 * 64 + 32], 200);
    EXPECT_EQ(frame.v()[12 * 32 + 16], 70);
}

}  // namespace
