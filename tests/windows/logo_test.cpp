// Text drawn with GDI, and from the table of glyphs where GDI fails.
#define NOMINMAX
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <vector>

#include "effects/animated/GlyphTable.h"
#include "effects/animated/SystemGlyphs.h"
#include "effects/animated/TextRenderer.h"
#include "tests/support/EffectDriver.h"
#include "tests/support/TestSurroundings.h"

namespace {

/// Pixels of a plane that are darker than half.
int Ink(const CPlane8u& plane, int32_t left, int32_t right) {
    int ink = 0;
    for (int32_t y = 0; y < plane.height; ++y) {
        for (int32_t x = left; x < right; ++x) ink += plane.data[y * plane.width + x] < 128;
    }
    return ink;
}

/// Whether each cell holds what the table has for the character.
bool IsFromTable(const CPlane8u& plane, const std::string& text) {
    for (size_t cell = 0; cell < text.size(); ++cell) {
        for (int32_t i = 0; i < kGlyphWidth * kGlyphHeight; ++i) {
            const auto x = static_cast<int32_t>(cell) * kGlyphWidth + i % kGlyphWidth;
            const int32_t y = i / kGlyphWidth;
            if (plane.data[y * plane.width + x] != 255 - kGlyphs[text[cell] - kFirstGlyph][i]) return false;
        }
    }
    return true;
}

TEST(GdiText, HasInkInEachCell) {
    const std::string text = "+44 logo3.bmp";
    const CPlane8u plane = RenderText(text);
    ASSERT_EQ(plane.width, static_cast<int32_t>(text.size()) * kGlyphWidth);
    ASSERT_EQ(plane.height, kGlyphHeight);
    for (size_t i = 0; i < text.size(); ++i) {
        const auto left = static_cast<int32_t>(i) * kGlyphWidth;
        const int ink = Ink(plane, left, left + kGlyphWidth);
        if (text[i] == ' ') {
            EXPECT_EQ(ink, 0);
        } else {
            EXPECT_GT(ink, 2) << text[i];
            EXPECT_LT(ink, kGlyphWidth * kGlyphHeight / 2) << text[i];
        }
    }
    EXPECT_FALSE(IsFromTable(plane, text));
}

// A minus is ink in the middle rows; an underscore is below it: the rows are upright.
TEST(GdiText, IsUpright) {
    const SystemGlyphs glyphs(kGlyphWidth, kGlyphHeight);
    CPlane8u minus = NewPlane(kGlyphWidth, kGlyphHeight), underscore = NewPlane(kGlyphWidth, kGlyphHeight);
    ASSERT_TRUE(glyphs.Draw('-', minus));
    ASSERT_TRUE(glyphs.Draw('_', underscore));
    const auto lowest = [](const CPlane8u& plane) {
        int32_t row = -1;
        for (int32_t y = 0; y < plane.height; ++y) {
            if (std::any_of(plane.Row(y), plane.Row(y) + plane.width, [](uint8_t p) { return p < 128; }))
                row = y;
        }
        return row;
    };
    EXPECT_GT(lowest(minus), 0);
    EXPECT_GT(lowest(underscore), lowest(minus));
}

TEST(GdiText, LeavesACellOfAnotherSizeAlone) {
    const SystemGlyphs glyphs(kGlyphWidth, kGlyphHeight);
    CPlane8u cell = NewPlane(8, 8);
    cell.Fill(77);
    EXPECT_FALSE(glyphs.Draw('x', cell));
    EXPECT_EQ(std::count(cell.data, cell.data + cell.Size(), 77), 64);
}

TEST(GdiText, ComesFromTheTableWhereGdiFails) {
    std::vector<HGDIOBJ> taken;
    for (HGDIOBJ object = CreateSolidBrush(1); object != nullptr && taken.size() < 1000000;
         object = CreateSolidBrush(static_cast<COLORREF>(taken.size()))) {
        taken.push_back(object);
    }
    const CPlane8u plane = RenderText("+44");
    for (const HGDIOBJ object : taken) DeleteObject(object);
    EXPECT_TRUE(IsFromTable(plane, "+44"));
    EXPECT_FALSE(IsFromTable(RenderText("+44"), "+44"));
}

TEST(GdiText, GivesWayToTheTableForAScope) {
    {
        const TextFromTable scope;
        EXPECT_TRUE(IsFromTable(RenderText("+44"), "+44"));
    }
    EXPECT_FALSE(IsFromTable(RenderText("+44"), "+44"));
}

TEST(GdiText, AppearsInFrames) {
    TestSurroundings surroundings;
    const SurroundingsScope scope(surroundings);
    EffectDriver effect("{65F2B741-B4F0-4B6E-9C6B-3548B3039578}");
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    int changed = 0;
    for (int i = 0; i < 60; ++i) {
        TestFrame frame(320, 240);
        const TestFrame before = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        changed += frame.Checksum() != before.Checksum();
        EXPECT_TRUE(frame.GuardsIntact());
    }
    EXPECT_GT(changed, 30);
}

}  // namespace
