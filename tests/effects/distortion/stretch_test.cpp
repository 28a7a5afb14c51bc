#include <gtest/gtest.h>

#include <cmath>

#include "tests/effects/distortion/remap_model.h"

namespace {

constexpr const char* kGuid = "{48D2B4EE-5668-418C-8CB2-E624F4CBCDBA}";

void StretchTable(float* xMap, float* yMap, int width, int height) {
    IdentityTable(xMap, yMap, width, height);
    const auto put = [&](float* map, int row, int column, float value) {
        if (row < height && column < width) map[row * width + column] = value;
    };
    const double ampX = 25.0 * width / 320.0;
    const double stepX = 3.140000104904175 / (width * 0.44999998807907104);
    for (int y = 0; y < height; ++y) {
        float offset = 0, angle = 3.14159F;
        for (int x = width / 2; x < width; ++x) {
            if (static_cast<double>(angle) > 6.28) break;
            put(xMap, y, x, static_cast<float>(x) + offset);
            put(xMap, y, width - x, static_cast<float>(width - x) - offset);
            offset = static_cast<float>(sin(static_cast<double>(angle)) * ampX);
            angle = static_cast<float>(static_cast<double>(angle) + stepX);
        }
    }
    const double ampY = height * 25.0 / 240.0;
    const double stepY = 3.140000104904175 / (0.44999998807907104 * height);
    float angle = 3.14159F;
    for (int y = height / 2; y < height; ++y) {
        const double s = sin(static_cast<double>(angle));
        angle = static_cast<float>(static_cast<double>(angle) + stepY);
        if (static_cast<double>(angle) > 6.28) break;
        const float e = static_cast<float>(s * ampY);
        for (int x = 0; x < width; ++x) {
            put(yMap, y, x, static_cast<float>(y) + e);
            put(yMap, height - y, x, static_cast<float>(height - y) - e);
        }
    }
}

TEST(Stretch, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Blockhead");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    ExpectContract(effect, {.planarOnly = false, .refusesStreams = false});
}

TEST(Stretch, FillsTheTable) {
    EffectDriver effect(kGuid);
    for (const auto& [w, h] : {std::pair{320, 240}, {160, 120}, {641, 483}, {1280, 720}, {720, 1280}}) {
        EXPECT_EQ(TableOf(effect, w, h), MakeTable(StretchTable, w, h)) << w << " by " << h;
    }
    for (int w = 1; w <= 24; ++w) {
        for (int h = 1; h <= 24; ++h) {
            EXPECT_EQ(TableOf(effect, w, h), MakeTable(StretchTable, w, h)) << w << " by " << h;
        }
    }
    for (const auto& [w, h] : {std::pair{0, 0}, {0, 5}, {5, 0}}) TableOf(effect, w, h);
}

TEST(Stretch, SqueezesTowardsTheMiddle) {
    EffectDriver effect(kGuid);
    const int w = 320, h = 240;
    const Table table = TableOf(effect, w, h);
    const auto x = [&](int column) { return table.x[static_cast<size_t>(100 * w + column)]; };
    const auto y = [&](int row) { return table.y[static_cast<size_t>(row * w + 100)]; };
    EXPECT_EQ(x(160), 160.0F);
    EXPECT_EQ(x(0), 0.0F);
    EXPECT_EQ(y(0), 0.0F);
    EXPECT_NEAR(x(160 + 73), 233 - 25, 0.01);  // 25 pixels at the crest
    EXPECT_NEAR(x(160 - 73), 87 + 25, 0.01);
    EXPECT_NEAR(y(120 + 54), 174 - 25, 0.01);
    EXPECT_LT(x(160 + 143), 303.0F);  // the wave ends 144 columns from the centre
    EXPECT_EQ(x(160 + 146), 306.0F);
    EXPECT_EQ(x(319), 319.0F);
    EXPECT_EQ(y(239), 239.0F);
    // Columns do not depend on the row, nor rows on the column.
    EXPECT_EQ(x(77), table.x[77]);
    EXPECT_EQ(y(77), table.y[77 * w]);
}

TEST(Stretch, KeepsChromaAligned) {
    EffectDriver effect(kGuid);
    const Table full = TableOf(effect, 320, 240), half = TableOf(effect, 160, 120);
    for (size_t x = 0; x < 160; ++x) EXPECT_NEAR(half.x[x], full.x[2 * x] / 2, 0.3);
}

TEST(Stretch, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectFramesOfTheTable(effect, StretchTable);
}

}  // namespace
