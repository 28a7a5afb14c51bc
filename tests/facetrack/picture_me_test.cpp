#include "facetrack/PictureMe.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <list>

#include "imaging/Prim.h"
#include "tests/facetrack/TestPictures.h"
#include "tests/support/EffectDriver.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/PlainPlane.h"
#include "tests/support/TestSurroundings.h"

namespace {

constexpr const char* kGuid = "{E9CC3E96-DFE8-4B32-A477-13D8968339F2}";

/// Thumbnails and the flight, step by step. Regions come from the test.
class Model {
  public:
    Model(int width, int height) : w_(width), h_(height) { Layout(false); }

    int speed = 5, rotation = 1, pictureSize = 32, texturesNumber = 0;
    int maxTextures = 0;

    void operator()(TestFrame& frame, const RegionRect& region) {
        PlainPlane planes[3] = {LumaOf(frame), ChromaOf(frame, 1), ChromaOf(frame, 2)};
        if (!animating_ && (region.left != 0 || region.right != 0 || region.top != 0 || region.bottom != 0)) {
            if (applied_ != pictureSize) {
                applied_ = pictureSize;
                textures_.clear();
                Layout(true);
            }
            SetCount(texturesNumber);
            Start(planes, region);
        }
        for (const Texture& texture : textures_) {
            if (texture.hasThumb) Paste(texture, planes);
        }
        if (animating_) {
            Texture& texture = *std::next(textures_.begin(), current_);
            Draw(texture, planes);
            if (texture.step != texture.stepCount) {
                ++texture.step;
                texture.posX += texture.velX;
                texture.posY += texture.velY;
                texture.angle += texture.turn;
                texture.scaleX += texture.growX;
                texture.scaleY += texture.growY;
            } else {
                current_ = (current_ + 1) % static_cast<int>(textures_.size());
                animating_ = false;
            }
        }
        for (int p = 0; p < 3; ++p) planes[p].WriteTo(frame.plane(p));
    }

  private:
    struct Texture {
        int slotX = 0, slotY = 0, regionW = 0, regionH = 0, step = 0, stepCount = 0;
        float posX = 0, posY = 0, velX = 0, velY = 0, angle = 0, turn = 0, scaleX = 1, scaleY = 1, growX = 0,
              growY = 0;
        bool hasThumb = false;
        PlainPlane region[3], thumb[3];
    };

    void Layout(bool keep) {
        const int t = applied_ * h_ / 100;
        side_ = (t - 2) / 4 * 4;
        maxTextures = h_ / (side_ + 1);
        if (!keep) texturesNumber = maxTextures < 3 ? maxTextures / 2 : 3;
        texturesNumber = std::min(texturesNumber, maxTextures);
        SetCount(texturesNumber);
        current_ = 0;
        Place();
    }
    void SetCount(int count) {
        if (static_cast<int>(textures_.size()) == count) return;
        while (static_cast<int>(textures_.size()) > count) {
            textures_.pop_front();
            current_ = 0;
        }
        while (static_cast<int>(textures_.size()) < count) textures_.emplace_back();
        texturesNumber = count;
        Place();
    }
    void Place() {
        int i = 0;
        for (Texture& texture : textures_) {
            if (texture.step == texture.stepCount) {
                texture.slotX = w_ - side_ - 2;
                texture.slotY = h_ - side_ - 2 - (side_ + 2) * i;
            }
            ++i;
        }
    }

    static PlainPlane Cut(const PlainPlane& from, int x, int y, int w, int h, uint8_t outside) {
        PlainPlane part(w, h, outside);
        for (int r = 0; r < h; ++r) {
            for (int c = 0; c < w; ++c) {
                if (x + c >= 0 && x + c < from.width && y + r >= 0 && y + r < from.height) {
                    part(c, r) = static_cast<uint8_t>(from.At(x + c, y + r));
                }
            }
        }
        return part;
    }

    void Start(const PlainPlane (&planes)[3], RegionRect r) {
        const int size = std::max((r.bottom - r.top) / 4 * 4, 24);
        if (r.left + size > w_) {
            r.right = w_;
            r.left = 2 * r.left - w_ + size;
        } else {
            r.right = r.left + size;
        }
        if (r.top + size > h_) {
            r.bottom = h_;
            r.top = 2 * r.top - h_ + size;
        } else {
            r.bottom = r.top + size;
        }
        animating_ = true;
        Texture& t = *std::next(textures_.begin(), current_);
        const int w = r.right - r.left, h = r.bottom - r.top;
        t.regionW = w > 0 && h > 0 ? w : 0;
        t.regionH = w > 0 && h > 0 ? h : 0;
        t.region[0] = Cut(planes[0], r.left, r.top, t.regionW, t.regionH, 0);
        for (int p = 1; p < 3; ++p) {
            t.region[p] = Cut(planes[p], r.left / 2, r.top / 2, t.regionW / 2, t.regionH / 2, 128);
        }
        const float n = static_cast<float>(30 * (6 - speed));
        t.scaleX = t.scaleY = 1;
        t.angle = 0;
        t.posX = static_cast<float>(r.left);
        t.posY = static_cast<float>(r.top);
        t.velX = static_cast<float>(t.slotX - r.left) / n;
        t.velY = static_cast<float>(t.slotY - r.top) / n;
        t.turn = static_cast<float>(rotation * 360) / n;
        t.growX = t.regionW > 0 ? (static_cast<float>(side_) / static_cast<float>(w) - 1) / n : 0;
        t.growY = t.regionH > 0 ? (static_cast<float>(side_) / static_cast<float>(h) - 1) / n : 0;
        t.step = 0;
        t.stepCount = 30 * (6 - speed);
    }

    static void WhiteFrame(PlainPlane& plane) {
        for (int y = 0; y < plane.height; ++y) {
            for (int x = 0; x < plane.width; ++x) {
                if (x < 2 || y < 2 || x >= plane.width - 2 || y >= plane.height - 2) plane(x, y) = 255;
            }
        }
    }

    static void Paste(const Texture& t, PlainPlane (&planes)[3]) {
        for (int p = 0; p < 3; ++p) {
            const int x = p == 0 ? t.slotX : t.slotX / 2, y = p == 0 ? t.slotY : t.slotY / 2;
            for (int r = 0; r < t.thumb[p].height; ++r) {
                for (int c = 0; c < t.thumb[p].width; ++c) {
                    if (x + c < 0 || x + c >= planes[p].width || y + r < 0 || y + r >= planes[p].height) {
                        continue;
                    }
                    planes[p](x + c, y + r) = static_cast<uint8_t>(t.thumb[p].At(c, r));
                }
            }
        }
    }

    void Draw(Texture& t, PlainPlane (&planes)[3]) const {
        const int sw = static_cast<int>(static_cast<float>(t.regionW) * t.scaleX);
        const int sh = static_cast<int>(static_cast<float>(t.regionH) * t.scaleY);
        const int cw = static_cast<int>(t.regionW * 0.5 * t.scaleX),
                  ch = static_cast<int>(t.regionH * 0.5 * t.scaleY);
        for (int p = 0; p < 3; ++p) {
            const int w = p == 0 ? sw : cw, h = p == 0 ? sh : ch;
            if (w < 1 || h < 1 || sw < 1 || sh < 1) continue;
            PlainPlane scaled(w, h);
            const PlainPlane& region = t.region[p];
            EXPECT_EQ(PrimResize8uC1(region.pixels.data(), region.width, region.height, region.width, 0, 0,
                                     region.width, region.height, scaled.pixels.data(), w, w, h, t.scaleX,
                                     t.scaleY, 1),
                      kPrimOk);
            if (p == 0) WhiteFrame(scaled);
            double x = 0, y = 0;
            PrimGetRotateShift(w * 0.5, h * 0.5, t.angle, &x, &y);
            x += p == 0 ? t.posX : t.posX * 0.5;
            y += p == 0 ? t.posY : t.posY * 0.5;
            PrimRotate8uC1(scaled.pixels.data(), w, h, w, 0, 0, w, h, planes[p].pixels.data(),
                           planes[p].width, 0, 0, planes[p].width, planes[p].height, t.angle, x, y,
                           p == 0 ? 0x80000004U : 0x80000001U);
        }
        if (t.step != t.stepCount) return;
        t.thumb[0] = Cut(planes[0], t.slotX, t.slotY, side_, side_, 0);
        for (int p = 1; p < 3; ++p) {
            t.thumb[p] = Cut(planes[p], t.slotX / 2, t.slotY / 2, side_ / 2, side_ / 2, 128);
        }
        WhiteFrame(t.thumb[0]);
        t.hasThumb = true;
        Paste(t, planes);
    }

    int w_, h_, applied_ = 32, side_ = 48, current_ = 0;
    bool animating_ = false;
    std::list<Texture> textures_;
};

class PictureMe : public testing::Test {
  protected:
    PictureMe() { std::ofstream("haar.txt") << "20 20 1 0 0\n0 0\n"; }

    CROISpecialEffectFilter& Region() { return static_cast<CROISpecialEffectFilter&>(*effect); }

    TemporaryDirectory directory;
    EffectDriver effect{kGuid};
};

TEST_F(PictureMe, ReadsTheCascadeOfTheDataFolder) {
    TestSurroundings surroundings;
    surroundings.folder = "data/";
    const SurroundingsScope scope(surroundings);
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "0") << "goes without faces";
    std::filesystem::create_directory("data");
    std::filesystem::rename("haar.txt", "data/haar.txt");
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "3");
}

TEST_F(PictureMe, FliesAndLandsByItsSteps) {
    struct Case {
        int speed, rotation, size, count;
        RegionRect region;
        int width = 320, height = 240;
    };
    for (const Case& c : {Case{5, 1, 32, 3, {40, 99, 30, 89}},          // inside
                          Case{5, 1, 32, 3, {0, 319, 0, 299}},          // higher than the frame
                          Case{5, 1, 50, 2, {8, 31, 60, 95}, 40, 200},  // to a thumbnail wider than the frame
                          Case{5, 1, 32, 1, {3, 11, 1, 9}, 60, 20},     // a frame lower than the least square
                          Case{5, 5, 10, 10, {200, 260, 100, 170}},  // small thumbnails, as many as there are
                          Case{4, 2, 50, 1, {270, 310, 20, 80}},     // reaches over the right edge
                          Case{5, 1, 32, 2, {310, 330, 5, 95}},      // so far that nothing is left of it
                          Case{5, 3, 20, 2, {-20, 40, -10, 60}},     // over the upper left corner
                          Case{5, 1, 32, 3, {100, 180, 200, 260}},   // over the lower edge
                          Case{5, 1, 32, 3, {10, 15, 10, 15}}}) {    // grows to 24
        ASSERT_EQ(effect.Configure(c.width, c.height), kSuccess);
        Model model(c.width, c.height);
        ASSERT_EQ(effect.Set("Speed", std::to_string(c.speed)), kSuccess);
        ASSERT_EQ(effect.Set("rotation speed", std::to_string(c.rotation)), kSuccess);
        ASSERT_EQ(effect.Set("Picture Size", std::to_string(c.size)), kSuccess);
        ASSERT_EQ(effect.Set("Textures Number", std::to_string(c.count)), kSuccess);
        model.speed = c.speed;
        model.rotation = c.rotation;
        model.pictureSize = c.size;
        model.texturesNumber = std::max(std::min(c.count, model.maxTextures), 1);
        for (int i = 0; i < 150; ++i) {
            if (i == 40) {  // in flight, which stays as it is
                model.pictureSize = c.size == 32 ? 24 : 32;
                model.speed = 9 - c.speed;
                ASSERT_EQ(effect.Set("Picture Size", std::to_string(model.pictureSize)), kSuccess);
                ASSERT_EQ(effect.Set("Speed", std::to_string(model.speed)), kSuccess);
            }
            RegionRect region = i % 7 == 6 ? RegionRect{} : c.region;  // sometimes there is no face
            region.left += region.right != 0 ? i % 5 : 0;
            const RegionRect asked = region;
            RegionRecord record{0, &region};
            TestFrame frame = TestFrame(c.width, c.height).DrawScene(i % 9), expected = frame;
            ASSERT_EQ(Region().ProcessRegion(frame.record(), &record), kSuccess);
            ASSERT_TRUE(frame.GuardsIntact());
            EXPECT_EQ(region.left, asked.left);  // the host's own
            EXPECT_EQ(region.right, asked.right);
            model(expected, asked);
            ASSERT_EQ(FirstDifference(frame, expected), "") << "size " << c.size << ", frame " << i;
        }
        // The next case starts with a new effect.
        effect = EffectDriver(kGuid);
    }
}

TEST_F(PictureMe, LaysOutWhatFits) {
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "3");  // of 72 pixels in 240 rows
    EXPECT_EQ(effect.Set("Textures Number", "99"), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "3");
    EXPECT_EQ(effect.Set("Textures Number", "0"), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "1");
    for (const auto& [text, size] : {std::pair{"5", "10"}, {"60", "50"}, {"33", "33"}}) {
        EXPECT_EQ(effect.Set("Picture Size", text), kSuccess);
        EXPECT_EQ(effect.Get("Picture Size"), size);
    }
    for (const char* name : {"Speed", "Rotation Speed"}) {
        EXPECT_EQ(effect.Get(name), std::string(name) == "Speed" ? "5" : "1");
        EXPECT_EQ(effect.Set(name, "9"), kSuccess);
        EXPECT_EQ(effect.Get(name), "5");
        EXPECT_EQ(effect.Set(name, "-9"), kSuccess);
        EXPECT_EQ(effect.Get(name), "1");
    }
    EXPECT_EQ(effect.Set("Pace", "1"), kInvalidArgument);

    // Four of 4 pixels fit in 20 rows; three are usual.
    ASSERT_EQ(effect.Configure(64, 20), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "3");
    EXPECT_EQ(effect.Set("Textures Number", "99"), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "4");

    // Two of half the height fit: as many as are there already, or half of them from the start.
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    EXPECT_EQ(effect.Set("Picture Size", "50"), kSuccess);
    TestFrame frame = TestFrame(320, 240).DrawScene(1);
    RegionRect face{10, 60, 10, 60};
    RegionRecord region{0, &face};
    ASSERT_EQ(Region().ProcessRegion(frame.record(), &region), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "2");
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "1");
}

TEST_F(PictureMe, KeepsTheContract) {
    std::filesystem::remove("haar.txt");
    EXPECT_EQ(effect.Name(), "Picture Me");
    ExpectContract(effect);
}

TEST_F(PictureMe, ChecksItsFrames) {
    TestFrame frame = TestFrame(64, 48).DrawScene(1);
    const TestFrame before = frame;
    EXPECT_EQ(effect.Process(frame), kFailure);
    EXPECT_EQ(effect->Configure(nullptr), kInvalidArgument);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    EXPECT_EQ(effect->ProcessFrame(nullptr), kInvalidArgument);
    FrameRecord none{{}, nullptr};
    EXPECT_EQ(effect->ProcessFrame(&none), kInvalidArgument);
    none.Image = reinterpret_cast<ImageRecord*>(uintptr_t{0xFFFFFFFC});
    EXPECT_EQ(effect->ProcessFrame(&none), kInvalidArgument);
    EXPECT_EQ(Region().ProcessRegion(&none, nullptr), kInvalidArgument);
    frame.image().Plane[0] = nullptr;
    EXPECT_EQ(effect.Process(frame), kInvalidArgument);
    EXPECT_EQ(FirstDifference(frame, before), "");
    frame = before;
    EXPECT_EQ(Region().ProcessRegion(frame.record(), nullptr), kSuccess);
    RegionRecord nowhere{0, nullptr};
    EXPECT_EQ(Region().ProcessRegion(frame.record(), &nowhere), kSuccess);
    EXPECT_EQ(FirstDifference(frame, before), "");

    EXPECT_EQ(effect->Shutdown(), kSuccess);
    EXPECT_EQ(effect.Process(frame), kFailure);
    EXPECT_EQ(Region().ProcessRegion(frame.record(), nullptr), kFailure);
    EXPECT_EQ(effect.Configure(0, 48), kInvalidArgument);
    EXPECT_EQ(effect.Process(frame), kFailure);
    EXPECT_EQ(effect.Configure(64, 48, kFormatPacked), kSuccess);
    TestFrame packed(64, 48, kFormatPacked);
    EXPECT_EQ(effect.Process(packed), kNotImplemented);
    EXPECT_EQ(effect.Process(frame), kFailure);
}

TEST_F(PictureMe, TakesAnyRectangleAndAnySize) {
    constexpr int32_t kLow = INT32_MIN, kHigh = INT32_MAX;
    for (const auto& [w, h] : {std::pair{1, 1}, {2, 2}, {1, 40}, {23, 23}, {25, 31}, {64, 48}, {40, 200}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        for (const RegionRect& rect : {RegionRect{kLow, kHigh, kLow, kHigh},
                                       {kHigh, kLow, kHigh, kLow},
                                       {kHigh, kHigh, kHigh, kHigh},
                                       {kLow, 0, kLow, 0},
                                       {0, 1, 0, 1},
                                       {-30, 5, -30, 5},
                                       {w, w + 9, h, h + 9},
                                       {0, w, 0, h},
                                       {1000, 1010, 0, 8}}) {
            for (int i = 0; i < 35; ++i) {
                RegionRect copy = rect;
                RegionRecord region{0, &copy};
                TestFrame frame = TestFrame(w, h).DrawScene(i);
                ASSERT_EQ(Region().ProcessRegion(frame.record(), &region), kSuccess);
                ASSERT_TRUE(frame.GuardsIntact());
            }
        }
        for (int i = 0; i < 10; ++i) {
            TestFrame frame = TestFrame(w, h).DrawScene(i);
            ASSERT_EQ(effect.Process(frame), kSuccess);
            ASSERT_TRUE(frame.GuardsIntact());
        }
    }
}

TEST_F(PictureMe, GoesWithoutACascade) {
    std::filesystem::remove("haar.txt");
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    for (int i = 0; i < 9; ++i) {
        TestFrame frame = TestFrame(64, 48).DrawScene(i);
        const TestFrame before = frame;
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, before), "");
    }
    std::ofstream("haar.txt") << "rubbish";
    testing::internal::CaptureStderr();
    EXPECT_EQ(effect.Configure(64, 48), kSuccess);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR: cascade file is incorrect\n");
    TestFrame frame = TestFrame(64, 48).DrawScene(1);
    EXPECT_EQ(effect.Process(frame), kSuccess);
}

TEST_F(PictureMe, ForgetsTheFacesOfAnEarlierStream) {
    // The cascade of this fixture has no classifiers: to it every edge is a face.
    const auto processed = [&](int frames, int32_t format) {
        TestFrame frame(160, 120, format);
        for (int i = 0; i < frames; ++i) effect.Process(frame.DrawScene(i));
        return frame;
    };
    const TestFrame plain = TestFrame(160, 120).DrawScene(3);
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    ASSERT_NE(FirstDifference(processed(4, kFormatPlanar), plain), "");

    // A packed stream has no cascade, nor has a planar one whose file is missing.
    ASSERT_EQ(effect.Configure(160, 120, kFormatPacked), kSuccess);
    EXPECT_EQ(FirstDifference(processed(4, kFormatPacked), TestFrame(160, 120, kFormatPacked).DrawScene(3)),
              "");
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    processed(8, kFormatPlanar);
    EXPECT_EQ(effect->Shutdown(), kSuccess);
    std::filesystem::remove("haar.txt");
    ASSERT_EQ(effect.Configure(160, 120), kSuccess);
    EXPECT_EQ(FirstDifference(processed(4, kFormatPlanar), plain), "");
}

TEST_F(PictureMe, LoadsACascadeOfTheHosts) {
    EXPECT_EQ(effect->LoadSettings(static_cast<SettingsRecord*>(nullptr)), kFailure);
    if (!std::filesystem::exists(HaarFile())) GTEST_SKIP() << "no cascade was made";
    std::filesystem::remove("haar.txt");
    ASSERT_EQ(effect.Configure(640, 480), kSuccess);
    std::string path = HaarFile();
    SettingsRecord settings{0, nullptr, path.data(), {0, 0}};
    ASSERT_EQ(effect->LoadSettings(&settings), kSuccess);
    EXPECT_EQ(effect.Get("Textures Number"), "3");

    // A face that drifts: known after one cycle, its picture lands thirty frames later.
    TestFrame frame(640, 480);
    for (int i = 0; i < 34; ++i) {
        FacePlace place{};
        const CPlane8u picture = PortraitAs(640, 480, 1.1, -0.1 + i * 0.002, 0.1, false, &place);
        frame.Fill(0, 128, 128);
        std::copy_n(picture.data, picture.Size(), frame.y());
        const TestFrame before = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame == before, i < 3) << i;
    }
    // The thumbnail stands in the lower right corner with its white frame.
    const int side = (32 * 480 / 100 - 2) / 4 * 4, x = 640 - side - 2, y = 480 - side - 2;
    for (int i = 0; i < side; ++i) {
        EXPECT_EQ(frame.y()[y * 640 + x + i], 255);
        EXPECT_EQ(frame.y()[(y + i) * 640 + x], 255);
        EXPECT_EQ(frame.y()[(y + side - 1) * 640 + x + i], 255);
    }
}

}  // namespace
