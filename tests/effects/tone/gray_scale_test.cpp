#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/EffectDriver.h"

namespace {

constexpr const char* kGuid = "{CC006219-72F8-4E49-8E12-6E05B59269E9}";

TEST(GrayScale, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Gray Scale");
    ExpectContract(effect, {.needsWorkspace = false, .needsLuma = false});
}

TEST(GrayScale, NeutralisesChromaAndLeavesLuma) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(65, 33), kSuccess);
    TestFrame frame(65, 33);
    frame.Randomize(1);
    TestFrame expected = frame;
    std::fill(expected.plane(1).begin(), expected.plane(1).end(), uint8_t{128});
    std::fill(expected.plane(2).begin(), expected.plane(2).end(), uint8_t{128});
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, expected), "");
}

TEST(GrayScale, TakesTheByteCountsFromTheFrame) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(32, 32), kSuccess);
    TestFrame frame(32, 32);
    frame.Randomize(2);
    TestFrame expected = frame;
    frame.image().PlaneSize[1] = 0;
    frame.image().PlaneSize[2] = 5;
    std::fill_n(expected.v(), 5, uint8_t{128});
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, expected), "");

    frame.image().PlaneSize[1] = -7;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, expected), "");
}

TEST(GrayScale, NeverLooksAtLuma) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(32, 32), kSuccess);
    TestFrame frame(32, 32);
    frame.Randomize(3);
    frame.image().Plane[0] = nullptr;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(frame.u()[0], 128);
    EXPECT_EQ(frame.v()[255], 128);
}

TEST(GrayScale, HasNoProperties) {
    ExpectNoProperties(kGuid);
}

}  // namespace
