// Single colours, the clamp table and the stopwatch.
#include "imaging/ScalarColor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "imaging/ClampTable.h"
#include "imaging/FrameTimer.h"

namespace {

TEST(ScalarColor, KnownColours) {
    struct {
        uint8_t r, g, b, y, u, v;
    } const table[] = {
        {0, 0, 0, 16, 128, 128},  {255, 255, 255, 235, 128, 128}, {255, 0, 0, 81, 90, 239},
        {0, 255, 0, 144, 53, 34}, {0, 0, 255, 40, 239, 109},      {100, 150, 200, 136, 157, 102},
    };
    for (const auto& row : table) {
        EXPECT_EQ(RgbToY(row.r, row.g, row.b), row.y);
        EXPECT_EQ(RgbToU(row.r, row.g, row.b), row.u);
        EXPECT_EQ(RgbToV(row.r, row.g, row.b), row.v);
    }
}

TEST(ScalarColor, TruncatesInTheOrderOfItsTerms) {
    for (int r = 0; r < 256; r += 5) {
        for (int g = 0; g < 256; g += 3) {
            for (int b = 0; b < 256; ++b) {
                const auto byte = [](double v) {
                    return std::clamp(static_cast<int>(std::trunc(v)), 0, 255);
                };
                const auto R = static_cast<uint8_t>(r), G = static_cast<uint8_t>(g),
                           B = static_cast<uint8_t>(b);
                ASSERT_EQ(RgbToY(R, G, B), byte(0.257 * r + 0.504 * g + 0.098 * b + 16));
                ASSERT_EQ(RgbToU(R, G, B), byte(0.439 * b - (0.148 * r + 0.291 * g) + 128));
                ASSERT_EQ(RgbToV(R, G, B), byte(0.439 * r - 0.368 * g - 0.071 * b + 128));
            }
        }
    }
}

TEST(ScalarColor, PackedColoursHaveRedInTheLowByte) {
    constexpr uint32_t color = 0xAA112233;  // the top byte means nothing
    EXPECT_EQ(PackedToY(color), RgbToY(0x33, 0x22, 0x11));
    EXPECT_EQ(PackedToU(color), RgbToU(0x33, 0x22, 0x11));
    EXPECT_EQ(PackedToV(color), RgbToV(0x33, 0x22, 0x11));
}

TEST(ScalarColor, SpriteColourIsOpaque) {
    uint8_t out[4] = {};
    EXPECT_EQ(RgbToYuvColor(out, 1, 2, 3), out);
    EXPECT_EQ(out[0], RgbToY(1, 2, 3));
    EXPECT_EQ(out[1], RgbToU(1, 2, 3));
    EXPECT_EQ(out[2], RgbToV(1, 2, 3));
    EXPECT_EQ(out[3], 255);
}

TEST(ClampTable, SaturatesOverItsWholeReach) {
    const uint8_t* const table = GetClampTable();
    for (int i = -1024; i < 1024; ++i) ASSERT_EQ(table[i], std::clamp(i, 0, 255)) << i;
    EXPECT_EQ(GetClampTable(), table);
}

TEST(FrameTimer, TakesTwoReadings) {
    CFrameTimer timer;
    EXPECT_EQ(timer.started, 0);
    EXPECT_EQ(timer.stopped, 0);
    timer.Start();
    timer.Stop();
    timer.Report();
    EXPECT_GE(timer.stopped, timer.started);
}

}  // namespace
