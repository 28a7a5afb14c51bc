// Cascade files, good and bad, the converter, and the detector's bookkeeping.
#include "facetrack/Cascade.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "facetrack/FaceDetector.h"
#include "tests/facetrack/TestPictures.h"
#include "tests/imaging/models/DetectionModels.h"
#include "tests/imaging/models/NeighbourhoodModels.h"
#include "tests/support/GoldenRun.h"

namespace {

/// A cascade of one stage with one classifier of two rectangles in a window of 8 by 6.
constexpr const char* kSmall = "8 6 1 1 2\n1 0.5\n2\n1 2 4 3 -1\n0 0 2 6 2.5\n0.25 -1 1.5\n";

class CascadeFile : public testing::Test {
  protected:
    int32_t Load(const std::string& text) {
        std::ofstream("cascade.txt") << text;
        return cascade.LoadCascade("cascade.txt");
    }
    TemporaryDirectory directory;
    Cascade cascade;
};

TEST_F(CascadeFile, IsReadAsItStands) {
    ASSERT_EQ(Load(kSmall), 0);
    EXPECT_EQ(cascade.windowWidth, 8);
    EXPECT_EQ(cascade.windowHeight, 6);
    ASSERT_EQ(cascade.stages.size(), 1U);
    EXPECT_EQ(cascade.stages[0].threshold, 0.5F);
    ASSERT_EQ(cascade.rects.size(), 2U);
    EXPECT_EQ(cascade.rects[0].height, 3);
    EXPECT_EQ(cascade.weights[1], 2.5F);
    EXPECT_EQ(cascade.valueBelow[0], -1.0F);
    EXPECT_EQ(cascade.valueAbove[0], 1.5F);
}

TEST_F(CascadeFile, IsPreparedForTheClassifier) {
    ASSERT_EQ(Load(kSmall), 0);
    ASSERT_EQ(cascade.PrepareCascade(1, 0.0001), kPrimOk);
    const auto scale = static_cast<float>(1.0 / (6 * 4));
    EXPECT_EQ(cascade.weights[0], -1.0F * scale);
    EXPECT_EQ(cascade.weights[1], 2.5F * scale);
    EXPECT_EQ(cascade.stages[0].threshold, static_cast<float>(0.5F - 0.0001));
    EXPECT_EQ(cascade.rects[0].y, 6 - 3 - 2);
    EXPECT_EQ(cascade.rects[1].y, 0);
    EXPECT_EQ(cascade.featureWidth, 6);  // at least the window less 2
    EXPECT_EQ(cascade.featureHeight, 6);
}

TEST_F(CascadeFile, BadOnesAreRefused) {
    const std::string good = kSmall;
    for (const char* text :
         {"",
          "8",
          "8 6 1 1",
          "no numbers at all",
          "8 6 1 1 2\n1 0.5\n2\n1 2 4 3 -1\n",
          "8 6 1 1 3\n1 0.5\n2\n1 2 4 3 -1\n0 0 2 6 2.5\n0.25 -1 1.5\n",  // fewer rectangles than stated
          "8 6 1 1 1\n1 0.5\n2\n1 2 4 3 -1\n0 0 2 6 2.5\n0.25 -1 1.5\n",  // more
          "8 6 1 2 2\n1 0.5\n2\n1 2 4 3 -1\n0 0 2 6 2.5\n0.25 -1 1.5\n",  // fewer classifiers
          "8 6 2 1 2\n1 0.5\n2\n1 2 4 3 -1\n0 0 2 6 2.5\n0.25 -1 1.5\n",  // fewer stages
          "8 6 1 0 2\n1 0.5\n2\n1 2 4 3 -1\n0 0 2 6 2.5\n0.25 -1 1.5\n",  // more classifiers
          "2 6 1 1 2\n1 0.5\n2\n1 2 4 3 -1\n0 0 2 6 2.5\n0.25 -1 1.5\n",  // a window below 3 by 3
          "0 0 0 0 0\n",
          "-8 6 1 1 2\n",
          "8 6 -1 -1 -1\n",
          "8 6 1000000 1 1\n1 0.5\n",
          "8 6 1 2147483647 2147483647\n2147483647 0.5\n2147483647\n",
          "99999999999 6 1 1 2\n",
          "6 2 1 1 2\n1 0.5\n2\n1 2 4 3 -1\n0 0 2 6 2.5\n0.25 -1 1.5\n",
          "8 6 1048577 0 0\n",
          "8 6 1 1048577 0\n",
          "8 6 1 0 1048577\n",  // more than any cascade has
          "8 6 1 1 2\n1 0.5\n2\n1 2 4 3 x\n0 0 2 6 2.5\n0.25 -1 1.5\n"}) {
        EXPECT_EQ(Load(text), -5) << text;
        EXPECT_TRUE(cascade.stages.empty() && cascade.rects.empty()) << text;
    }
    EXPECT_EQ(cascade.LoadCascade("missing.txt"), -5);
    EXPECT_EQ(cascade.LoadCascade("."), -5);
    ASSERT_EQ(mkfifo("pipe", 0600), 0);  // reading it would wait for a writer that never comes
    EXPECT_EQ(cascade.LoadCascade("pipe"), -5);
    std::ofstream("binary.txt", std::ios::binary).write("\x7F\x45\x4C\x46\0\1\2\3", 8);
    EXPECT_EQ(cascade.LoadCascade("binary.txt"), -5);
    EXPECT_EQ(Load(good), 0);
}

TEST_F(CascadeFile, NumbersAreThoseOfScanf) {
    // The same text read by the C library itself, from a process with a decimal point.
    for (const char* number : {"0.5",
                               "+.5",
                               "5.",
                               "1e60",
                               "-1e60",
                               "1e-60",
                               "1e-40",
                               "inf",
                               "-INF",
                               "Infinity",
                               "nan",
                               "0x1.8p3",
                               "-0X.8",
                               "0x1.000001p0",
                               "0x1.0000010000000001p0",
                               "3.4028236e38",
                               "16777217",
                               "1.17549428e-38",
                               "0.00000000000000000000000000000000000000000000140129846",
                               "1.00000017881393432617187499",
                               "1.00000017881393432617187500",
                               "0x",
                               "e5",
                               ".",
                               "--1",
                               "infinit",
                               "1e",
                               "1,5",
                               ""}) {
        const std::string text = std::string("8 6 1 0 0\n0 ") + number + "\n";
        float expected = 0;
        const bool good = std::sscanf(text.c_str(), "8 6 1 0 0\n0 %g", &expected) == 1;
        EXPECT_EQ(Load(text), good ? 0 : -5) << number;
        if (!good) continue;
        ASSERT_EQ(cascade.stages.size(), 1U) << number;
        EXPECT_EQ(std::bit_cast<uint32_t>(cascade.stages[0].threshold), std::bit_cast<uint32_t>(expected))
            << number;
    }
    // A number ends where it cannot go on, with or without space.
    ASSERT_EQ(Load("\v8\f6\r1\t1 1 1.5 1 0 0 2 3-1 .25-1+1e0"), 0);
    EXPECT_EQ(cascade.stages[0].threshold, 0.5F);
    EXPECT_EQ(cascade.rects[0].height, 3);
    EXPECT_EQ(cascade.weights[0], -1.0F);
    EXPECT_EQ(cascade.classifierThreshold[0], 0.25F);
    EXPECT_EQ(cascade.valueBelow[0], -1.0F);
    EXPECT_EQ(cascade.valueAbove[0], 1.0F);
}

/// While it exists the process has a decimal comma, where this system has such a locale.
class DecimalComma {
  public:
    DecimalComma() : before_(std::setlocale(LC_ALL, nullptr)) {
        if (std::system("localedef --no-archive -i de_DE -f UTF-8 ./de_DE.UTF-8 >log 2>&1") != 0) return;
        setenv("LOCPATH", std::filesystem::current_path().c_str(), 1);
        std::setlocale(LC_ALL, "de_DE.UTF-8");
    }
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;
    ~DecimalComma() {
        std::setlocale(LC_ALL, before_.c_str());
        unsetenv("LOCPATH");
    }
    static bool Holds() {
        float value = 0;
        return std::sscanf("1,5", "%g", &value) == 1 && value == 1.5F;
    }

  private:
    std::string before_;
};

TEST_F(CascadeFile, IsReadWithAPointWhereTheProcessHasAComma) {
    const DecimalComma comma;
    if (!DecimalComma::Holds()) GTEST_SKIP() << "no locale with a decimal comma can be made";
    ASSERT_EQ(Load(kSmall), 0);
    EXPECT_EQ(cascade.stages[0].threshold, 0.5F);
    EXPECT_EQ(cascade.weights[1], 2.5F);
    EXPECT_EQ(Load("8 6 1 0 0\n0 0,5\n"), 0);
    EXPECT_EQ(cascade.stages[0].threshold, 0.0F);
    EXPECT_TRUE(DecimalComma::Holds()) << "reading changed the process's own locale";
}

TEST_F(CascadeFile, RectanglesWithNegativeNumbersAreIllegal) {
    // The last ones begin at a negative y when they have been turned over.
    for (const char* rect :
         {"-1 2 4 3", "1 2 0 3", "1 2 4 0", "1 2 -4 3", "1 2 4 -3", "1 4 4 3", "2147483647 2 2147483647 3",
          "1 2147483647 4 2147483647", "1 -2147483648 4 2147483647"}) {
        ASSERT_EQ(Load("8 6 1 1 1\n1 0.5\n1\n" + std::string(rect) + " -1\n0.25 -1 1.5\n"), 0) << rect;
        EXPECT_NE(cascade.PrepareCascade(1, 0.0001), kPrimOk) << rect;
    }
    ASSERT_EQ(Load("8 6 1 1 0\n1 0.5\n0\n0.25 -1 1.5\n"), 0);  // a classifier needs a rectangle
    EXPECT_NE(cascade.PrepareCascade(1, 0.0001), kPrimOk);
}

TEST_F(CascadeFile, RectanglesMayReachPastTheFarEdges) {
    ASSERT_EQ(Load("8 6 1 2 2\n2 0.5\n1\n5 1 4 3 -1\n0.25 -1 1.5\n1\n1 -3 4 3 1\n0.25 -1 1.5\n"), 0);
    ASSERT_EQ(cascade.PrepareCascade(1, 0.0001), kPrimOk);
    EXPECT_EQ(cascade.rects[1].y, 6);
    EXPECT_EQ(cascade.featureWidth, 9);
    EXPECT_EQ(cascade.featureHeight, 9);
}

TEST_F(CascadeFile, NeedsAStageButNotAClassifier) {
    ASSERT_EQ(Load("8 6 0 0 0\n"), 0);
    EXPECT_NE(cascade.PrepareCascade(1, 0.0001), kPrimOk);
    ASSERT_EQ(Load("8 6 1 0 0\n0 0\n"), 0);
    EXPECT_EQ(cascade.PrepareCascade(1, 0.0001), kPrimOk);
    // Before, between and after others.
    ASSERT_EQ(Load("8 6 4 1 1\n0 0\n0 0\n1 0.5\n1\n1 2 4 3 -1\n0.25 -1 1.5\n0 0\n"), 0);
    EXPECT_EQ(cascade.PrepareCascade(1, 0.0001), kPrimOk);
}

TEST_F(CascadeFile, MayHaveAHundredMegabytes) {
    {
        std::ofstream file("cascade.txt");
        file << "8 6 1000000 0 0\n";
        for (int i = 0; i < 1000000; ++i) file << "0 1\n";
        const std::string padding(1 << 20, ' ');
        for (int i = 0; i < 96; ++i) file << padding;
    }
    EXPECT_EQ(cascade.LoadCascade("cascade.txt"), 0);
    EXPECT_EQ(cascade.stages.size(), 1000000U);
}

class Detector : public CascadeFile {
  protected:
    /// What `Initialize` says on the standard error stream.
    std::string Complaint(int32_t width, int32_t height) {
        testing::internal::CaptureStderr();
        initialized = detector.Initialize(width, height);
        return testing::internal::GetCapturedStderr();
    }
    CFaceDetector detector;
    bool initialized = false;
};

TEST_F(Detector, SaysWhatIsWrong) {
    EXPECT_EQ(Complaint(320, 240), "ERROR: cascade file is incorrect\n");
    EXPECT_FALSE(initialized);
    std::ofstream("haar.txt") << kSmall;  // an empty path means this name
    EXPECT_EQ(Complaint(320, 240), "");
    EXPECT_TRUE(initialized);
    detector.SetCascadePath(nullptr);
    EXPECT_EQ(Complaint(7, 240), "ERROR: face size and image size are invalid\n");
    EXPECT_EQ(Complaint(0, 0), "ERROR: face size and image size are invalid\n");
    for (const char* bad :
         {"8 6 1 1 1\n1 0.5\n1\n-7 0 3 3 -1\n0.25 -1 1.5\n", "8 6 0 0 0\n", "1000 500 0 0 0"}) {
        std::ofstream("bad.txt") << bad;
        detector.SetCascadePath("bad.txt");
        EXPECT_EQ(Complaint(1920, 1080), "ERROR: cascade is illegal\n") << bad;
        EXPECT_FALSE(initialized) << bad;
        EXPECT_EQ(detector.Hits(), nullptr) << bad;
    }
    std::ofstream("wide.txt") << "10000 10000 1 0 0\n0 0\n";
    detector.SetCascadePath("wide.txt");
    EXPECT_EQ(Complaint(320, 240), "ERROR: face size and image size are invalid\n");
    EXPECT_EQ(Complaint(16384, 16384), "ERROR: face size and image size are invalid\n");

    // Without a cascade frames pass unchanged.
    CPlane8u plane(320, 240);
    for (int i = 0; i < 9; ++i) detector.TrackFrame(plane);
    EXPECT_EQ(SumPixels(plane), 0U);
    EXPECT_EQ(detector.GetFace().width, 0);
}

TEST_F(Detector, CutsTheScalesIntoGroups) {
    std::ofstream("haar.txt") << "20 20 1 0 0\n0 0\n";
    std::vector<std::pair<int32_t, int32_t>> sizes = {{320, 240}, {1920, 1080}, {64, 48}, {4000, 64}};
    for (int32_t height = 150; height <= 640; height += 5) sizes.push_back({640, height});
    size_t opening = 0, closing = 0, late = 0;
    for (const auto& [width, height] : sizes) {
        ASSERT_TRUE(detector.Initialize(width, height));
        EXPECT_EQ(detector.MinFaceSize(), width / 5);
        float scale = static_cast<float>(width / 5) / 20.0F;
        size_t i = 0;
        int64_t total = 0;
        const auto& scales = detector.Scales();
        for (; 25 < static_cast<float>(width) / scale && 25 < static_cast<float>(height) / scale &&
               20 * scale < static_cast<float>(width);
             ++i) {
            ASSERT_LT(i, scales.size());
            EXPECT_EQ(scales[i].scale, scale);
            EXPECT_EQ(scales[i].scaledWidth, static_cast<int>(static_cast<float>(width) / scale));
            EXPECT_EQ(scales[i].scaledHeight, static_cast<int>(static_cast<float>(height) / scale));
            total += scales[i].scaledWidth * scales[i].scaledHeight;
            scale = static_cast<float>(scale * 1.12);
        }
        EXPECT_EQ(i, scales.size());
        int group = 0;
        int64_t run = 0;
        for (const CScaleEntry& entry : scales) {
            const int64_t area = int64_t{entry.scaledWidth} * entry.scaledHeight;
            run += area;
            int expected = group;
            if (run > total / 4) {
                ++group;
                if (run > total / 4 + total / 4 / 5) {
                    expected = group;
                    run = area;
                    ++opening;
                } else {
                    run = 0;
                    ++closing;
                }
            }
            EXPECT_EQ(entry.group, expected);
            late += entry.group > 3 ? 1 : 0;
        }
    }
    // Every case occurred.
    EXPECT_GT(opening, 0U);
    EXPECT_GT(closing, 0U);
    EXPECT_GT(late, 0U);
    ASSERT_TRUE(detector.Initialize(64, 48));
    EXPECT_LT(detector.Scales().front().scale, 1.0F);  // a frame narrower than five windows
}

TEST(EdgeMask, HasThreeKindsOfGradient) {
    constexpr int kWidth = 61, kHeight = 47, kStep = 70;
    const TestFrame scene = TestFrame(kWidth, kHeight).DrawScene(2);
    const uint8_t* const src = scene.plane(0).data();
    CFaceDetector detector;
    for (int type = 0; type < 3; ++type) {
        std::vector<int16_t> dx(kWidth * kHeight), dy(dx.size());
        constexpr int kGradientStep = 2 * kWidth;
        if (type == 2) {
            model::PrimScharrVertBorder8u16s(src, kWidth, dx.data(), kGradientStep, kWidth, kHeight, 1, 0,
                                             nullptr);
            model::PrimScharrHorizBorder8u16s(src, kWidth, dy.data(), kGradientStep, kWidth, kHeight, 1, 0,
                                              nullptr);
        } else {
            const int mask = type == 0 ? 33 : 55;
            model::PrimSobelVertBorder8u16s(src, kWidth, dx.data(), kGradientStep, kWidth, kHeight, mask, 1,
                                            0, nullptr);
            model::PrimSobelHorizBorder8u16s(src, kWidth, dy.data(), kGradientStep, kWidth, kHeight, mask, 1,
                                             0, nullptr);
        }
        const float low[] = {8, 96, 32}, high[] = {24, 288, 96};
        std::vector<uint8_t> edges(kStep * kHeight, 7), expected = edges;
        model::PrimCanny16s8u(dx.data(), kGradientStep, dy.data(), kGradientStep, expected.data(), kStep,
                              kWidth, kHeight, low[type], high[type], nullptr);
        EXPECT_EQ(detector.MakeEdgeMask(src, kWidth, edges.data(), kStep, kWidth, kHeight, type), 0);
        EXPECT_EQ(edges, expected) << type;
        EXPECT_NE(std::count(edges.begin(), edges.end(), 255), 0) << type;
    }
    std::vector<uint8_t> untouched(kStep * kHeight, 7), edges = untouched;
    for (const int type : {-1, 3}) {
        EXPECT_EQ(detector.MakeEdgeMask(src, kWidth, edges.data(), kStep, kWidth, kHeight, type), -2);
    }
    EXPECT_EQ(edges, untouched);
}

TEST(Faces, AreMergedFromClusters) {
    CFaceDetector detector;
    CHitStore store(5.0F, 1.3F);
    detector.MergeFaces(store);
    EXPECT_TRUE(detector.Faces().empty());
    EXPECT_EQ(detector.GetFace().width, 0);

    // Two clusters that make one face, one far off, and one that lies inside the first.
    for (const Hit hit : {Hit{100, 100, 60}, {103, 101, 62}, {101, 99, 61}, {200, 100, 60}, {102, 108, 58}}) {
        store.Add(hit);
    }
    ASSERT_EQ(store.Rows().size(), 3U);
    detector.MergeFaces(store);
    ASSERT_EQ(detector.Faces().size(), 2U);
    const CFaceRect first = detector.Faces()[0];
    // (101, 100, 61) and (102, 108, 58): the box round both squares.
    EXPECT_EQ(first.x, 71);
    EXPECT_EQ(first.y, 70);
    EXPECT_EQ(first.width, 61);
    EXPECT_EQ(first.height, 67);
    EXPECT_EQ(detector.Faces()[1].x, 170);
    EXPECT_EQ(detector.GetFace().height, 67);

    // An empty cycle falls back to the list before it, two of them to nothing.
    store.Clear();
    detector.MergeFaces(store);
    EXPECT_TRUE(detector.Faces().empty());
    EXPECT_EQ(detector.GetFace().height, 67);
    detector.MergeFaces(store);
    EXPECT_EQ(detector.GetFace().height, 0);
}

TEST(Faces, OfEqualSizeTheEarlierCounts) {
    CFaceDetector detector;
    CHitStore store(5.0F, 1.3F);
    store.Add({300, 200, 50});
    store.Add({100, 100, 50});
    detector.MergeFaces(store);
    store.Clear();
    detector.MergeFaces(store);
    ASSERT_EQ(detector.PreviousFaces().size(), 2U);
    EXPECT_EQ(detector.GetFace().x, 275);
}

TEST(Faces, AreOutlinedWithinThePlane) {
    CFaceDetector detector;
    CHitStore store(5.0F, 1.3F);
    store.Add({10, 10, 60});  // reaches out at the upper left
    store.Add({90, 70, 30});  // ends beyond the lower right
    // These lie entirely outside: left, right, above and below, by one pixel and by many.
    for (const Hit hit : {Hit{-10, 60, 20}, {110, 40, 20}, {70, -10, 20}, {60, 90, 20}, {500, 500, 20}}) {
        store.Add(hit);
    }
    detector.MergeFaces(store);
    ASSERT_EQ(detector.Faces().size(), 7U);
    CPlane8u plane(100, 80);
    detector.DrawFaces(plane);
    // Squares of 40 and 25 are left of the two others, with sides that are outside drawn on the edge.
    EXPECT_EQ(SumPixels(plane), 255U * (4 * 40 - 4 + 4 * 25 - 4));
    EXPECT_EQ(plane.Row(0)[39], 255);
    EXPECT_EQ(plane.Row(39)[0], 255);
    EXPECT_EQ(plane.Row(39)[39], 255);
    EXPECT_EQ(plane.Row(20)[20], 0);
    EXPECT_EQ(plane.Row(79)[80], 255);  // the bottom line lies on the last row
    EXPECT_EQ(plane.Row(60)[99], 255);
}

std::string RunProgram(const std::string& command, int& code) {
    std::string text;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) throw std::system_error(errno, std::generic_category(), command);
    char part[256];
    while (std::fgets(part, sizeof part, pipe) != nullptr) text += part;
    code = WEXITSTATUS(pclose(pipe));
    return text;
}

class Converter : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(program)) GTEST_SKIP() << "the converter was not built";
    }
    std::string program = SE_BINARY_DIR "/tools/convert_cascade";
    std::string xml = "/usr/share/opencv4/haarcascades/";
    TemporaryDirectory directory;
};

TEST_F(Converter, MakesAFileThatCanBeUsed) {
    int code = 0;
    EXPECT_EQ(RunProgram(program + " " + xml + "haarcascade_frontalface_alt.xml out.txt", code), "");
    ASSERT_EQ(code, 0);
    Cascade cascade;
    ASSERT_EQ(cascade.LoadCascade("out.txt"), 0);
    EXPECT_EQ(cascade.windowWidth, 20);
    EXPECT_EQ(cascade.stages.size(), 22U);
    EXPECT_EQ(cascade.classifierThreshold.size(), 2135U);
    const PrimRect top = cascade.rects[0];
    EXPECT_EQ(top.y, 7);
    EXPECT_EQ(cascade.PrepareCascade(1, 0.0001), kPrimOk);

    RunProgram(program + " --from-bottom " + xml + "haarcascade_frontalface_alt.xml turned.txt", code);
    ASSERT_EQ(code, 0);
    ASSERT_EQ(cascade.LoadCascade("turned.txt"), 0);
    EXPECT_EQ(cascade.rects[0].y, 20 - top.height - 7);
}

TEST_F(Converter, EachWayUpFindsItsOwnFaces) {
    // From the top: for pictures shown upside down, as Picture Me does. From the bottom: for upright ones.
    int code = 0;
    RunProgram(program + " " + xml + "haarcascade_frontalface_default.xml top.txt", code);
    RunProgram(program + " --from-bottom " + xml + "haarcascade_frontalface_default.xml bottom.txt", code);
    ASSERT_EQ(code, 0);
    FacePlace place{};
    const CPlane8u upright = PortraitAs(640, 480, 1.1, 0, 0.1, false, &place);
    for (const bool fromBottom : {false, true}) {
        for (const bool upsideDown : {false, true}) {
            CFaceDetector detector;
            detector.SetCascadePath(fromBottom ? "bottom.txt" : "top.txt");
            ASSERT_TRUE(detector.Initialize(640, 480));
            for (int i = 0; i < 4; ++i) {
                CPlane8u picture = upright;
                if (upsideDown) picture.Mirror(0);
                detector.TrackFrame(picture);
            }
            const bool found =
                std::any_of(detector.Faces().begin(), detector.Faces().end(), [&](CFaceRect face) {
                    if (upsideDown) face.y = 480 - face.y - face.height;
                    return std::hypot(face.x + face.width / 2.0 - place.x,
                                      face.y + face.height / 2.0 - place.y) < place.size / 5;
                });
            EXPECT_EQ(found, fromBottom != upsideDown) << fromBottom << upsideDown;
        }
    }
}

TEST_F(Converter, RefusesWhatTheDetectorDoesNotKnow) {
    int code = 0;
    EXPECT_NE(
        RunProgram(program + " " + xml + "haarcascade_frontalface_alt2.xml out.txt", code).find("stumps"),
        std::string::npos);
    EXPECT_EQ(code, 1);
    std::ofstream("tilted.xml")
        << "<?xml version=\"1.0\"?><opencv_storage><cascade><featureType>HAAR</featureType>"
           "<height>20</height><width>20</width><stages/><features><_><rects><_>1 2 3 4 -1.</_>"
           "</rects><tilted>1</tilted></_></features></cascade></opencv_storage>";
    EXPECT_NE(RunProgram(program + " tilted.xml out.txt", code).find("tilted"), std::string::npos);
    EXPECT_EQ(code, 1);
    EXPECT_NE(RunProgram(program + " missing.xml out.txt", code).find("missing.xml"), std::string::npos);
    EXPECT_EQ(code, 1);
    RunProgram(program, code);
    EXPECT_EQ(code, 2);
    EXPECT_FALSE(std::filesystem::exists("out.txt"));
}

}  // namespace
