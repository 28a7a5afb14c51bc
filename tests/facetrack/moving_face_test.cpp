// The tracker on a face that moves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>
#include <tuple>

#include "facetrack/FaceDetector.h"
#include "tests/facetrack/TestPictures.h"

namespace {

/// Frame `index` of the portrait in front of a hand-held camera: a slow pan, a slow zoom, a trembling hand
/// and the noise of the sensor.
CPlane8u MovingPortrait(int32_t width, int32_t height, int index, FacePlace* place) {
    const auto wave = [index](double period, double phase) {
        return std::sin(2 * std::numbers::pi * (index / period + phase));
    };
    const double scale = 1.2 + 0.08 * wave(90, 0.75);
    const double dx = 0.06 * wave(75, 0) + 0.003 * wave(7, 0.1);
    const double dy = 0.08 + 0.03 * wave(100, 0.3) + 0.003 * wave(9, 0.5);
    CPlane8u picture = PortraitAs(width, height, scale, dx, dy, false, place);
    TestRandom random(static_cast<uint64_t>(index));
    for (size_t i = 0; i < picture.Size(); ++i) {
        const int value = picture.data[i] + random.Below(13) - 6;
        picture.data[i] = static_cast<uint8_t>(std::clamp(value, 0, 255));
    }
    return picture;
}

TEST(MovingFace, IsHeldInEveryCycle) {
    if (!std::filesystem::exists(HaarFile())) GTEST_SKIP() << "no cascade was made";
    constexpr int kFrames = CFaceDetector::kFramesInCycle;
    for (const auto& [width, height, cycles] : {std::tuple{320, 240, 24}, {640, 480, 10}}) {
        SCOPED_TRACE(testing::Message() << width << " by " << height);
        CFaceDetector detector;
        detector.SetCascadePath(HaarFile());
        ASSERT_TRUE(detector.Initialize(width, height));
        int largest = 0;
        for (int i = 0; i < cycles * kFrames; ++i) {
            FacePlace place{};
            CPlane8u picture = MovingPortrait(width, height, i, &place);
            picture.Mirror(0);  // as the cascade wants it
            detector.TrackFrame(picture);
            if (i % kFrames != kFrames - 1) continue;
            EXPECT_TRUE(Holds(detector, place, height)) << "frame " << i;
            largest += IsAt(detector.GetFace(), place, height) ? 1 : 0;
        }
        // Picture Me takes the largest that is known.
        std::printf("%d cycles, in %d of them as the largest\n", cycles, largest);
        EXPECT_GE(largest * 10, cycles * 9);
    }
}

}  // namespace
