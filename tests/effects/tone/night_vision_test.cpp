#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/EffectDriver.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{84DF0F59-4E9F-49AA-8DA0-C46E23D07128}";

void Negate(TestFrame& frame) {
    for (int p = 0; p < 3; ++p) {
        for (uint8_t& byte : frame.plane(p)) byte ^= 255;
    }
}

TEST(Polarize, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Polarize");
    ExpectContract(effect, {.needsWorkspace = false, .needsLuma = false});
}

TEST(Polarize, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int32_t, int32_t) { return Negate; });
}

TEST(Polarize, InvertsLumaAndChroma) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(16, 16), kSuccess);
    TestFrame frame = TestFrame(16, 16).Fill(0, 128, 200);
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, TestFrame(16, 16).Fill(255, 127, 55)), "");
}

TEST(Polarize, TwoPassesGiveTheFrameBack) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(67, 35), kSuccess);
    const TestFrame before = TestFrame(67, 35).Randomize(4);
    TestFrame frame = before;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_NE(FirstDifference(frame, before), "");
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, before), "");
}

TEST(Polarize, GoesOnWithoutLuma) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(16, 16), kSuccess);
    TestFrame frame = TestFrame(16, 16).Fill(10, 20, 30);
    frame.image().Plane[0] = nullptr;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, TestFrame(16, 16).Fill(10, 235, 225)), "");
}

TEST(Polarize, TakesTheSizesFromTheStreamAndKeepsThemAfterShutdown) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(16, 16), kSuccess);
    EXPECT_EQ(effect->Shutdown(), kSuccess);
    TestFrame frame = TestFrame(16, 16).Fill(1, 2, 3);
    for (int32_t& size : frame.image().PlaneSize) size = -1;
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(FirstDifference(frame, TestFrame(16, 16).Fill(254, 253, 252)), "");
}

TEST(Polarize, LeavesFramesOfARefusedStreamAlone) {
    EffectDriver effect(kGuid);
    const TestFrame before = TestFrame(16, 16).Randomize(5);
    for (const auto& [w, h] : {std::pair{16385, 16}, {16, 16385}, {-16, 16}, {16, 0}, {1 << 30, 1 << 30}}) {
        EXPECT_EQ(effect.Configure(w, h), kInvalidArgument);
        TestFrame frame = before;
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, before), "") << w << " by " << h;
        EXPECT_TRUE(frame.GuardsIntact());
    }
}

TEST(Polarize, HasNoProperties) {
    ExpectNoProperties(kGuid);
}

}  // namespace
