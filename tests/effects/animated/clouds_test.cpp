#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "effects/animated/Clouds.h"
#include "imaging/GradientNoise.h"
#include "imaging/ScalarColor.h"
#include "tests/imaging/models/PointModels.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"
#include "tests/support/TestSurroundings.h"

namespace {

constexpr const char* kGuid = "{7DB203B3-4EC6-497D-957F-5A938F6AAB76}";
constexpr size_t kRecord = 640 * 480;

std::vector<uint8_t> ReadFile(const std::string& path = "perlin.dat") {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Model {
  public:
    Model(int width, int height, int type, int intensity, uint32_t color)
        : w_(width), h_(height), type_(type), intensity_(intensity), color_(color) {
        const std::vector<uint8_t> file = ReadFile();
        PlainPlane scratch(640, 480);
        for (size_t i = 0; i < 20; ++i) {
            for (size_t k = 0; k < kRecord && i * kRecord + k < file.size(); ++k) {
                scratch.pixels[k] = file[i * kRecord + k];
            }
            PlainPlane picture(w_, h_);
            PlainResize(scratch, picture);
            pictures_.push_back(picture);
        }
    }

    void operator()(TestFrame& frame) {
        const PlainPlane& a = pictures_[static_cast<size_t>(frameNumber_ % 20)];
        ++frameNumber_;
        PlainPlane mask(w_, h_);
        for (int y = 0; y < h_; ++y) {
            for (int x = 0; x < w_; ++x) {
                const int v = a.At(x, y);
                int m = v;
                if (type_ == 2) m = std::clamp(v * v / 150 - 50, 0, 255);
                if (type_ == 3) {
                    const int third = h_ / 3, s = v + 2 * (third - y) / 3;
                    m = y < third ? std::clamp(s * s / 150 - y - 100, 0, 255) : 0;
                }
                mask(x, y) = static_cast<uint8_t>(m);
            }
        }
        if (intensity_ != 100) {
            model::PrimMulCSfs8uC1(static_cast<uint8_t>(intensity_ * 255 / 100), mask.pixels.data(), w_, w_,
                                   h_, 8);
        }
        uint8_t c[4];
        RgbToYuvColor(c, PackedRed(color_), PackedGreen(color_), PackedBlue(color_));
        Blend(mask, frame.plane(0), c[0]);
        PlainPlane half(w_ / 2, h_ / 2);
        PlainResize(mask, half);
        Blend(half, frame.plane(1), c[1]);
        Blend(half, frame.plane(2), c[2]);
    }

    Model& From(int frame) {
        frameNumber_ = frame;
        return *this;
    }

  private:
    static void Blend(const PlainPlane& mask, std::span<uint8_t> plane, int value) {
        for (size_t i = 0; i < mask.pixels.size(); ++i) {
            const int m = mask.pixels[i];
            plane[i] = static_cast<uint8_t>(((255 - m) * plane[i] + m * value) / 255);
        }
    }

    int w_, h_, type_, intensity_;
    uint32_t color_;
    int frameNumber_ = 0;
    std::vector<PlainPlane> pictures_;
};

class Clouds : public testing::Test {
  protected:
    void Run(TestFrame& frame) {
        ASSERT_EQ(effect.Process(frame), kSuccess);
        ++shown;
    }
    /// Twenty pictures of random bytes: they serve as well as clouds and are faster to make.
    static void WriteRandomFile(size_t bytes = 20 * kRecord) {
        TestRandom random(9);
        std::vector<uint8_t> content(bytes);
        for (uint8_t& byte : content) byte = random.Byte();
        std::ofstream("perlin.dat", std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(bytes));
    }
    void ExpectEqual(int width, int height, int type, int intensity, uint32_t color, int frames) {
        Model model(width, height, type, intensity, color);
        for (int i = 0; i < frames; ++i) {
            TestFrame frame = StreamPicture(width, height, i), expected = frame;
            model.From(shown + 1)(expected);
            Run(frame);
            ASSERT_EQ(FirstDifference(frame, expected), "") << width << " by " << height << ", frame " << i;
        }
    }

    TemporaryDirectory directory;
    TestSurroundings surroundings;
    const SurroundingsScope scope{surroundings};
    EffectDriver effect{kGuid};
    int shown = 0;  ///< frames since the loop of these surroundings began
};

TEST_F(Clouds, KeepsTheContract) {
    WriteRandomFile();
    EXPECT_EQ(effect.Name(), "Clouds");
    ExpectContract(effect);
}

TEST_F(Clouds, EqualsItsModel) {
    WriteRandomFile();
    for (const auto& [w, h] : {std::pair{320, 240}, {176, 144}, {640, 480}, {161, 121}, {5, 2}, {1, 1}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        for (const auto& [type, intensity, color] :
             {std::tuple{1, 90, 0xC0C0C0U}, {2, 100, 0xFF0000U}, {3, 55, 0x2040FFU}, {1, 0, 0U}}) {
            ASSERT_EQ(effect.Set("type", std::to_string(type)), kSuccess);
            ASSERT_EQ(effect.Set("INTENSITY", std::to_string(intensity)), kSuccess);
            const std::string text = std::to_string(PackedRed(color)) + "," +
                                     std::to_string(PackedGreen(color)) + "," +
                                     std::to_string(PackedBlue(color));
            ASSERT_EQ(effect.Set("CloudColor", text), kSuccess);
            ExpectEqual(w, h, type, intensity, color, 6);
        }
    }
}

TEST_F(Clouds, MakesItsFileOnce) {
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    const std::vector<uint8_t> file = ReadFile();
    ASSERT_EQ(file.size(), 20 * kRecord);
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        EXPECT_EQ(entry.path().filename(), "perlin.dat");
    }
    // Spot checks of the formula.
    const auto& noise = surroundings.Shared<GradientNoise>(Rand);
    TestRandom random(1);
    for (int n = 0; n < 3000; ++n) {
        const int i = random.Below(20), x = random.Below(640), y = random.Below(480);
        const double t = i / 20.0;
        const double n1 = noise.Turbulence(x / 64.0, y / 64.0, 2 * t, 2, 2, 7);
        const double n2 = noise.Turbulence(x / 64.0, y / 64.0, 2 * (t - 1), 2, 2, 7);
        const int value = std::clamp(static_cast<int>(((1 - t) * n1 + t * n2 + 1.0) * 255.0 * 0.5), 0, 255);
        ASSERT_EQ(file[static_cast<size_t>(i) * kRecord + static_cast<size_t>(y * 640 + x)], value);
    }
    // What is there is read, not written.
    WriteRandomFile();
    const std::vector<uint8_t> other = ReadFile();
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    EXPECT_EQ(ReadFile(), other);
}

TEST_F(Clouds, MakesNoFileInADataFolderThatIsNotWritable) {
    surroundings.folder = "data/";
    surroundings.writable = false;
    std::filesystem::create_directory("data");
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    EXPECT_TRUE(std::filesystem::is_empty("data"));
    EXPECT_FALSE(std::filesystem::exists("perlin.dat"));
}

/// Neither the noise nor the place in the loop comes from effects in other surroundings.
TEST_F(Clouds, RepeatsItselfInSurroundingsAndADataFolderOfItsOwn) {
    std::vector<std::vector<uint8_t>> files;
    std::vector<uint64_t> frames;
    for (const char* folder : {"first/", "second/"}) {
        std::filesystem::create_directory(folder);
        TestSurroundings own;
        own.folder = folder;
        const SurroundingsScope within(own);
        EffectDriver clouds(kGuid);
        ASSERT_EQ(clouds.Configure(64, 48), kSuccess);
        files.push_back(ReadFile(std::string(folder) + "perlin.dat"));
        TestFrame frame = TestFrame(64, 48).DrawScene(1);
        ASSERT_EQ(clouds.Process(frame), kSuccess);
        frames.push_back(frame.Checksum());
    }
    EXPECT_EQ(files[0].size(), 20 * kRecord);
    EXPECT_EQ(files[0], files[1]);
    EXPECT_EQ(frames[0], frames[1]);
    EXPECT_FALSE(std::filesystem::exists("perlin.dat"));
}

TEST_F(Clouds, AllEffectsInTheseSurroundingsMoveOneLoop) {
    WriteRandomFile();
    EffectDriver other(kGuid);
    for (EffectDriver* each : {&effect, &other}) ASSERT_EQ(each->Configure(64, 48), kSuccess);
    for (int i = 0; i < 3; ++i) {
        ExpectEqual(64, 48, 1, 90, 0xC0C0C0, 1);
        std::swap(effect, other);
    }
}

TEST_F(Clouds, APhaseShowsTheNextPictureOnce) {
    WriteRandomFile();
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    Model model(64, 48, 1, 90, 0xC0C0C0U);
    surroundings.Shared<CloudLoop>().CloudPhase = 1;
    for (const int shows : {1, 1, 2}) {
        TestFrame frame = StreamPicture(64, 48, shows), expected = frame;
        model.From(shows)(expected);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, expected), "") << shows;
    }
}

TEST_F(Clouds, AShortFileRepeatsItsLastPicture) {
    WriteRandomFile(kRecord * 2 + 1000);
    ASSERT_EQ(effect.Configure(96, 80), kSuccess);
    ExpectEqual(96, 80, 1, 90, 0xC0C0C0, 25);
    WriteRandomFile(0);
    ASSERT_EQ(effect.Configure(96, 80), kSuccess);
    ExpectEqual(96, 80, 1, 90, 0xC0C0C0, 3);
}

TEST_F(Clouds, WhatIsNoFileShowsNoClouds) {
    const auto expectNoClouds = [&](const char* what) {
        ASSERT_EQ(effect.Configure(96, 80), kSuccess) << what;
        TestFrame frame = TestFrame(96, 80).Randomize(1);
        const TestFrame before = frame;
        Run(frame);
        EXPECT_EQ(FirstDifference(frame, before), "") << what;
    };
    std::filesystem::create_directory("perlin.dat");
    expectNoClouds("a directory");
    std::filesystem::remove("perlin.dat");
    ASSERT_EQ(mkfifo("perlin.dat", 0600), 0);  // reading it would wait for a writer that never comes
    expectNoClouds("a pipe");
}

TEST_F(Clouds, TypeTwoThinsToPatches) {
    std::vector<uint8_t> content(20 * kRecord, 87);
    const auto maskOf = [&](uint8_t noise) {
        std::fill(content.begin(), content.end(), noise);
        std::ofstream("perlin.dat", std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()),
                   static_cast<std::streamsize>(content.size()));
        EXPECT_EQ(effect.Configure(16, 16), kSuccess);
        EXPECT_EQ(effect.Set("Type", "2"), kSuccess);
        EXPECT_EQ(effect.Set("Intensity", "100"), kSuccess);
        EXPECT_EQ(effect.Set("CloudColor", "0,0,0"), kSuccess);
        TestFrame frame(16, 16);
        frame.Fill(255, 128, 128);
        Run(frame);
        return frame.y()[0];  // 255 less the mask, plus 16 of it
    };
    EXPECT_EQ(maskOf(87), 255);
    EXPECT_EQ(maskOf(196), ((255 - 206) * 255 + 206 * 16) / 255);
    EXPECT_EQ(maskOf(214), 16);
}

TEST_F(Clouds, HasThreeProperties) {
    EXPECT_EQ(effect.Get("CloudColor"), "192,192,192");
    EXPECT_EQ(effect.Get("Intensity"), "90");
    EXPECT_EQ(effect.Get("Type"), "1");
    for (const auto& [text, intensity, type] :
         {std::tuple{"0", "0", "1"}, {"-3", "0", "1"}, {"101", "100", "3"}, {"2", "2", "2"}}) {
        EXPECT_EQ(effect.Set("Intensity", text), kSuccess);
        EXPECT_EQ(effect.Set("Type", text), kSuccess);
        EXPECT_EQ(effect.Get("Intensity"), intensity);
        EXPECT_EQ(effect.Get("Type"), type);
    }
    char name[] = "Type", value[256] = "1";
    PropertyRecord record{0, name, value};
    EXPECT_EQ(effect->ApplyProperty(&record, 1), kNotImplemented);
    WidePropertyRecord wide{0, nullptr, nullptr};
    EXPECT_EQ(effect->ApplyProperty(&wide, 1), kNotImplemented);
}

}  // namespace
