#include "effects/animated/LogoAnimation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <list>

#include "effects/animated/GlyphTable.h"
#include "effects/animated/TextRenderer.h"
#include "imaging/ScalarColor.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"
#include "tests/support/TestSurroundings.h"

namespace {

constexpr const char* kGuid = "{65F2B741-B4F0-4B6E-9C6B-3548B3039578}";
constexpr int64_t kClock = 123456;

struct Copy {
    PlainPlane picture;
    int fadeStep, fadeLength, x = 0, y = 0, vx = 0, vy = 0, maxX, maxY;
    uint8_t color[4] = {0, 0, 0, 255};
};

/// The copies of one kind, and how they fade; the picture of one comes from outside.
class Model {
  public:
    Model(int width, int height) : w_(width), h_(height) {}

    static int Draw(int limit) {
        const int drawn = std::rand();
        return limit > 0 ? drawn % limit : 0;
    }

    void Add(const PlainPlane& logo, bool randomColors, const std::vector<uint32_t>& set) {
        Copy copy;
        copy.picture = PlainPlane(logo.width, logo.height);
        PlainResize(logo, copy.picture);
        copy.maxX = std::max(w_ - logo.width - 1, 0);
        copy.maxY = std::max(h_ - logo.height - 1, 0);
        copy.fadeLength = std::rand() % 14 + 20;
        copy.fadeStep = std::rand() % copy.fadeLength;
        const PlainPlane sharp = copy.picture;
        PlainGauss3(sharp, copy.picture);
        Place(copy);
        Push(copy);
        if (randomColors) {
            const int b = std::rand() % 256, g = std::rand() % 256, r = std::rand() % 256;
            RgbToYuvColor(copy.color, static_cast<uint8_t>(r), static_cast<uint8_t>(g),
                          static_cast<uint8_t>(b));
        } else {
            const uint32_t c = set.empty() ? 0 : set[static_cast<size_t>(std::rand()) % set.size()];
            RgbToYuvColor(copy.color, c & 255, c >> 8 & 255, c >> 16 & 255);
        }
        copies_.push_back(copy);
    }

    void Keep(size_t count) {
        while (copies_.size() > count) copies_.pop_front();
    }
    size_t count() const { return copies_.size(); }

    void Render(TestFrame& frame, bool moving, bool withChroma) {
        for (Copy& copy : copies_) Fade(copy);
        for (Copy& copy : copies_) {
            if (moving) Move(copy);
        }
        PlainPlane y = LumaOf(frame), u = ChromaOf(frame, 1), v = ChromaOf(frame, 2);
        for (const Copy& copy : copies_) {
            Blend(copy.picture, copy.x, copy.y, copy.color[3], copy.color[0], y);
            if (!withChroma) continue;
            PlainPlane half(copy.picture.width / 2, copy.picture.height / 2);
            PlainResize(copy.picture, half);
            Blend(half, copy.x / 2, copy.y / 2, copy.color[3], copy.color[1], u);
            Blend(half, copy.x / 2, copy.y / 2, copy.color[3], copy.color[2], v);
        }
        y.WriteTo(frame.plane(0));
        u.WriteTo(frame.plane(1));
        v.WriteTo(frame.plane(2));
    }

  private:
    static void Place(Copy& copy) {
        const auto middle = [](int p, int last) { return last / 4 < p && p < 3 * last / 4; };
        int x = Draw(copy.maxX), y = Draw(copy.maxY);
        if (std::rand() % 10 < 8) {
            while (middle(x, copy.maxX) && middle(y, copy.maxY)) {
                x = Draw(copy.maxX);
                y = Draw(copy.maxY);
            }
        }
        copy.x = x;
        copy.y = y;
    }
    static void Push(Copy& copy) {
        copy.vx = std::rand() % 17 - 7;
        copy.vy = std::rand() % 17 - 7;
    }
    static void Fade(Copy& copy) {
        const bool ended = ++copy.fadeStep > copy.fadeLength;
        if (ended) copy.fadeStep = 0;
        const double x = (8.0 / copy.fadeLength) * copy.fadeStep;
        const double c[9] = {19.795236361585, 369.733067341368, -199.738438091861,
                             58.497524260458, -17.016867787585, 3.998718989183,
                             -0.550613656376, 0.038423391749,   -0.001055715747};
        double p = 0, power = 1;
        for (const double k : c) {
            p += k * power;
            power *= x;
        }
        copy.color[0] = copy.color[3] = static_cast<uint8_t>(std::clamp(static_cast<int>(p), 0, 255));
        if (ended) {
            Place(copy);
            Push(copy);
        }
    }
    static void Move(Copy& copy) {
        const auto step = [](int& p, int& v, int last) {
            p += v;
            if (p < 0 || p > last) {
                p = p < 0 ? 0 : last;
                v = -v;
            }
        };
        step(copy.x, copy.vx, copy.maxX);
        step(copy.y, copy.vy, copy.maxY);
    }
    static void Blend(const PlainPlane& mask, int px, int py, int alpha, int value, PlainPlane& plane) {
        for (int r = 0; r < mask.height && py + r < plane.height; ++r) {
            for (int c = 0; c < mask.width && px + c < plane.width; ++c) {
                if (mask.At(c, r) == 0) continue;
                const int a = alpha * mask.At(c, r) / 255;
                uint8_t& p = plane(px + c, py + r);
                p = static_cast<uint8_t>(((255 - a) * p + a * value) / 255);
            }
        }
    }

    int w_, h_;
    std::list<Copy> copies_;
};

PlainPlane InkOf(std::string_view text) {
    CPlane8u plane = RenderText(text);
    plane.Invert();
    return {plane.width, plane.height, std::span(plane.data, plane.Size())};
}

void WriteBmp(const std::string& path, int32_t width, int32_t height, uint16_t bits,
              const std::vector<uint8_t>& pixels) {
    std::vector<uint8_t> header(54 + 1024, 0);
    header[0] = 'B';
    header[1] = 'M';
    const auto put = [&](size_t at, uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            header[at + static_cast<size_t>(i)] = static_cast<uint8_t>(value >> (8 * i));
        }
    };
    put(14, 40, 4);
    put(18, static_cast<uint32_t>(width), 4);
    put(22, static_cast<uint32_t>(height), 4);
    put(26, 1, 2);
    put(28, bits, 2);
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
    file.write(reinterpret_cast<const char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
}

class LogoAnimation : public testing::Test {
  protected:
    LogoAnimation() { clock.now = kClock; }

    TemporaryDirectory directory;
    TestClock clock;
    const SurroundingsScope scope{clock};
    EffectDriver effect{kGuid};
};

TEST_F(LogoAnimation, KeepsTheContract) {
    EXPECT_EQ(effect.Name(), "Logo Animation");
    ExpectContract(effect);
}

/// Both fields as `Configure` makes them, without a bitmap.
struct Fields {
    Fields(int w, int h) : picture(w, h), text(w, h) {
        std::srand(static_cast<unsigned>(kClock));
        for (int i = 0; i < 10; ++i) picture.Add(InkOf("logo3.bmp not found"), true, {});
        for (int i = 0; i < 10; ++i) text.Add(InkOf("+44"), true, {});
    }
    Model picture, text;
};

TEST_F(LogoAnimation, EqualsItsModel) {
    ExpectEqualsModel(
        effect,
        [](int w, int h) {
            return
                [fields = Fields(w, h)](TestFrame& frame) mutable { fields.text.Render(frame, false, true); };
        },
        [] {}, 40);
}

TEST_F(LogoAnimation, FollowsItsProperties) {
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    std::vector<TestFrame> results;
    const auto run = [&](int count) {
        for (int i = 0; i < count; ++i) {
            results.push_back(StreamPicture(320, 240, static_cast<int>(results.size())));
            ASSERT_EQ(effect.Process(results.back()), kSuccess);
        }
    };
    run(2);
    EXPECT_EQ(effect.Set("Objects Number", "14"), kSuccess);
    run(3);
    EXPECT_EQ(effect.Set("objects number", "0"), kSuccess);
    run(2);
    EXPECT_EQ(effect.Set("Colorize", "FALSE"), kSuccess);
    EXPECT_EQ(effect.Set("Moving Animation", "TRUE"), kSuccess);  // rebuilds the logos
    EXPECT_EQ(effect.Set("Objects Number", "4"), kSuccess);
    run(30);
    EXPECT_EQ(effect.Set("Type", "2"), kSuccess);
    run(5);
    EXPECT_EQ(effect.Set("Type", "1"), kSuccess);
    EXPECT_EQ(effect.Set("Random Colors", "FALSE"), kSuccess);
    EXPECT_EQ(effect.Set("Color 2", "10,200,30"), kSuccess);
    EXPECT_EQ(effect.Set("Color 5", "90,0,255"), kSuccess);
    EXPECT_EQ(effect.Set("Colorize", "TRUE"), kSuccess);
    run(10);
    // One at a time: of these only the first leaves the logos as they are.
    EXPECT_EQ(effect.Set("Colorize", "FALSE"), kSuccess);
    run(2);
    EXPECT_EQ(effect.Set("Color 1", "0,0,0"), kSuccess);
    run(2);
    EXPECT_EQ(effect.Set("Random Colors", "TRUE"), kSuccess);
    run(2);
    const int next = std::rand();

    Fields fields(320, 240);
    const std::vector<uint32_t> colors = {10U | 200U << 8 | 30U << 16, 90U | 255U << 16};
    size_t at = 0;
    const auto expect = [&](int count, Model& model, bool moving, bool withChroma) {
        for (int i = 0; i < count; ++i, ++at) {
            TestFrame frame = StreamPicture(320, 240, static_cast<int>(at));
            model.Render(frame, moving, withChroma);
            ASSERT_EQ(FirstDifference(results[at], frame), "") << "frame " << at;
        }
    };
    expect(2, fields.text, false, true);
    for (int i = 0; i < 4; ++i) fields.text.Add(InkOf("+44"), true, {});
    expect(3, fields.text, false, true);
    fields.text.Keep(1);
    expect(2, fields.text, false, true);
    fields.text.Keep(0);
    for (int i = 0; i < 4; ++i) fields.text.Add(InkOf("+44"), true, {});
    expect(30, fields.text, true, false);
    fields.picture.Keep(0);
    for (int i = 0; i < 4; ++i) fields.picture.Add(InkOf("logo3.bmp not found"), true, {});
    expect(5, fields.picture, true, false);
    fields.text.Keep(0);
    for (int i = 0; i < 4; ++i) fields.text.Add(InkOf("+44"), false, colors);
    expect(10, fields.text, true, true);
    expect(2, fields.text, true, false);
    for (const bool randomColors : {false, true}) {
        fields.text.Keep(0);
        for (int i = 0; i < 4; ++i) fields.text.Add(InkOf("+44"), randomColors, colors);
        expect(2, fields.text, true, false);
    }
    EXPECT_EQ(next, std::rand());
}

TEST_F(LogoAnimation, ShowsTheBitmapOfTheDataFolder) {
    const auto show = [](const std::string& folder) {
        TestSurroundings surroundings;
        surroundings.folder = folder;
        const SurroundingsScope within(surroundings);
        EffectDriver logo(kGuid);
        EXPECT_EQ(logo.Configure(320, 240), kSuccess);
        EXPECT_EQ(logo.Set("Type", "2"), kSuccess);
        TestFrame frame = StreamPicture(320, 240, 1);
        EXPECT_EQ(logo.Process(frame), kSuccess);
        return frame.Checksum();
    };
    std::filesystem::create_directory("data");
    const uint64_t missing = show("data/");
    WriteBmp("data/logo3.bmp", 20, 10, 8, std::vector<uint8_t>(200, 9));
    EXPECT_NE(show("data/"), missing);
    EXPECT_EQ(show(""), missing);
}

TEST_F(LogoAnimation, ShowsTheBitmapOfTheDirectory) {
    // 100 by 100 stays, 200 wide becomes a quarter of the frame; dark pixels are the logo.
    for (const auto& [w, h, logoW, logoH] :
         {std::tuple{100, 100, 100, 100}, {200, 100, 160, 100}, {700, 900, 160, 120}}) {
        std::vector<uint8_t> pixels(static_cast<size_t>(w * h));
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 7 % 256);
        WriteBmp("logo3.bmp", w, h, 8, pixels);
        ASSERT_EQ(effect.Configure(640, 480), kSuccess);
        ASSERT_EQ(effect.Set("Type", "2"), kSuccess);

        PlainPlane bitmap(w, h);
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) bitmap(x, y) = pixels[static_cast<size_t>((h - 1 - y) * w + x)];
        }
        PlainPlane logo(logoW, logoH);
        PlainResize(bitmap, logo);
        for (uint8_t& p : logo.pixels) p = static_cast<uint8_t>(255 - p);

        TestFrame frame = StreamPicture(640, 480, 1), expected = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        std::srand(static_cast<unsigned>(kClock));
        Model model(640, 480), text(640, 480);
        for (int i = 0; i < 10; ++i) model.Add(logo, true, {});
        for (int i = 0; i < 10; ++i) text.Add(InkOf("+44"), true, {});
        model.Keep(0);  // setting the type rebuilds them
        for (int i = 0; i < 10; ++i) model.Add(logo, true, {});
        model.Render(expected, false, true);
        ASSERT_EQ(FirstDifference(frame, expected), "") << w << " by " << h;
    }
}

TEST_F(LogoAnimation, FallsBackToTheMessage) {
    const std::vector<uint8_t> some(50, 3);
    const auto expectMessage = [&](const char* what) {
        ASSERT_EQ(effect.Configure(640, 480), kSuccess) << what;
        ASSERT_EQ(effect.Set("Type", "2"), kSuccess);
        TestFrame frame = StreamPicture(640, 480, 1), expected = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        Fields fields(640, 480);
        fields.picture.Keep(0);
        for (int i = 0; i < 10; ++i) fields.picture.Add(InkOf("logo3.bmp not found"), true, {});
        fields.picture.Render(expected, false, true);
        EXPECT_EQ(FirstDifference(frame, expected), "") << what;
    };
    expectMessage("no file");
    WriteBmp("logo3.bmp", 10, 10, 24, std::vector<uint8_t>(300, 1));
    expectMessage("24 bits");
    WriteBmp("logo3.bmp", 10, 10, 8, some);
    expectMessage("short");
    WriteBmp("logo3.bmp", 0, 10, 8, some);
    expectMessage("no width");
    WriteBmp("logo3.bmp", 10, -5, 8, some);
    expectMessage("negative height");
    WriteBmp("logo3.bmp", 0x7FFFFFFF, 0x7FFFFFFF, 8, some);
    expectMessage("huge");
    std::ofstream("logo3.bmp", std::ios::trunc) << "no bitmap";
    expectMessage("a text");
    std::ofstream("logo3.bmp", std::ios::trunc).close();
    expectMessage("empty");
}

TEST_F(LogoAnimation, ConfigureOverwritesWhatAHostSet) {
    EXPECT_EQ(effect.Get("Type"), "2");
    EXPECT_EQ(effect.Get("Colorize"), "FALSE");
    EXPECT_EQ(effect.Get("Random Colors"), "TRUE");
    EXPECT_EQ(effect.Get("Objects Number"), "10");
    EXPECT_EQ(effect.Set("Objects Number", "41"), kSuccess);
    EXPECT_EQ(effect.Get("Objects Number"), "40");
    EXPECT_EQ(effect.Set("Moving Animation", "TRUE"), kSuccess);
    EXPECT_EQ(effect.Set("Random Colors", "FALSE"), kSuccess);
    EXPECT_EQ(effect.Set("Color 1", "1,2,3"), kSuccess);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    EXPECT_EQ(effect.Get("Objects Number"), "10");
    EXPECT_EQ(effect.Get("Type"), "1");
    EXPECT_EQ(effect.Get("Colorize"), "TRUE");
    EXPECT_EQ(effect.Get("Moving Animation"), "FALSE");
    EXPECT_EQ(effect.Get("Random Colors"), "FALSE");
    EXPECT_EQ(effect.Get("Color 1"), "1,2,3");
    EXPECT_EQ(effect.Get("Color 5"), "0,0,0");
    for (const auto& [text, type] : {std::pair{"0", "1"}, {"3", "2"}}) {
        EXPECT_EQ(effect.Set("Type", text), kSuccess);
        EXPECT_EQ(effect.Get("Type"), type);
    }
    EXPECT_EQ(effect.Set("Color 6", "1,2,3"), kInvalidArgument);
}

TEST_F(LogoAnimation, OneColourServesAllAndNoneIsNotDrawnFor) {
    for (const auto& [text, colors] :
         {std::pair{"0,0,0", std::vector<uint32_t>{}}, {"10,200,30", {10U | 200U << 8 | 30U << 16}}}) {
        effect = EffectDriver(kGuid);
        ASSERT_EQ(effect.Configure(320, 240), kSuccess);
        ASSERT_EQ(effect.Set("Random Colors", "FALSE"), kSuccess);
        ASSERT_EQ(effect.Set("Color 2", text), kSuccess);
        TestFrame frame(320, 240);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        const int next = std::rand();
        Fields fields(320, 240);
        fields.text.Keep(0);
        for (int i = 0; i < 10; ++i) fields.text.Add(InkOf("+44"), false, colors);
        TestFrame expected(320, 240);
        fields.text.Render(expected, false, true);
        EXPECT_EQ(FirstDifference(frame, expected), "") << text;
        EXPECT_EQ(next, std::rand()) << text;
    }
}

TEST(TextRenderer, DrawsBlackOnWhiteInCells) {
    const CPlane8u text = RenderText("A \x80");
    ASSERT_EQ(text.width, 48);
    ASSERT_EQ(text.height, 24);
    const auto darkest = [&](int32_t from, int32_t to) {
        int dark = 255;
        for (int32_t y = 0; y < 24; ++y) {
            for (int32_t x = from; x < to; ++x) dark = std::min<int>(dark, text.Row(y)[x]);
        }
        return dark;
    };
    EXPECT_LT(darkest(0, 16), 30);
    EXPECT_EQ(darkest(16, 32), 255);
    EXPECT_EQ(darkest(32, 48), 0);     // the empty box
    EXPECT_EQ(text.Row(12)[40], 255);  // is empty
    EXPECT_TRUE(RenderText("").Empty());
}

TEST(TextRenderer, DrawsABoxForAnyOtherCharacter) {
    const TextFromTable scope;
    for (const char character : {'\0', '\n', '\x1F', '\x7F', '\x80', '\xFF'}) {
        const CPlane8u cell = RenderText({&character, 1});
        ASSERT_EQ(cell.width, kGlyphWidth);
        ASSERT_EQ(cell.height, kGlyphHeight);
        for (int y = 0; y < kGlyphHeight; ++y) {
            for (int x = 0; x < kGlyphWidth; ++x) {
                const int depth = std::min({x - 3, 12 - x, y - 4, 19 - y});
                ASSERT_EQ(cell.Row(y)[x], depth == 0 ? 0 : 255) << x << "," << y;
            }
        }
    }
}

TEST(TextRenderer, EveryGlyphHasInkAndIsCentred) {
    for (int32_t i = 1; i < kGlyphCount; ++i) {
        int64_t ink = 0, moment = 0;
        for (int32_t y = 0; y < kGlyphHeight; ++y) {
            for (int32_t x = 0; x < kGlyphWidth; ++x) {
                ink += kGlyphs[i][y * kGlyphWidth + x];
                moment += int64_t{x} * kGlyphs[i][y * kGlyphWidth + x];
            }
        }
        EXPECT_GT(ink, 500) << static_cast<char>(kFirstGlyph + i);
        EXPECT_NEAR(static_cast<double>(moment) / static_cast<double>(ink), 7.5, 3.0)
            << static_cast<char>(kFirstGlyph + i);
    }
}

}  // namespace
