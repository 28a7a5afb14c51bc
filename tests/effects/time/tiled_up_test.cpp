#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "tests/imaging/models/GeometryModels.h"
#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{A50A308E-0D60-46E5-A336-409E22F395DD}";

class Model {
  public:
    /// With the tile size that follows from the width.
    Model(int width, int height) : Model(width, height, SizeFor(width)) {}
    /// With one that a host sets afterwards.
    Model(int width, int height, int set) : width_(width), height_(height), shade_(width, height) {
        tile_ = SizeFor(width);
        BuildGrout();
        if (set != tile_) {
            tile_ = set;
            BuildGrout();
        }
    }

    static int SizeFor(int width) {
        int size = 5;
        if (width > 640) size = 16;
        if (width < 640 && width >= 320) size = 8;
        return size + width % size;
    }

    void operator()(TestFrame& frame) {
        PlainPlane y = LumaOf(frame);
        Pixelate(y);
        if (tile_ >= 10) {
            for (int p = 1; p <= 2; ++p) {
                PlainPlane chroma = ChromaOf(frame, p);
                Pixelate(chroma);
                chroma.WriteTo(frame.plane(p));
            }
        }
        for (size_t i = 0; i < y.pixels.size(); ++i) y.pixels[i] = Clamp(y.pixels[i] + grout_[i]);
        model::ShadeByGradient(y.pixels.data(), shade_.pixels.data(), width_, height_, 45);
        for (size_t i = 0; i < y.pixels.size(); ++i) {
            y.pixels[i] = Clamp(y.pixels[i] + shade_.pixels[i] - 128);
        }
        y.WriteTo(frame.plane(0));
    }

  private:
    static uint8_t Clamp(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

    void BuildGrout() {
        grout_.assign(static_cast<size_t>(width_ * height_), -10);
        for (int y0 = 0; y0 < height_ - 2; y0 += tile_) {
            int line = y0;
            for (int x = 0; x < width_; ++x) {
                if (x % tile_ == 0) {
                    line = y0 + std::rand() % 2;
                    if (line >= height_) line = y0;
                }
                grout_[static_cast<size_t>(line * width_ + x)] = -25;
            }
        }
        for (int x0 = 0; x0 < width_ - 2; x0 += tile_) {
            for (int y = 0; y < height_; ++y) grout_[static_cast<size_t>(y * width_ + x0)] = -20;
        }
    }

    void Pixelate(PlainPlane& plane) const {
        const int t = tile_, cols = plane.width / t, rows = plane.height / t;
        if (cols == 0 || rows == 0) return;
        PlainPlane grid(cols, rows);
        PlainResize(plane, grid);
        for (int y = 0; y < plane.height; ++y) {
            for (int x = 0; x < plane.width; ++x) {
                plane(x, y) =
                    static_cast<uint8_t>(grid.At(std::min(x / t, cols - 1), std::min(y / t, rows - 1)));
            }
        }
    }

    int width_, height_, tile_;
    PlainPlane shade_;
    std::vector<int> grout_;
};

TEST(TiledUp, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Tiled Up");
    ExpectContract(effect);
}

TEST(TiledUp, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int w, int h) { return Model(w, h); });
    for (const int size : {4, 10, 32}) {
        ExpectEqualsModel(
            effect, [&](int w, int h) { return Model(w, h, size); },
            [&] { EXPECT_EQ(effect.Set("tilesize", std::to_string(size)), kSuccess); }, 4);
    }
}

TEST(TiledUp, ConfigureChoosesTheSizeFromTheWidth) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Get("TileSize"), "16");
    for (const auto& [width, size] : {std::pair{1280, "16"},
                                      {1281, "17"},
                                      {640, "5"},
                                      {639, "15"},
                                      {320, "8"},
                                      {176, "6"},
                                      {300, "5"},
                                      {641, "17"}}) {
        ASSERT_EQ(effect.Configure(width, 40), kSuccess);
        EXPECT_EQ(effect.Get("TileSize"), size) << width;
    }
}

TEST(TiledUp, ClampsTheSize) {
    EffectDriver effect(kGuid);
    for (const auto& [text, size] : {std::pair{"4", "4"},
                                     {"3", "4"},
                                     {"5", "5"},
                                     {"33", "32"},
                                     {"32", "32"},
                                     {"", "4"},
                                     {"-2147483648", "4"}}) {
        EXPECT_EQ(effect.Set("TileSize", text), kSuccess);
        EXPECT_EQ(effect.Get("TileSize"), size) << text;
    }
    EXPECT_EQ(effect.Set("Tile Size", "8"), kInvalidArgument);
}

TEST(TiledUp, DrawsTheGroutAnewOnlyWhenTheSizeChanges) {
    EffectDriver effect(kGuid);
    const auto drawnBy = [&](const char* size) {
        std::srand(5);
        EXPECT_EQ(effect.Set("TileSize", size), kSuccess);
        const int next = std::rand();
        std::srand(5);
        int drawn = 0;
        while (std::rand() != next) ++drawn;
        return drawn;
    };
    EXPECT_EQ(drawnBy("8"), 0);  // no map yet
    ASSERT_EQ(effect.Configure(100, 60), kSuccess);
    EXPECT_EQ(drawnBy("5"), 0);  // unchanged
    EXPECT_EQ(drawnBy("10"), 6 * 10);
    effect->Shutdown();
    EXPECT_EQ(drawnBy("20"), 0);
}

TEST(TiledUp, DarkTilesClampAtBlack) {
    // A face of 10 or less is as black as one of 0, and so are its joints.
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(100, 60), kSuccess);
    const auto picture = [&](uint8_t level) {
        TestFrame frame(100, 60);
        frame.Fill(level, 128, 128);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        return frame;
    };
    const TestFrame black = picture(0);
    EXPECT_EQ(FirstDifference(picture(5), black), "");
    EXPECT_EQ(FirstDifference(picture(10), black), "");
    EXPECT_NE(FirstDifference(picture(60), black), "");
}

TEST(TiledUp, HasADarkFrameOfOnePixel) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(320, 240), kSuccess);
    TestFrame frame(320, 240);
    frame.Fill(200, 128, 128);
    ASSERT_EQ(effect.Process(frame), kSuccess);
    for (int x = 0; x < 320; ++x) {
        EXPECT_LE(frame.y()[x], 62);
        EXPECT_LE(frame.y()[239 * 320 + x], 62);
    }
    EXPECT_GT(frame.y()[3 * 320 + 3], 150);
}

}  // namespace
