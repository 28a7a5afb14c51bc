// States and hooks of the shared base, through an effect defined here.
#include <gtest/gtest.h>

#include <new>

#include "framework/EffectBase.h"
#include "tests/support/EffectDriver.h"

namespace {

class CTracedEffect final : public PlanarEffect<CTracedEffect> {
  public:
    static constexpr const char* DisplayName = "Traced";

    void Prepare() {
        ++prepared;
        if (failNext) throw std::bad_alloc();
    }
    void Release() { ++released; }
    void NoteFrame() { ++noted; }
    void ProcessPlanar(const PlanarFrame& frame) {
        ++processed;
        frame.FillChroma(1, 2);
    }

    bool failNext = false;
    int prepared = 0, released = 0, noted = 0, processed = 0;
};

CTracedEffect& Traced(EffectDriver& effect) {
    return static_cast<CTracedEffect&>(*effect);
}

TEST(EffectBase, KeepsTheContract) {
    auto effect = EffectDriver::Of<CTracedEffect>();
    ExpectContract(effect);
}

TEST(EffectBase, MemoryFailureReachesTheHostAndLeavesNoWorkspace) {
    auto effect = EffectDriver::Of<CTracedEffect>();
    ASSERT_EQ(effect.Configure(16, 16), kSuccess);
    Traced(effect).failNext = true;
#if defined(_WIN32)
    EXPECT_EQ(effect.Configure(16, 16), kOutOfMemory);
#else
    EXPECT_THROW(effect.Configure(16, 16), std::bad_alloc);
#endif
    EXPECT_EQ(Traced(effect).released, 3);
    TestFrame frame(16, 16);
    EXPECT_EQ(effect.Process(frame), kFailure);
}

TEST(EffectBase, NotesFramesOfTheConfiguredFormatOnly) {
    auto effect = EffectDriver::Of<CTracedEffect>();
    TestFrame frame(16, 16), packed(16, 16, kFormatPacked);
    EXPECT_EQ(effect.Process(frame), kFailure);
    EXPECT_EQ(Traced(effect).noted, 1);
    EXPECT_EQ(effect.Process(packed), kFailure);
    EXPECT_EQ(effect->ProcessFrame(nullptr), kInvalidArgument);
    EXPECT_EQ(Traced(effect).noted, 1);
    ASSERT_EQ(effect.Configure(16, 16, kFormatPacked), kSuccess);
    EXPECT_EQ(effect.Process(packed), kNotImplemented);
    EXPECT_EQ(Traced(effect).noted, 2);
    EXPECT_EQ(Traced(effect).prepared, 0);
}

TEST(EffectBase, FillsAQuarterOfTheLumaInChroma) {
    // 5 by 5: a quarter of the luma is 6 bytes, the chroma planes hold 2 by 2.
    auto effect = EffectDriver::Of<CTracedEffect>();
    ASSERT_EQ(effect.Configure(5, 5), kSuccess);
    for (const auto& [stated, filled] : {std::pair{0, 4}, {4, 4}, {5, 5}, {6, 6}, {9, 6}, {-1, 4}}) {
        uint8_t luma[25] = {}, u[10] = {}, v[10] = {};
        ImageRecord image{kFormatPlanar, {luma, u, v}, 0, {25, stated, stated}};
        FrameRecord frame{{}, &image};
        EXPECT_EQ(effect->ProcessFrame(&frame), kSuccess);
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(u[i], i < filled ? 1 : 0) << stated << " stated, byte " << i;
            EXPECT_EQ(v[i], i < filled ? 2 : 0) << stated << " stated, byte " << i;
        }
    }
}

TEST(EffectBase, ServesTheLargestSides) {
    auto effect = EffectDriver::Of<CTracedEffect>();
    EXPECT_EQ(effect.Configure(16384, 1), kSuccess);
    EXPECT_EQ(effect.Configure(1, 16384), kSuccess);
    EXPECT_EQ(effect.Configure(16384, 16384), kSuccess);
    EXPECT_EQ(effect.Configure(16385, 1), kInvalidArgument);
    EXPECT_EQ(effect.Configure(INT32_MAX, INT32_MIN), kInvalidArgument);
}

}  // namespace
