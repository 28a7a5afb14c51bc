#include <gtest/gtest.h>

#include <cmath>

#include "tests/effects/distortion/remap_model.h"

namespace {

constexpr const char* kGuid = "{DED4BDD4-E2A0-4542-808E-FC9DC4CBCEA6}";

void BulgeTable(float* xMap, float* yMap, int width, int height) {
    IdentityTable(xMap, yMap, width, height);
    const auto put = [&](float* map, int row, int column, float value) {
        if (row < height && column < width) map[row * width + column] = value;
    };
    const int R = static_cast<int>(height * 0.5 * 0.800000011920929);
    const float Rf = static_cast<float>(R);
    const float stepTheta = static_cast<float>(3.140000104904175 / static_cast<double>(Rf));
    const int E = (R * height) / width;
    const float Ef = static_cast<float>(E);
    const double stepPhiX = 1.57 / static_cast<double>(Rf);
    const float stepPhiY = 1.57F / Ef;
    const float amp = static_cast<float>(static_cast<double>(Ef) * 0.1354 + 1.0);
    float rowTheta = 3.14159F, rowPhi = 1.57F;
    for (int y = height / 2; y < height; ++y) {
        float a = static_cast<float>(sin(static_cast<double>(rowPhi)) * static_cast<double>(amp));
        if (static_cast<double>(rowPhi) >= 3.14) a = 0;
        float b = static_cast<float>(sin(static_cast<double>(rowTheta)));
        if (static_cast<double>(rowTheta) >= 6.28) b = 0;
        float colTheta = 3.14F, colPhi = 1.57F;
        for (int x = width / 2; x < width; ++x) {
            float c = static_cast<float>(sin(static_cast<double>(colTheta)) * static_cast<double>(a));
            if (static_cast<double>(colTheta) >= 6.28) c = 0;
            float d = static_cast<float>(sin(static_cast<double>(colPhi)) * static_cast<double>(amp));
            if (static_cast<double>(colPhi) >= 3.14) d = 0;
            const int m = width - x - 1, n = height - y - 1;
            const float e = d * b;
            put(xMap, y, x, static_cast<float>(x) + c);
            put(xMap, height - y, x, static_cast<float>(x) + c);
            put(xMap, y, m, static_cast<float>(m) - c);
            put(xMap, height - y, m, static_cast<float>(m) - c);
            put(yMap, y, x, static_cast<float>(y) + e);
            put(yMap, y, m, static_cast<float>(y) + e);
            put(yMap, height - y, x, static_cast<float>(n) - e);
            put(yMap, height - y, m, static_cast<float>(n) - e);
            colTheta += stepTheta;
            colPhi = static_cast<float>(static_cast<double>(colPhi) + stepPhiX);
        }
        rowTheta += stepTheta;
        rowPhi += stepPhiY;
    }
}

TEST(Bulge, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Bulge");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    EXPECT_EQ(effect.Set("Anything", "1"), kSuccess);
    ExpectContract(effect, {.planarOnly = false, .refusesStreams = false});
}

TEST(Bulge, FillsTheTable) {
    EffectDriver effect(kGuid);
    for (const auto& [w, h] : {std::pair{320, 240},
                               {160, 120},
                               {640, 480},
                               {177, 143},
                               {88, 71},
                               {1280, 720},
                               {720, 1280},
                               {300, 4},
                               {4, 300}}) {
        EXPECT_EQ(TableOf(effect, w, h), MakeTable(BulgeTable, w, h)) << w << " by " << h;
    }
    for (int w = 1; w <= 24; ++w) {
        for (int h = 1; h <= 24; ++h) {
            EXPECT_EQ(TableOf(effect, w, h), MakeTable(BulgeTable, w, h)) << w << " by " << h;
        }
    }
}

TEST(Bulge, HasNoTableForNothing) {
    EffectDriver effect(kGuid);
    for (const auto& [w, h] : {std::pair{0, 0}, {0, 5}, {5, 0}}) TableOf(effect, w, h);
    // Frames with a height below 3 have a radius of 0 and are still processed.
    for (const auto& [w, h] : {std::pair{1, 1}, {9, 2}, {2, 9}, {1, 40}, {40, 1}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame frame = TestFrame(w, h).Randomize(1);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_TRUE(frame.GuardsIntact());
    }
}

TEST(Bulge, MagnifiesTheMiddleAndKeepsTheCorners) {
    EffectDriver effect(kGuid);
    const int w = 320, h = 240;
    const Table table = TableOf(effect, w, h);
    const auto x = [&](int column, int row) { return table.x[static_cast<size_t>(row * w + column)]; };
    const auto y = [&](int column, int row) { return table.y[static_cast<size_t>(row * w + column)]; };
    for (const auto& [column, row] : {std::pair{0, 0}, {w - 1, 0}, {0, h - 1}, {w - 1, h - 1}, {100, 0}}) {
        EXPECT_EQ(x(column, row), static_cast<float>(column));
        EXPECT_EQ(y(column, row), static_cast<float>(row));
    }
    // Radius 96, extent 72, amplitude 10.7488: the largest displacements lie half way out.
    EXPECT_NEAR(x(160 + 48, 120), 208 - 10.7488, 0.01);
    EXPECT_NEAR(y(160, 120 + 48), 168 - 10.7488, 0.01);
    // The mirrored row takes the value of the row above it.
    EXPECT_EQ(x(200, 90), x(200, 150));
    EXPECT_NEAR(y(200, 90) + y(200, 150), 239, 0.001);
}

TEST(Bulge, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectFramesOfTheTable(effect, BulgeTable);
}

}  // namespace
