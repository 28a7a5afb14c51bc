#include "effects/animated/CameraFlashes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>

#include "effects/animated/LensFlares.h"
#include "imaging/ScalarColor.h"
#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

// ---- a plain model of the flares and of the whole effect -------------------------------------------------

double EdgeFunction(double d) {
    if (d < 0.99) return 0;
    if (d >= 1.01) return 1;
    const double u = (d - 0.99) / 0.020000000000000018;
    return u * u * (3 - 2 * u);
}

double Distance(const PlainPlane& plane, int column, int row) {
    const int x = column - plane.width / 2, y = row - plane.height / 2;
    return std::sqrt(static_cast<double>(x * x + y * y));
}

void PlainSoftDisc(PlainPlane& plane, int radius) {
    const int r = std::min({plane.width / 2, plane.height / 2, radius});
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            const double d = Distance(plane, x, y) / r;
            plane(x, y) = static_cast<uint8_t>(255 * ((1 - d) * (1 - d)) * (1 - EdgeFunction(d)));
        }
    }
}

void PlainGlareDisc(PlainPlane& plane, int radius) {
    const int r = std::min({plane.width / 2, plane.height / 2, radius});
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.height; ++x) {
            const int dx = x - plane.width / 2, dy = y - plane.height / 2;
            if (dx * dx + dy * dy >= r * r) continue;
            const double d = Distance(plane, x, y) / r, q = d + 0.02;
            double v = std::exp(-((d / 0.02) * (d / 0.02))) * 2.61e6 * 0.384 + 20.91 / (q * q * q) * 0.478 +
                       72.37 / (q * q) * 0.138;
            v = std::min(std::max(v, 0.0), 255.0);
            plane(x, y) = static_cast<uint8_t>(v);
        }
    }
}

void PlainStar(PlainPlane& plane, int radius, int spikes) {
    const int hw = plane.width / 2, hh = plane.height / 2;
    const int r = radius > std::min(hw, hh) ? std::min(hw, hh) - 1 : radius;
    PlainPlane scratch(plane.width, plane.height);
    PlainSoftDisc(scratch, r / 2);
    int n = spikes;
    if (spikes < 0) n = std::rand() % 7 + 5;
    for (double a = 0; a <= 359; a += 1) {
        if (spikes == 0) n = std::rand() % 7 + 5;
        const int d = 360 / n + 360 % n;
        const double cosine = std::cos((a + 25.0) * 3.1415926535 / d);
        const double length = std::abs(cosine * cosine * r);
        if (!(length > 0)) continue;
        const double t = a * 3.1415926535 / 180.0;
        for (double s = 0; s < length; s += 1) {
            uint8_t& pixel =
                plane(hw + static_cast<int>(std::sin(t) * s), hh + static_cast<int>(std::cos(t) * s));
            if (pixel == 0) {
                pixel = static_cast<uint8_t>(std::min(static_cast<int>((1 - s / length) * 255.0), 255));
            }
        }
    }
    for (size_t i = 0; i < plane.pixels.size(); ++i) {
        plane.pixels[i] = static_cast<uint8_t>(std::min(plane.pixels[i] + scratch.pixels[i], 255));
    }
}

void PlainRing(PlainPlane& plane, int radius) {
    const int r = std::min(std::min(plane.width, plane.height) / 2, radius);
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            const double d = Distance(plane, x, y) / r;
            const int add = static_cast<int>(d * d * d * d * d * d * (1 - EdgeFunction(d)) * 255.0) & 255;
            plane(x, y) = static_cast<uint8_t>(std::min(plane.At(x, y) + add, 255));
        }
    }
}

struct PlainFlare {
    PlainFlare(int size, int frameWidth, int frameHeight, int flareType)
        : type(flareType),
          maxX(std::max(frameWidth - size - 1, 0)),
          maxY(std::max(frameHeight - size - 1, 0)) {
        cursor = std::rand() % 5;
        const int half = size / 2, step = half / 5, spikes = std::rand() % 5 + 3;
        int r = static_cast<int>(half * 0.85), sign = 1;
        for (int i = 0; i < 5; ++i) {
            PlainPlane plane(size, size);
            if (type == 1) PlainSoftDisc(plane, r);
            if (type == 2) PlainGlareDisc(plane, r);
            if (type == 3 || type == 6) PlainStar(plane, r, 0);
            if (type == 4) PlainStar(plane, r, spikes);
            if (type == 5) PlainStar(plane, r, -1);
            if (type == 6) PlainRing(plane, static_cast<int>(r * 0.6));
            frames.push_back(plane);
            r += sign * step;
            if (r >= half) sign = -sign;
        }
        Place();
        Push();
        Paint();
    }

    static int Draw(int limit) {
        const int drawn = std::rand();
        return limit > 0 ? drawn % limit : 0;
    }
    void Place() {
        x = Draw(maxX);
        y = Draw(maxY);
    }
    void Push() {
        vx = std::rand() % 31 - 14;
        vy = std::rand() % 31 - 14;
    }
    void Paint() {
        const int b = std::rand() % 256, g = std::rand() % 256, r = std::rand() % 256;
        RgbToYuvColor(color, static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b));
    }
    void Move() {
        const auto step = [](int& p, int& v, int last) {
            p += v;
            if (p < 0) {
                p = 0;
                v = -v;
            } else if (p > last) {
                p = last;
                v = -v;
            }
        };
        step(x, vx, maxX);
        step(y, vy, maxY);
    }
    void Next() {
        if (++cursor < 5) return;
        cursor = 0;
        Place();
        if (type != 1) Paint();
        Push();
    }

    int type, maxX, maxY, cursor = 0, x = 0, y = 0, vx = 0, vy = 0;
    uint8_t color[4] = {};
    std::vector<PlainPlane> frames;
};

class Model {
  public:
    Model(int width, int height, int mode) : w_(width), h_(height) { Build(mode); }

    void Build(int mode) {
        flares_.clear();
        const int size = h_ >= 240 ? 76 : h_ >= 120 ? 38 : 128;
        for (int i = 0; i < 10; ++i) {
            const int type = mode >= 1 && mode <= 6 ? mode : std::rand() % 7 + 1;
            flares_.emplace_back(size, w_, h_, type);
            if (mode == 1) RgbToYuvColor(flares_.back().color, 36, 25, 200);
        }
    }

    void operator()(TestFrame& frame) {
        PlainPlane y = LumaOf(frame), u = ChromaOf(frame, 1), v = ChromaOf(frame, 2), work(w_, h_);
        if (moving) {
            for (PlainFlare& flare : flares_) flare.Move();
        }
        if (animation) {
            for (PlainFlare& flare : flares_) flare.Next();
        }
        for (const PlainFlare& flare : flares_) {
            const PlainPlane& m = flare.frames[static_cast<size_t>(flare.cursor)];
            for (int r = 0; r < m.height && flare.y + r < h_; ++r) {
                for (int c = 0; c < m.width && flare.x + c < w_; ++c) {
                    const int a = m.At(c, r);
                    uint8_t& w = work(flare.x + c, flare.y + r);
                    w = static_cast<uint8_t>(((255 - a) * w + a * a) / 255);
                }
            }
        }
        for (size_t i = 0; i < y.pixels.size(); ++i) {
            y.pixels[i] = static_cast<uint8_t>(255 - (255 - work.pixels[i]) * (255 - y.pixels[i]) / 255);
        }
        y.WriteTo(frame.plane(0));
        if (!colorizing) return;
        for (const PlainFlare& flare : flares_) {
            const PlainPlane& m = flare.frames[static_cast<size_t>(flare.cursor)];
            PlainPlane half(m.width / 2, m.height / 2);
            PlainResize(m, half);
            for (int r = 0; r < half.height && flare.y / 2 + r < u.height; ++r) {
                for (int c = 0; c < half.width && flare.x / 2 + c < u.width; ++c) {
                    if (half.At(c, r) < 20) continue;
                    u(flare.x / 2 + c, flare.y / 2 + r) = flare.color[1];
                    v(flare.x / 2 + c, flare.y / 2 + r) = flare.color[2];
                }
            }
        }
        const PlainPlane tu = u, tv = v;
        PlainGauss3(tu, u);
        PlainGauss3(tv, v);
        u.WriteTo(frame.plane(1));
        v.WriteTo(frame.plane(2));
    }

    bool moving = true, animation = true, colorizing = true;

  private:
    int w_, h_;
    std::vector<PlainFlare> flares_;
};

// ---- tests -----------------------------------------------------------------------------------------------

class CameraFlashes : public testing::TestWithParam<int> {};

TEST_P(CameraFlashes, EqualsItsModel) {
    const int mode = GetParam();
    auto effect = EffectDriver::Of<CCameraFlashesSpecialEffectFilter>(mode);
    EXPECT_EQ(effect.Name(), "Camera Flashes");
    EXPECT_EQ(effect.Get("Mode"), std::to_string(mode));
    ExpectEqualsModel(
        effect, [&](int w, int h) { return Model(w, h, mode); }, [] {}, mode <= 7 ? 12 : 2);
}

INSTANTIATE_TEST_SUITE_P(Modes, CameraFlashes, testing::Range(1, 13));

TEST(CameraFlashes, KeepsTheContract) {
    EffectDriver effect("{A5749CD7-26DF-440E-B377-4F9909EFE6C9}");
    ExpectContract(effect);
}

TEST(CameraFlashes, EveryVariantHasItsGuid) {
    const char* const guids[] = {
        "{A5749CD7-26DF-440E-B377-4F9909EFE6C9}", "{8BB64F99-EB1E-4D12-9E21-2B68399AFF36}",
        "{33BB1C59-E80E-4B8B-A7AC-66D058A52A00}", "{727BCC5F-DF7B-4ECB-B895-22109E5F5770}",
        "{E729C2F2-476B-4B34-A0FC-8F62BAD8CEA0}", "{3FB097AA-932B-4B55-83B6-6E969CBE8FB3}",
        "{3BD16EB0-C94B-4D63-BEAE-D034AC9668EF}", "{B6C05462-D194-4022-B507-8FB2940739BB}",
        "{9C2835D8-1BE3-4E49-840A-CBBDA6FFAD0F}", "{922AC4BE-F417-4CB9-98D7-6226C2E41589}",
        "{7107911C-9343-414E-B78A-301C3E8154FC}", "{1CCF41D6-1DB0-4210-A520-257AB271948C}"};
    for (int i = 0; i < 12; ++i) EXPECT_EQ(EffectDriver(guids[i]).Get("Mode"), std::to_string(i + 1));
}

TEST(CameraFlashes, StaysEqualOverSixHundredFrames) {
    auto effect = EffectDriver::Of<CCameraFlashesSpecialEffectFilter>(7);
    std::srand(6);
    ASSERT_EQ(effect.Configure(200, 150), kSuccess);
    std::vector<uint64_t> checksums;
    for (int i = 0; i < 600; ++i) {
        TestFrame frame = StreamPicture(200, 150, i % 8);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        checksums.push_back(frame.Checksum());
    }
    const int next = std::rand();
    std::srand(6);
    Model model(200, 150, 7);
    for (int i = 0; i < 600; ++i) {
        TestFrame expected = StreamPicture(200, 150, i % 8);
        model(expected);
        ASSERT_EQ(checksums[static_cast<size_t>(i)], expected.Checksum()) << i;
    }
    EXPECT_EQ(next, std::rand());
}

TEST(CameraFlashes, PropertiesTakeHoldWithTheNextFrame) {
    auto effect = EffectDriver::Of<CCameraFlashesSpecialEffectFilter>(9);
    std::srand(6);
    ASSERT_EQ(effect.Configure(200, 150), kSuccess);
    std::vector<TestFrame> results;
    const auto run = [&](int i) {
        results.push_back(StreamPicture(200, 150, i));
        ASSERT_EQ(effect.Process(results.back()), kSuccess);
    };
    run(0);
    EXPECT_EQ(effect.Get("Mode"), "9");
    EXPECT_EQ(effect.Set("mode", "3"), kSuccess);
    EXPECT_EQ(effect.Get("Mode"), "9");
    run(1);
    EXPECT_EQ(effect.Get("Mode"), "3");
    EXPECT_EQ(effect.Set("Mode", "3"), kSuccess);  // unchanged: nothing is rebuilt
    EXPECT_EQ(effect.Set("Moving", "FALSE"), kSuccess);
    run(2);
    EXPECT_EQ(effect.Set("Animation", "no"), kSuccess);
    EXPECT_EQ(effect.Set("Colorizing", "FALSE"), kSuccess);
    run(3);
    run(4);
    EXPECT_EQ(effect.Set("Mode", "100"), kSuccess);
    run(5);
    EXPECT_EQ(effect.Get("Mode"), "7");
    EXPECT_EQ(effect.Set("Mode", "0"), kSuccess);
    run(6);
    EXPECT_EQ(effect.Get("Mode"), "1");

    std::srand(6);
    Model model(200, 150, 9);
    for (int i = 0; i < 7; ++i) {
        if (i == 1) model.Build(3);
        if (i == 2) model.moving = false;
        if (i == 3) model.animation = model.colorizing = false;
        if (i == 5) model.Build(7);
        if (i == 6) model.Build(1);
        TestFrame expected = StreamPicture(200, 150, i);
        model(expected);
        ASSERT_EQ(FirstDifference(results[static_cast<size_t>(i)], expected), "") << i;
    }
}

TEST(CameraFlashes, ConfigureBuildsTheFieldThatRan) {
    // A mode set beforehand waits for the first frame too.
    auto effect = EffectDriver::Of<CCameraFlashesSpecialEffectFilter>(9);
    EXPECT_EQ(effect.Set("Mode", "3"), kSuccess);
    std::srand(6);
    ASSERT_EQ(effect.Configure(200, 150), kSuccess);
    EXPECT_EQ(effect.Get("Mode"), "9");
    TestFrame frame = StreamPicture(200, 150, 0), expected = frame;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(effect.Get("Mode"), "3");
    std::srand(6);
    Model model(200, 150, 9);
    model.Build(3);
    model(expected);
    EXPECT_EQ(FirstDifference(frame, expected), "");
}

TEST(CameraFlashes, HasThreeSwitches) {
    auto effect = EffectDriver::Of<CCameraFlashesSpecialEffectFilter>(1);
    for (const char* name : {"Moving", "Colorizing", "Animation"}) ExpectBooleanProperty(effect, name, true);
    EXPECT_EQ(effect.Set("Colorize", "TRUE"), kInvalidArgument);
}

TEST(Flares, SizesFollowTheFrame) {
    // Small pictures have the largest sprites. At its widest a glare fills its sprite except for the rim.
    for (const auto& [height, size] :
         {std::pair{480, 76}, {240, 76}, {239, 38}, {120, 38}, {119, 128}, {100, 128}}) {
        CFlaresField field(640, height, 2);
        field.AddFlares(1);
        int32_t widest = 0;
        for (int frame = 0; frame < 5; ++frame) {
            CPlane8u y(640, height);
            field.RenderGlow(&y);
            int32_t left = 640, right = 0;
            for (int32_t r = 0; r < height; ++r) {
                for (int32_t x = 0; x < 640; ++x) {
                    if (y.Row(r)[x] == 0) continue;
                    left = std::min(left, x);
                    right = std::max(right, x);
                }
            }
            widest = std::max(widest, right - left);
            field.AnimateAll();
        }
        EXPECT_EQ(widest, size - 2) << height;
    }
}

/// Whether a field shows nowhere in chroma that is all of one colour, over several cycles.
bool BlendsInto(CFlaresField& field, const uint8_t (&color)[4]) {
    CPlane8u u(160, 120), v(160, 120);
    u.Fill(color[1]);
    v.Fill(color[2]);
    for (int i = 0; i < 25; ++i) {
        field.AnimateAll();
        field.ColorizeChroma(&u, &v);
    }
    return SumPixels(u) == color[1] * u.Size() && SumPixels(v) == color[2] * v.Size();
}

TEST(Flares, PlainGlowsAreBlueForLife) {
    uint8_t blue[4];
    RgbToYuvColor(blue, 36, 25, 200);
    for (const int32_t type : {1, 2}) {
        CFlaresField field(320, 240, type);
        field.AddFlares(10);
        EXPECT_EQ(BlendsInto(field, blue), type == 1);
    }
}

TEST(Flares, TheSeventhTypeIsInvisible) {
    CFlaresField field(320, 240, 7);
    field.AddFlares(10);
    EXPECT_TRUE(BlendsInto(field, {0, 90, 200, 255}));
    const TestFrame scene = TestFrame(320, 240).DrawScene(1);
    TestFrame frame = scene;
    CPlane8u y = CPlane8u::Over(frame.y(), 320, 240);
    field.RenderGlow(&y);
    EXPECT_EQ(FirstDifference(frame, scene), "");
}

TEST(Flares, RaysKeepWhatIsThere) {
    // So that of two rays the first one stays. Only the core is added.
    CPlane8u plane(38, 38), core(38, 38);
    plane.Fill(1);
    Star(plane, 15, 5);
    SoftDisc(core, 15 / 2);
    for (size_t i = 0; i < plane.Size(); ++i) {
        ASSERT_EQ(plane.data[i], std::min(1 + core.data[i], 255)) << i;
    }
}

TEST(Flares, AStarStaysInsideItsPlane) {
    CPlane8u plane(38, 38);
    Star(plane, 1000, 5);
    EXPECT_EQ(plane.Row(19)[19], 255);
    for (int32_t i = 0; i < 38; ++i) {
        EXPECT_EQ(plane.Row(0)[i], 0);
        EXPECT_EQ(plane.Row(i)[0], 0);
    }
    // Degenerate planes and radii draw nothing and stay inside.
    for (const int32_t size : {1, 2, 3}) {
        CPlane8u tiny(size, size);
        Star(tiny, 5, 0);
        SoftDisc(tiny, 0);
        GlareDisc(tiny, 0);
        Ring(tiny, 0);
    }
}

}  // namespace
