// The tracker on real pictures.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <tuple>
#include <utility>

#include "facetrack/FaceDetector.h"
#include "tests/facetrack/TestPictures.h"

namespace {

/// One cycle of four frames, shown as the cascade wants it: upside down.
void Track(CFaceDetector& detector, const CPlane8u& picture) {
    for (int frame = 0; frame < CFaceDetector::kFramesInCycle; ++frame) {
        CPlane8u copy = picture;
        copy.Mirror(0);
        detector.TrackFrame(copy);
    }
}

class RealPictures : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(HaarFile())) GTEST_SKIP() << "no cascade was made";
        detector.SetCascadePath(HaarFile());
    }
    CFaceDetector detector;
};

TEST_F(RealPictures, TheFaceIsFoundMovedScaledAndMirrored) {
    // Smaller than that a face comes close to a fifth of the frame's width, below which none is looked for.
    int tried = 0, held = 0, largest = 0;
    for (const auto& [width, height] : {std::pair{640, 480}, {320, 240}}) {
        for (const double scale : {1.0, 1.1, 1.2, 1.3, 1.4}) {
            for (const auto& [dx, dy, mirrored] : {std::tuple{0.0, 0.1, false},
                                                   {-0.05, 0.12, true},
                                                   {0.08, 0.05, false},
                                                   {0.03, 0.15, true},
                                                   {0.0, 0.0, false},
                                                   {0.0, 0.0, true},
                                                   {-0.1, 0.08, false},
                                                   {0.06, 0.1, true}}) {
                FacePlace place{};
                const CPlane8u picture = PortraitAs(width, height, scale, dx, dy, mirrored, &place);
                ASSERT_TRUE(detector.Initialize(width, height));
                Track(detector, picture);
                ++tried;
                held += Holds(detector, place, height) ? 1 : 0;
                largest += IsAt(detector.GetFace(), place, height) ? 1 : 0;
            }
        }
    }
    std::printf("%d pictures: %d faces found, %d of them as the largest\n", tried, held, largest);
    EXPECT_GE(held * 10, tried * 9);
    EXPECT_GE(largest * 4, tried * 3);
}

TEST_F(RealPictures, FacesBelowAFifthOfTheWidthAreNotLookedFor) {
    for (const auto& [width, height] : {std::pair{640, 480}, {320, 240}}) {
        ASSERT_TRUE(detector.Initialize(width, height));
        FacePlace place{};
        Track(detector, PortraitAs(width, height, 0.6, 0, 0.1, false, &place));
        EXPECT_TRUE(detector.Faces().empty());
        Track(detector, PortraitAs(width, height, 1.2, 0, 0.1, false, &place));
        ASSERT_TRUE(Holds(detector, place, height));
        for (const CFaceRect& face : detector.Faces()) EXPECT_GE(face.width, width / 5);
    }
}

TEST_F(RealPictures, NothingIsFoundWhereThereIsNoFace) {
    for (const auto& [width, height] : {std::pair{640, 480}, {320, 240}}) {
        ASSERT_TRUE(detector.Initialize(width, height));
        for (int i = 0; i < 20; ++i) {
            Track(detector, FacelessPicture(i, width, height));
            EXPECT_EQ(detector.Faces().size(), 0U) << "picture " << i;
        }
    }
}

TEST_F(RealPictures, UpsideDownNothingIsFound) {
    // The cascade counts from the window's top, so that an upright picture is upside down to it.
    FacePlace place{};
    const CPlane8u picture = PortraitAs(640, 480, 1.0, 0, 0.1, false, &place);
    ASSERT_TRUE(detector.Initialize(640, 480));
    for (int frame = 0; frame < CFaceDetector::kFramesInCycle; ++frame) {
        CPlane8u copy = picture;
        detector.TrackFrame(copy);
    }
    EXPECT_EQ(detector.GetFace().width, 0);
}

}  // namespace
