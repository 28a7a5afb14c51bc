#include "effects/distortion/IppDistortion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "framework/EffectBase.h"
#include "tests/effects/distortion/remap_model.h"

namespace {

/// An effect of the tests' own: any table.
class CTableFilter final : public EffectBase<CTableFilter, CSpecialEffectFilter_IppDistortion> {
  public:
    static constexpr const char* DisplayName = "Table";

    explicit CTableFilter(TableMaker* maker) : maker_(maker) {}
    void BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) override {
        sizes.emplace_back(width, height);
        (*maker_)(xMap, yMap, width, height);
    }

    std::vector<std::pair<int, int>> sizes;

  private:
    TableMaker* maker_;
};

/// Sources all over the picture, between pixels and outside of it.
void Wild(float* xMap, float* yMap, int width, int height) {
    TestRandom random(static_cast<uint64_t>(width * 1000 + height));
    for (int i = 0; i < width * height; ++i) {
        xMap[i] = static_cast<float>(random.Below(16 * (width + 4))) / 16.0F - 2.0F;
        yMap[i] = static_cast<float>(random.Below(16 * (height + 4))) / 16.0F - 2.0F;
    }
}

TEST(IppDistortion, KeepsTheContract) {
    TableMaker maker = Wild;
    EffectDriver effect = EffectDriver::Of<CTableFilter>(&maker);
    EXPECT_EQ(effect->Configure(nullptr), kInvalidArgument);
    EXPECT_EQ(effect.Configure(0, 4), kInvalidArgument);
    EXPECT_EQ(effect.Configure(4, 4, 1), kInvalidArgument);
    EXPECT_EQ(effect.Configure(4, 4), kSuccess);
    EXPECT_EQ(effect->Shutdown(), kSuccess);
    EXPECT_EQ(effect->Shutdown(), kSuccess);
}

TEST(IppDistortion, AsksForTheHalfTableAndTheFullOne) {
    TableMaker maker = IdentityTable;
    EffectDriver effect = EffectDriver::Of<CTableFilter>(&maker);
    auto& filter = static_cast<CTableFilter&>(*effect);
    ASSERT_EQ(effect.Configure(7, 5), kSuccess);
    EXPECT_EQ(filter.sizes, (std::vector<std::pair<int, int>>{{3, 2}, {7, 5}}));
    filter.sizes.clear();
    ASSERT_EQ(effect.Configure(7, 5, kFormatPacked), kSuccess);
    EXPECT_EQ(filter.sizes, (std::vector<std::pair<int, int>>{{7, 5}}));
}

TEST(IppDistortion, MovesFramesByTheTable) {
    TableMaker maker = Wild;
    EffectDriver effect = EffectDriver::Of<CTableFilter>(&maker);
    ExpectFramesOfTheTable(effect, maker);
}

TEST(IppDistortion, TakesTheNearestPixelUpToTheLast) {
    const float belowHalf = std::nextafter(0.5F, 0.0F);  // plus one half it is 1 in single precision
    const float sources[] = {-0.001F, 0.0F, 0.49F, belowHalf, 0.5F, 1.49999F, 2.0F, 2.001F};
    const uint8_t results[] = {0, 10, 10, 10, 20, 20, 30, 0};
    for (size_t i = 0; i < std::size(sources); ++i) {
        TableMaker maker = [&](float* xMap, float* yMap, int width, int height) {
            IdentityTable(xMap, yMap, width, height);
            if (width == 3) xMap[1] = sources[i];
        };
        EffectDriver effect = EffectDriver::Of<CTableFilter>(&maker);
        ASSERT_EQ(effect.Configure(3, 1), kSuccess);
        TestFrame frame(3, 1);
        std::copy_n(std::begin({uint8_t{10}, uint8_t{20}, uint8_t{30}}), 3, frame.y());
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame.y()[1], results[i]) << sources[i];
    }
}

TEST(IppDistortion, ShowsBlackWhereThereIsNoSource) {
    for (const float nowhere : {-1.0F, 1e30F, std::numeric_limits<float>::infinity(), std::nanf("")}) {
        TableMaker maker = [&](float* xMap, float* yMap, int width, int height) {
            std::fill_n(xMap, width * height, 0.0F);
            std::fill_n(yMap, width * height, nowhere);
        };
        EffectDriver effect = EffectDriver::Of<CTableFilter>(&maker);
        ASSERT_EQ(effect.Configure(10, 6), kSuccess);
        for (int i = 0; i < 3; ++i) {
            TestFrame frame = TestFrame(10, 6).Randomize(4);
            EXPECT_EQ(effect.Process(frame), kSuccess);
            EXPECT_EQ(FirstDifference(frame, TestFrame(10, 6).Fill(0, 128, 128)), "");
        }
        ASSERT_EQ(effect.Configure(10, 6, kFormatPacked), kSuccess);
        TestFrame packed = TestFrame(10, 6, kFormatPacked).Randomize(4);
        EXPECT_EQ(effect.Process(packed), kSuccess);
        EXPECT_EQ(FirstDifference(packed, TestFrame(10, 6, kFormatPacked)), "");
    }
}

TEST(IppDistortion, RefusesTheOtherFormatAndMissingPlanes) {
    TableMaker maker = Wild;
    EffectDriver effect = EffectDriver::Of<CTableFilter>(&maker);
    const TestFrame scene = TestFrame(20, 12).DrawScene(1);
    TestFrame frame = scene;
    EXPECT_EQ(effect.Process(frame), kFailure);
    frame.image().Plane[0] = nullptr;  // the workspace is looked at first
    EXPECT_EQ(effect.Process(frame), kFailure);
    frame.image().Format = 1;
    EXPECT_EQ(effect.Process(frame), kFailure);
    frame = scene;
    EXPECT_EQ(effect.Configure(20, 12, 1), kInvalidArgument);
    frame.image().Format = 1;
    EXPECT_EQ(effect.Process(frame), kFailure);

    ASSERT_EQ(effect.Configure(20, 12), kSuccess);
    frame = scene;
    frame.image().Format = kFormatPacked;
    EXPECT_EQ(effect.Process(frame), kFailure);
    EXPECT_EQ(FirstDifference(frame, scene), "");
    for (int plane = 0; plane < 3; ++plane) {
        frame = scene;
        frame.image().Plane[plane] = nullptr;
        EXPECT_EQ(effect.Process(frame), kInvalidArgument);
        EXPECT_EQ(FirstDifference(frame, scene), "");
    }
    ASSERT_EQ(effect.Configure(20, 12, kFormatPacked), kSuccess);
    TestFrame packed(20, 12, kFormatPacked);
    packed.image().Plane[0] = nullptr;
    EXPECT_EQ(effect.Process(packed), kInvalidArgument);
    EXPECT_EQ(effect->Shutdown(), kSuccess);
    EXPECT_EQ(effect.Process(packed), kFailure);
}

TEST(IppDistortion, WritesNoMoreThanThePlaneSizesSay) {
    TableMaker maker = Wild;
    EffectDriver effect = EffectDriver::Of<CTableFilter>(&maker);
    ASSERT_EQ(effect.Configure(30, 20), kSuccess);
    RemapModel model(maker, 30, 20);
    for (const int size : {-5, 0, 1, 77, 149, 150, 151, 600, 100000, std::numeric_limits<int>::max()}) {
        TestFrame frame = TestFrame(30, 20).Randomize(9);
        TestFrame expected = frame;
        for (int p = 0; p < 3; ++p) frame.image().PlaneSize[p] = expected.image().PlaneSize[p] = size;
        model.Process(expected);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, expected), "") << size;
        EXPECT_TRUE(frame.GuardsIntact());
    }
}

TEST(IppDistortion, RoundsTheChromaSizeDown) {
    TableMaker maker = [](float* xMap, float* yMap, int width, int height) {
        IdentityTable(xMap, yMap, width, height);
        std::reverse(xMap, xMap + width * height);
    };
    EffectDriver effect = EffectDriver::Of<CTableFilter>(&maker);
    ASSERT_EQ(effect.Configure(7, 3), kSuccess);
    TestFrame frame(7, 3);
    std::copy_n(std::begin({uint8_t{1}, uint8_t{2}, uint8_t{3}}), 3, frame.u());
    EXPECT_EQ(effect.Process(frame), kSuccess);
    EXPECT_EQ(std::vector<uint8_t>(frame.u(), frame.u() + 3), (std::vector<uint8_t>{3, 2, 1}));
    EXPECT_TRUE(frame.GuardsIntact());
}

}  // namespace
