#include <gtest/gtest.h>

#include "effects/drawing/GraphicPen.h"
#include "tests/effects/drawing/TonePageModel.h"

namespace {

using namespace drawing_model;

constexpr const char* kGuids[5] = {
    "", "{ABC27FCB-B469-428E-9A2F-C2117AD7148E}", "{FB5FBC24-8123-4E32-BBA1-3E77B228A727}",
    "{333FBC24-1123-4E32-BBA1-3E77B228A727}", "{1FA2E948-426B-4BDE-A400-2EB1FEBF9522}"};

struct PenPage {
    int level, target, ink, reach;
};

int DrawStroke(PlainPlane& page, int px, int py, int length, int ink) {
    int hits = 0;
    for (int n = 0; n < std::abs(length); ++n) {
        const int x = length < 0 ? px - n : px + n, y = length < 0 ? py + n : py - n;
        if (!Inside(page, x, y)) break;
        const bool paper = page(x, y) == 255;
        if (paper) ++hits;
        if (paper || length > 0) page(x, y) = static_cast<uint8_t>(ink);
    }
    return hits;
}

void DrawPage(PlainPlane& page, int level) {
    static constexpr PenPage kPages[] = {{204, 255, 84, 5},  {179, 255, 76, 6},  {153, 229, 68, 7},
                                         {128, 192, 60, 18}, {102, 153, 52, 20}, {76, 114, 43, 23},
                                         {51, 76, 36, 25},   {25, 37, 27, 28}};
    const PenPage& row = *std::find_if(std::begin(kPages), std::end(kPages),
                                       [&](const PenPage& candidate) { return candidate.level == level; });
    int64_t sum = SumOf(page);
    auto paper = std::count(page.pixels.begin(), page.pixels.end(), 255);
    while (sum > int64_t{row.target} * page.width * page.height && paper > 0) {
        const int px = std::rand() % page.width;
        const int py = std::rand() % page.height;
        const int length = std::rand() % (2 * row.reach + 1) - row.reach;
        const int drawn = DrawStroke(page, px, py, length, row.ink);
        sum -= drawn * (row.ink + 255);
        paper -= drawn;
    }
    for (int y = 0; y < page.height; ++y) {
        for (int x = 1; x < page.width - 1; ++x) {
            const bool clear = page(x - 1, y) != 255 && page(x, y) != 255;
            if (level >= 101 && clear) page(x, y) = 255;
            if (level >= 61 && level <= 100 && clear && page(x + 1, y) != 255) page(x, y) = 255;
        }
    }
}

class PenModel {
  public:
    PenModel(int variant, bool colored, int width, int height)
        : variant_(variant), colored_(colored), pages_(width, height, DrawPage) {}

    void operator()(TestFrame& frame) {
        PlainPlane luma = LumaOf(frame);
        const auto width = static_cast<size_t>(luma.width), count = luma.pixels.size();
        ++frames_;
        if (!colored_) {
            for (const int index : {1, 2}) {
                std::fill(frame.plane(index).begin(), frame.plane(index).end(), 128);
            }
        }
        if (variant_ == 4 && frames_ % 2 == 0) {
            offset_ = (static_cast<size_t>(std::rand()) % 200 + offset_) % width;
        }
        const std::vector<int> strengths = EdgeStrengths(luma);
        for (size_t i = 0; i < count; ++i) {
            const size_t j = variant_ == 4 ? (i + offset_ * (width - 1) + count) % count : i;
            const bool flat = variant_ == 4 ? strengths[i] <= 40 : variant_ > 1 && strengths[i] < 40;
            uint8_t& y = luma.pixels[i];
            y = pages_(flat ? Lifted(y) : y, j);
        }
        if (variant_ == 3) SoftenDrawing(luma);
        luma.WriteTo(frame.plane(0));
    }

  private:
    int variant_;
    bool colored_;
    TonePageModel pages_;
    size_t offset_ = 0;
    int frames_ = 0;
};

auto ModelOf(int variant, bool colored = true) {
    return [=](int w, int h) { return PenModel(variant, colored, w, h); };
}

TEST(GraphicPen, KeepsTheContract) {
    for (const int variant : {1, 2, 3, 4}) ExpectEffect(kGuids[variant], "Graphic Pen");
}

TEST(GraphicPen, HasOneProperty) {
    ExpectOnlyProperty(kGuids[1], PropTypeSet::Boolean, "Colored", "TRUE");
    EffectDriver effect(kGuids[1]);
    ExpectBooleanProperty(effect, "Colored", true);
    EXPECT_EQ(effect.Set("COLORED", "false"), kSuccess);
    EXPECT_EQ(effect.Get("colored"), "FALSE");
    ASSERT_EQ(effect.Configure(16, 16), kSuccess);
    EXPECT_EQ(effect.Get("Colored"), "FALSE") << "properties outlive Configure";
}

TEST(GraphicPen, EqualsItsModel) {
    for (const int variant : {1, 2, 3, 4}) {
        EffectDriver effect(kGuids[variant]);
        ExpectEqualsModel(effect, ModelOf(variant));
    }
}

TEST(GraphicPen, EqualsItsModelOnTinyFramesWithoutColour) {
    for (const int variant : {1, 2, 3, 4}) {
        EffectDriver effect(kGuids[variant]);
        effect.Set("Colored", "FALSE");
        ExpectEqualsModel(
            effect, ModelOf(variant, false),
            {{1, 1}, {1, 40}, {40, 1}, {2, 2}, {2, 9}, {3, 3}, {4, 5}, {5, 3}, {64, 2}, {127, 3}, {129, 5}});
    }
}

TEST(GraphicPen, AnyOtherVariantIsTheFirst) {
    for (const int variant : {0, 5, -1}) {
        EffectDriver effect = EffectDriver::Of<CGraphicPenSpecialEffectFilter>(variant);
        ExpectEqualsModel(effect, ModelOf(1), {{64, 48}});
    }
}

TEST(GraphicPen, TakesTheColourAwayAndGivesItBack) {
    EffectDriver effect(kGuids[1]);
    ASSERT_EQ(effect.Configure(32, 24), kSuccess);
    for (const char* colored : {"TRUE", "FALSE", "TRUE"}) {
        ASSERT_EQ(effect.Set("Colored", colored), kSuccess);
        TestFrame frame(32, 24);
        frame.Fill(255, 90, 170);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        const bool kept = colored[0] == 'T';
        EXPECT_EQ(frame, TestFrame(32, 24).Fill(255, kept ? 90 : 128, kept ? 170 : 128));
    }
}

TEST(GraphicPen, WhiteStaysWhiteAndBlackIsDarkGrey) {
    for (const int variant : {1, 2, 3, 4}) {
        EffectDriver effect(kGuids[variant]);
        ASSERT_EQ(effect.Configure(64, 48), kSuccess);
        for (int i = 0; i < 6; ++i) {
            TestFrame white(64, 48), black(64, 48);
            white.Fill(255, 90, 170);
            black.Fill(0, 90, 170);
            ASSERT_EQ(effect.Process(white), kSuccess);
            ASSERT_EQ(effect.Process(black), kSuccess);
            EXPECT_EQ(white, TestFrame(64, 48).Fill(255, 90, 170));
            EXPECT_EQ(black, TestFrame(64, 48).Fill(30, 90, 170));
        }
    }
}

/// The hatching moves at every second frame, by one draw of `rand`, and along its own diagonals.
TEST(GraphicPen, CrawlsAtEvenFrames) {
    EffectDriver effect(kGuids[4]);
    std::srand(11);
    ASSERT_EQ(effect.Configure(60, 40), kSuccess);
    std::srand(12);
    const int draws[3] = {std::rand(), std::rand(), std::rand()};
    std::srand(12);
    TestFrame first(60, 40), previous(60, 40);
    size_t offset = 0;
    for (int i = 1; i <= 6; ++i) {
        TestFrame frame(60, 40);
        frame.Fill(60, 90, 170);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        if (i == 1) first = previous = frame;
        if (i % 2 == 0) offset = (offset + static_cast<size_t>(draws[i / 2 - 1] % 200)) % 60;
        for (size_t at = 0; at < 60 * 40; ++at) {
            ASSERT_EQ(frame.plane(0)[at], first.plane(0)[(at + offset * 59) % (60 * 40)]) << i << ", " << at;
        }
        EXPECT_EQ(FirstDifference(frame, previous).empty(), i % 2 != 0) << i;
        previous = frame;
    }
    effect.Process(previous);  // an odd number of frames, which `Configure` has to forget
    std::srand(12);
    for (int i = 0; i < 3; ++i) std::rand();
    const int next = std::rand();
    std::srand(12);
    ASSERT_EQ(effect.Configure(60, 40), kSuccess);
    std::srand(12);
    for (int i = 1; i <= 7; ++i) {
        TestFrame frame(60, 40);
        effect.Process(frame);
    }
    EXPECT_EQ(std::rand(), next) << "three draws in seven frames, counted from Configure";
}

/// A frame that is refused moves neither the hatching nor the generator.
TEST(GraphicPen, DoesNotCountRefusedFrames) {
    EffectDriver effect(kGuids[4]);
    ASSERT_EQ(effect.Configure(60, 40), kSuccess);
    std::srand(12);
    const int first = std::rand(), second = std::rand();
    std::srand(12);
    TestFrame frame(60, 40), broken(60, 40), packed(60, 40, kFormatPacked);
    broken.image().Plane[2] = nullptr;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(effect.Process(broken), kInvalidArgument);
    EXPECT_EQ(effect.Process(packed), kFailure);
    EXPECT_EQ(std::rand(), first);
    std::srand(12);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(std::rand(), second);
}

TEST(GraphicPen, DrawsItsPagesForPackedStreamsToo) {
    for (const int variant : {1, 2, 3, 4}) ExpectPackedDrawsTheSame(kGuids[variant]);
}

}  // namespace
