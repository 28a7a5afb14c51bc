// Cascades designed to stall the frame thread: the work of a frame stays bounded.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "facetrack/FaceDetector.h"
#include "tests/facetrack/TestPictures.h"
#include "tests/support/GoldenRun.h"

namespace {

CPlane8u Noise(int32_t width, int32_t height) {
    CPlane8u plane(width, height);
    TestRandom random(1);
    for (size_t i = 0; i < plane.Size(); ++i) plane.data[i] = random.Byte();
    return plane;
}

/// One stage of `count` classifiers that accepts every window.
std::string OneStage(int windowWidth, int windowHeight, int count) {
    std::string text = std::to_string(windowWidth) + ' ' + std::to_string(windowHeight) + " 1 " +
                       std::to_string(count) + ' ' + std::to_string(count) + '\n' + std::to_string(count) +
                       " -1e30\n";
    for (int i = 0; i < count; ++i) text += "1\n0 0 3 3 1\n0 1 1\n";
    return text;
}

std::string EmptyStages(int windowWidth, int windowHeight, int count) {
    std::string text = std::to_string(windowWidth) + ' ' + std::to_string(windowHeight) + ' ' +
                       std::to_string(count) + " 0 0\n";
    for (int i = 0; i < count; ++i) text += "0 0\n";
    return text;
}

class WorstCascade : public testing::Test {
  protected:
    bool Initialize(const std::string& cascade, int32_t width, int32_t height) {
        std::ofstream("haar.txt") << cascade;
        return detector.Initialize(width, height);
    }

    /// The most that a frame of a cycle does, in stages and in merging hits.
    struct Work {
        int64_t stages = 0;
        uint64_t looks = 0;
    };
    Work MostInACycle(const CPlane8u& picture) {
        Work most;
        for (int i = 0; i < CFaceDetector::kFramesInCycle; ++i) {
            CPlane8u frame = picture;
            const uint64_t before = detector.Hits()->Looks();
            detector.TrackFrame(frame);
            most.stages = std::max(most.stages, detector.FrameWork());
            most.looks = std::max(most.looks, detector.Hits()->Looks() - before);
        }
        return most;
    }

    TemporaryDirectory directory;
    CFaceDetector detector;
};

TEST_F(WorstCascade, WindowsThatNeedHugeTablesAreRefused) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Initialize("1000 500 1 0 0 0 0", 1920, 1080));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR: face size and image size are invalid\n");
    EXPECT_TRUE(Initialize("100 100 1 0 0 0 0", 1920, 1080));
}

TEST_F(WorstCascade, AcceptingAllCostsABoundedNumberOfComparisons) {
    struct Case {
        int32_t windowWidth, windowHeight, width, height;
    };
    // The largest tables, enlarged and reduced pictures; windows far apart; small ones.
    for (const Case& c : {Case{270, 152, 1920, 1080},
                          {236, 176, 640, 480},
                          {76, 76, 1920, 1080},
                          {20, 20, 1920, 1080},
                          {3, 3, 320, 240}}) {
        SCOPED_TRACE(testing::Message() << c.windowWidth << " in " << c.width);
        ASSERT_TRUE(Initialize(EmptyStages(c.windowWidth, c.windowHeight, 1), c.width, c.height));
        const Work work = MostInACycle(Noise(c.width, c.height));
        EXPECT_GT(work.looks, 0U);
        EXPECT_LT(work.looks, 10'000'000U);
        EXPECT_LT(work.stages, 1'000'000);
        // Squares as large as faces soon contain each other, so the list that each group walks is short.
        EXPECT_LT(detector.Faces().size(), 200U);
    }
}

TEST_F(WorstCascade, StagesStopAtTheMostThatAFrameMayDo) {
    for (const std::string& cascade : {OneStage(200, 150, 20000), EmptyStages(200, 150, 100000),
                                       OneStage(20, 20, 100000), EmptyStages(20, 20, 200000)}) {
        ASSERT_TRUE(Initialize(cascade, 640, 480));
        EXPECT_LE(MostInACycle(Noise(640, 480)).stages, CFaceDetector::kMostFrameWork);
    }
    // A single stage with as many classifiers as a whole cascade still runs.
    ASSERT_TRUE(Initialize(OneStage(24, 24, 2500), 640, 480));
    MostInACycle(Noise(640, 480));
    EXPECT_GT(detector.GetFace().width, 0);
}

/// A stage looks at all positions, also at those that an earlier one has ruled out.
TEST_F(WorstCascade, PositionsWithoutAWindowCountToo) {
    CPlane8u plane(200, 150);
    plane.Fill(100);
    std::fill_n(plane.Row(70) + 90, 3, uint8_t{200});  // the only edges
    ASSERT_TRUE(Initialize(EmptyStages(20, 20, 3), 200, 150));
    EXPECT_EQ(detector.DetectAtScale(plane, 2), 0);
    // Those of features of at most 18 by 18 in 100 by 75 pixels, four for a unit, in each of three stages.
    constexpr int64_t kPositions = 83 * 58;
    EXPECT_GT(detector.FrameWork(), 3 * (kPositions / 4));
    EXPECT_LT(detector.FrameWork(), 3 * (kPositions / 4 + 100));
}

TEST_F(WorstCascade, ATrainedCascadeStaysFarBelow) {
    if (!std::filesystem::exists(HaarFile())) GTEST_SKIP() << "no cascade was made";
    detector.SetCascadePath(HaarFile());
    for (const auto& [width, height] : {std::pair{1920, 1080}, {1080, 1920}, {640, 480}}) {
        ASSERT_TRUE(detector.Initialize(width, height));
        EXPECT_LT(MostInACycle(Noise(width, height)).stages, CFaceDetector::kMostFrameWork / 20);
        FacePlace place{};
        const CPlane8u portrait = PortraitAs(width, height, 1.1, 0, 0.1, false, &place);
        EXPECT_LT(MostInACycle(portrait).stages, CFaceDetector::kMostFrameWork / 20);
    }
}

}  // namespace
