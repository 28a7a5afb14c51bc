#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "imaging/ScalarColor.h"
#include "tests/effects/drawing/DrawingModels.h"
#include "tests/support/GoldenRun.h"

namespace {

using namespace drawing_model;

constexpr const char* kGuids[2] = {"{A2BACBE0-498C-4681-BBEC-F39BB439CED1}",
                                   "{6772F07B-DE51-4FA9-A7C7-DE6430F437BF}"};

struct Kernel {
    int divisor;
    int taps[10];
};

/// Half up, with the reciprocal in single precision.
uint8_t Scaled(int sum, int divisor) {
    const double value = sum * static_cast<double>(1.0F / static_cast<float>(divisor));
    return static_cast<uint8_t>(value > 0 ? std::min(static_cast<int>(value + 0.5), 255) : 0);
}

void LineArtModel(TestFrame& frame, int red, int green, int blue) {
    const int w = frame.width(), h = frame.height();
    const Kernel kernel = w < 640 ? Kernel{1945, {1, 14, 70, 212, 414, 517, 414, 212, 70, 14}}
                                  : Kernel{92, {1, 4, 7, 10, 13, 14, 13, 10, 7, 4}};
    const int threshold = w < 640 ? 40 : 25;
    const PlainPlane luma = LumaOf(frame);
    PlainPlane rows = luma, blurred = luma;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            int sum = 0;
            for (int k = 0; k < 10; ++k) sum += kernel.taps[k] * luma(std::clamp(x + 5 - k, 0, w - 1), y);
            rows(x, y) = Scaled(sum, kernel.divisor);
        }
    }
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            int sum = 0;
            for (int k = 0; k < 10; ++k) {
                sum += kernel.taps[k] * std::as_const(rows)(x, std::clamp(y + 5 - k, 0, h - 1));
            }
            blurred(x, y) = Scaled(sum, kernel.divisor);
        }
    }
    const auto r = static_cast<uint8_t>(red), g = static_cast<uint8_t>(green), b = static_cast<uint8_t>(blue);
    const std::vector<int> strengths = EdgeStrengths(blurred);
    for (size_t i = 0; i < strengths.size(); ++i) {
        frame.plane(0)[i] = strengths[i] < threshold ? RgbToY(r, g, b) : 255;
    }
    std::fill(frame.plane(1).begin(), frame.plane(1).end(), RgbToU(r, g, b));
    std::fill(frame.plane(2).begin(), frame.plane(2).end(), RgbToV(r, g, b));
}

TEST(LineArt, KeepsTheContract) {
    for (const char* guid : kGuids) ExpectEffect(guid, "Line Art");
}

TEST(LineArt, HasOneProperty) {
    ExpectOnlyProperty(kGuids[0], PropTypeSet::Color, "BackgroundColor", "0,0,0");
    EffectDriver effect(kGuids[0]);
    EXPECT_EQ(effect.Get("BackgroundColor"), "0,128,255") << "not the table's default";
    EXPECT_EQ(effect.Set("BACKGROUNDCOLOR", "300,-5,7"), kSuccess);
    EXPECT_EQ(effect.Get("backgroundcolor"), "255,0,7");
    EXPECT_EQ(effect.Set("BackgroundColor", "12,34"), kSuccess);
    EXPECT_EQ(effect.Get("BackgroundColor"), "0,0,0");
}

TEST(LineArt, EqualsItsModel) {
    for (const char* guid : kGuids) {
        EffectDriver effect(guid);
        ExpectEqualsModel(effect, EveryFrame([](TestFrame& frame) { LineArtModel(frame, 0, 128, 255); }));
    }
    EffectDriver effect(kGuids[1]);
    effect.Set("BackgroundColor", "200,30,90");
    ExpectEqualsModel(
        effect, EveryFrame([](TestFrame& frame) { LineArtModel(frame, 200, 30, 90); }),
        {{639, 20}, {640, 20}, {641, 21}, {1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 3}, {5, 4}, {11, 13}});
}

/// An even size, so that a quarter of the luma's bytes is what chroma holds, and one where it is more.
TEST(LineArt, AUniformFrameIsFlatBackground) {
    EffectDriver effect(kGuids[0]);
    for (const auto& [w, h] : {std::pair{64, 48}, {639, 16}, {640, 16}}) {
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        TestFrame frame(w, h);
        frame.Fill(200, 90, 170);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame, TestFrame(w, h).Fill(RgbToY(0, 128, 255), RgbToU(0, 128, 255), RgbToV(0, 128, 255)));
    }
}

/// A ramp of 4 levels a pixel, of strength 32 however it is blurred: an edge at 640 pixels and none at 639.
TEST(LineArt, WideFramesHaveTheLowerThreshold) {
    EffectDriver effect(kGuids[0]);
    for (const int w : {639, 640}) {
        ASSERT_EQ(effect.Configure(w, 20), kSuccess);
        TestFrame frame(w, 20);
        for (int i = 0; i < w * 20; ++i) frame.y()[i] = static_cast<uint8_t>(std::min(4 * (i % w), 240));
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(std::count(frame.plane(0).begin(), frame.plane(0).end(), 255) != 0, w == 640) << w;
    }
}

// ---- settings files --------------------------------------------------------------------------------

class LineArtSettings : public testing::Test {
  protected:
    /// The result of `LoadSettings` for a file with this content.
    ResultCode Load(const std::string& content) {
        std::ofstream(path_, std::ios::binary) << content;
        return LoadPath(path_);
    }
    ResultCode LoadPath(std::string path) {
        SettingsRecord record{1, nullptr, path.data(), {2, 3}};
        return effect_->LoadSettings(&record);
    }
    std::string Color() { return effect_.Get("BackgroundColor"); }

    const TemporaryDirectory directory_;
    EffectDriver effect_{kGuids[0]};
    const std::string path_ = "settings.txt";
};

TEST_F(LineArtSettings, AreThreeNumbers) {
    const std::pair<const char*, const char*> files[] = {
        {"10 20 30", "10,20,30"}, {"300 -5 128", "255,0,128"},
        {"1\n2\n3\n", "1,2,3"},   {" \t1\r\n+2 \v\f 003 and a comment", "1,2,3"},
        {"0 0 9", "0,0,9"},       {"0 1 2 3 4", "0,1,2"},
    };
    for (const auto& [content, color] : files) {
        EXPECT_EQ(Load(content), kSuccess) << content;
        EXPECT_EQ(Color(), color) << content;
    }
}

TEST_F(LineArtSettings, AreBlackFromTheFirstThatIsMissing) {
    const std::pair<std::string, const char*> files[] = {
        {"", "0,0,0"},          {" \n ", "0,0,0"},       {"77", "77,0,0"},       {"77 88", "77,88,0"},
        {"77,88,99", "77,0,0"}, {"7x 8 9", "7,0,0"},     {"red 20 30", "0,0,0"}, {"5 - 6", "5,0,0"},
        {"5 --6 7", "5,0,0"},   {"0x10 20 30", "0,0,0"}, {"1e2 3 4", "1,0,0"},   {"4.5 6 7", "4,0,0"},
    };
    for (const auto& [content, color] : files) {
        EXPECT_EQ(Load("9 9 9"), kSuccess);
        EXPECT_EQ(Load(content), kSuccess) << content;
        EXPECT_EQ(Color(), color) << content;
    }
}

TEST_F(LineArtSettings, SaturateHugeNumbers) {
    EXPECT_EQ(Load("99999999999999999999999 -99999999999999999999999 5"), kSuccess);
    EXPECT_EQ(Color(), "255,0,5");
    EXPECT_EQ(Load("4294967296 2147483648 -2147483649"), kSuccess);
    EXPECT_EQ(Color(), "255,255,0");
    EXPECT_EQ(Load(std::string(100000, '9') + " 7 8"), kSuccess);
    EXPECT_EQ(Color(), "255,7,8");
}

TEST_F(LineArtSettings, SurviveRubbish) {
    TestRandom random(4);
    for (int i = 0; i < 50; ++i) {
        std::string rubbish(static_cast<size_t>(1 + i * 97), '\0');
        for (char& c : rubbish) c = static_cast<char>(random.Byte());
        EXPECT_EQ(Load(rubbish), kSuccess);
    }
    EXPECT_EQ(Load(std::string("\0\xFF\x80 1 2 3", 9)), kSuccess);
    EXPECT_EQ(Color(), "0,0,0");
    EXPECT_EQ(Load(std::string("7\0 8 9", 6)), kSuccess);
    EXPECT_EQ(Color(), "7,0,0");
}

TEST_F(LineArtSettings, FailWithoutAFileAndKeepTheColor) {
    ASSERT_EQ(Load("10 20 30"), kSuccess);
    EXPECT_EQ(effect_->LoadSettings(static_cast<SettingsRecord*>(nullptr)), kFailure);
    EXPECT_EQ(effect_->LoadSettings(static_cast<WideSettingsRecord*>(nullptr)), kFailure);
    SettingsRecord noPath{};
    EXPECT_EQ(effect_->LoadSettings(&noPath), kFailure);
    WideSettingsRecord noWidePath{};
    EXPECT_EQ(effect_->LoadSettings(&noWidePath), kFailure);
    EXPECT_EQ(LoadPath(path_ + ".missing"), kFailure);
    EXPECT_EQ(LoadPath(""), kFailure);
    EXPECT_EQ(LoadPath(directory_.path()), kFailure) << "a directory";
    std::filesystem::remove(path_);
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(LoadPath(path_), kFailure) << "a pipe, which would wait for a writer that never comes";
    EXPECT_EQ(Color(), "10,20,30");
}

TEST_F(LineArtSettings, HaveAWideForm) {
    ASSERT_EQ(Load("10 20 30"), kSuccess);
    effect_.Set("BackgroundColor", "0,0,0");
    std::basic_string<WideChar> wide(path_.begin(), path_.end());
    WideSettingsRecord record{1, nullptr, wide.data(), {2, 3}};
    EXPECT_EQ(effect_->LoadSettings(&record), kSuccess);
    EXPECT_EQ(Color(), "10,20,30");
}

TEST_F(LineArtSettings, TakeHoldAtTheNextFrame) {
    ASSERT_EQ(effect_.Configure(32, 32), kSuccess);
    TestFrame frame(32, 32);
    ASSERT_EQ(effect_.Process(frame), kSuccess);
    ASSERT_EQ(Load("250 240 20"), kSuccess);
    ASSERT_EQ(effect_.Process(frame), kSuccess);
    EXPECT_EQ(frame,
              TestFrame(32, 32).Fill(RgbToY(250, 240, 20), RgbToU(250, 240, 20), RgbToV(250, 240, 20)));
}

}  // namespace
