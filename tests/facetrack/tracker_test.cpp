// The tracker on real pictures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "facetrack/FaceDetector.h"
#include "tests/facetrack/TestPictures.h"

namespace {

/// One cycle of four frames, shown as the cascade wants it: upside down. The face comes back upright.
CFaceRect FaceIn(CFaceDetector& detector, const CPlane8u& picture) {
    for (int frame = 0; frame < CFaceDetector::kFramesInCycle; ++frame) {
        CPlane8u copy = picture;
        copy.Mirror(0);
        detector.TrackFrame(copy);
    }
    CFaceRect face = detector.GetFace();
    if (face.width > 0) face.y = picture.height - face.y - face.height;
    return face;
}

bool IsAt(const CFaceRect& face, const FacePlace& place) {
    const double x = face.x + face.width / 2.0 - place.x, y = face.y + face.height / 2.0 - place.y;
    return face.width > 0 && std::hypot(x, y) <= place.size / 5;
}

class RealPictures : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(HaarFile())) GTEST_SKIP() << "no cascade was made";
        detector.SetCascadePath(HaarFile());
    }
    CFaceDetector detector;
};

/// Whether a face that the detector holds, all of them upside down, is the one at `place`.
bool Holds(const CFaceDetector& detector, const FacePlace& place, int32_t height) {
    return std::any_of(detector.Faces().begin(), detector.Faces().end(), [&](CFaceRect face) {
        face.y = height - face.y - face.height;
        return IsAt(face, place);
    });
}

TEST_F(RealPictures, TheFaceIsFoundMovedScaledAndMirrored) {
    // A face below a fifth of the frame's width is not looked for: here from a scale of about 0.85 on.
    int tried = 0, held = 0, largest = 0;
    for (const auto& [width, height] : {std::pair{640, 480}, {320, 240}}) {
        for (const double scale : {0.9, 1.0, 1.1, 1.2, 1.3, 1.4}) {
            for (const auto& [dx, dy, mirrored] : {std::tuple{0.0, 0.1, false},
                                                   {-0.05, 0.12, true},
                                                   {0.08, 0.05, false},
                                                   {0.03, 0.15, true}}) {
                FacePlace place{};
                const CPlane8u picture = PortraitAs(width, height, scale, dx, dy, mirrored, &place);
                ASSERT_TRUE(detector.Initialize(width, height));
                const CFaceRect face = FaceIn(detector, picture);
                ++tried;
                held += Holds(detector, place, height) ? 1 : 0;
                largest += IsAt(face, place) ? 1 : 0;
            }
        }
    }
    std::printf("%d pictures: %d faces found, %d of them as the largest\n", tried, held, largest);
    EXPECT_GE(held * 10, tried * 9);
}

TEST_F(RealPictures, NothingIsFoundWhereThereIsNoFace) {
    for (const auto& [width, height] : {std::pair{640, 480}, {320, 240}}) {
        ASSERT_TRUE(detector.Initialize(width, height));
        for (int i = 0; i < 20; ++i) {
            FaceIn(detector, FacelessPicture(i, width, height));
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
