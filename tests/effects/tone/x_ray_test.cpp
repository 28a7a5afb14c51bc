#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/EffectDriver.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{3FCD24E0-4787-4D3C-9483-2A689BD61654}";

void XRayModel(TestFrame& frame) {
    const int w = frame.width(), h = frame.height();
    std::vector<int> dark;
    for (const uint8_t luma : frame.plane(0)) dark.push_back(luma < 50 ? 0 : luma - 50);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            int sum = 0;
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    const int row = std::clamp(y + dy, 0, h - 1), column = std::clamp(x + dx, 0, w - 1);
                    sum += dark[static_cast<size_t>(row * w + column)];
                }
            }
            frame.y()[y * w + x] = static_cast<uint8_t>(255 - (((sum + 5) * 455) >> 12));
        }
    }
    std::fill(frame.plane(1).begin(), frame.plane(1).end(), uint8_t{128});
    std::fill(frame.plane(2).begin(), frame.plane(2).end(), uint8_t{98});
}

TEST(XRay, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "X-Ray");
    ExpectContract(effect);
}

TEST(XRay, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int32_t, int32_t) { return XRayModel; });
}

TEST(XRay, FlatFrames) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(34, 18), kSuccess);
    for (int luma = 0; luma < 256; ++luma) {
        TestFrame frame = TestFrame(34, 18).Fill(static_cast<uint8_t>(luma), 10, 20);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        const auto negative = static_cast<uint8_t>(luma <= 50 ? 255 : 255 - (luma - 50));
        ASSERT_EQ(FirstDifference(frame, TestFrame(34, 18).Fill(negative, 128, 98)), "") << luma;
    }
}

TEST(XRay, LumaOfFiftyAndLessIsTheSame) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(32, 32), kSuccess);
    TestFrame frame(32, 32);
    frame.Randomize(6);
    TestFrame raised = frame;
    for (uint8_t& luma : raised.plane(0)) luma = std::max(luma, uint8_t{50});
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(effect.Process(raised), kSuccess);
    EXPECT_EQ(FirstDifference(frame, raised), "");
}

TEST(XRay, TakesTheByteCountsFromTheFrame) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(20, 10), kSuccess);
    TestFrame source(20, 10);
    source.Randomize(7);
    TestFrame whole = source;
    XRayModel(whole);
    for (const int32_t stated : {77, 0, -3, 200, 100000}) {
        TestFrame frame = source, expected = source;
        const auto replaced = static_cast<size_t>(std::clamp(stated, 0, 200));
        for (uint8_t& luma : expected.plane(0)) luma = static_cast<uint8_t>(luma < 50 ? 0 : luma - 50);
        std::copy_n(whole.y(), replaced, expected.y());
        std::fill_n(expected.u(), 7, uint8_t{128});
        frame.image().PlaneSize[0] = stated;
        frame.image().PlaneSize[1] = 7;
        frame.image().PlaneSize[2] = -1;
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, expected), "") << stated;
        EXPECT_TRUE(frame.GuardsIntact());
    }
}

TEST(XRay, HasNoProperties) {
    ExpectNoProperties(kGuid);
}

}  // namespace
