// Every effect for a long time: created and destroyed repeatedly, given thousands of frames, and all of them
// at once on many threads. How long is set where the test program is built (SE_SOAK_...).
#include <gtest/gtest.h>
#include <malloc.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "framework/Catalogue.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/TestFrame.h"
#include "tests/support/TestSurroundings.h"

namespace {

using std::chrono::steady_clock;

struct ReleaseFactory {
    void operator()(ISpecialEffectFactory* factory) const { factory->Release(); }
};
using Factory = std::unique_ptr<ISpecialEffectFactory, ReleaseFactory>;

struct DestroyEffect {
    void operator()(CSpecialEffectFilter* effect) const {
        Factory(CreateSpecialEffectFactory())->DestroyEffect(effect);
    }
};
using Effect = std::unique_ptr<CSpecialEffectFilter, DestroyEffect>;

Effect Create(const CatalogueRow& row) {
    CSpecialEffectFilter* effect = nullptr;
    Factory(CreateSpecialEffectFactory())->CreateEffect(row.id, 0, &effect);
    return Effect(effect);
}

ResultCode Configure(CSpecialEffectFilter& effect, const TestFrame& frame) {
    StreamDescription stream = {0, frame.width(), frame.height(), frame.format()};
    return effect.Configure(&stream);
}

std::vector<TestFrame> DrawScene(int32_t width, int32_t height, int pictures) {
    std::vector<TestFrame> scene;
    for (int i = 0; i < pictures; ++i) scene.push_back(TestFrame(width, height).DrawScene(i));
    return scene;
}

/// An empty directory to work in, except for the cascade of the face detector.
class SoakDirectory {
  public:
    SoakDirectory() {
        std::error_code none;
        std::filesystem::copy(SE_BINARY_DIR "/share/specialeffects/haar.txt", "haar.txt", none);
    }

  private:
    TemporaryDirectory directory_;
};

/// Bytes of the heap that are in use, the allocator's caches included.
int64_t HeapInUse() {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<int64_t>(heap.uordblks + heap.hblkhd);
}

/// Memory may settle at the start of a run, and grows no more then.
class LevelMemory {
  public:
    void Settled() { settled_ = HeapInUse(); }
    void ExpectLevel() const {
        if (!SE_SOAK_MEMORY_COUNTS) return;
        EXPECT_LT(HeapInUse() - settled_, 16384);
    }

  private:
    int64_t settled_ = 0;
};

// ---- one effect at a time --------------------------------------------------------------------------------

class Soak : public testing::TestWithParam<int> {
  protected:
    const CatalogueRow& row() const { return EffectCatalogue()[static_cast<size_t>(GetParam() - 1)]; }

  private:
    SoakDirectory directory_;
};

TEST_P(Soak, LivesThatFollowEachOtherLeaveNothingBehind) {
    const std::vector<TestFrame> scene = DrawScene(64, 48, 3);
    LevelMemory memory;
    for (int life = 0; life < SE_SOAK_LIVES; ++life) {
        if (life == SE_SOAK_LIVES / 10) memory.Settled();
        const Effect effect = Create(row());
        ASSERT_EQ(Configure(*effect, scene[0]), kSuccess);
        for (TestFrame frame : scene) ASSERT_EQ(effect->ProcessFrame(frame.record()), kSuccess);
        ASSERT_EQ(effect->Shutdown(), kSuccess);
    }
    memory.ExpectLevel();
}

TEST_P(Soak, LongStreamEndsAsItShould) {
    const std::vector<TestFrame> scene = DrawScene(176, 144, 50);
    const Effect effect = Create(row());
    ASSERT_EQ(Configure(*effect, scene[0]), kSuccess);
    LevelMemory memory;
    TestFrame frame = scene[0];
    for (size_t i = 0; i < SE_SOAK_FRAMES; ++i) {
        if (i == SE_SOAK_FRAMES / 10) memory.Settled();
        frame = scene[i % scene.size()];
        ASSERT_EQ(effect->ProcessFrame(frame.record()), kSuccess) << "frame " << i;
        ASSERT_TRUE(frame.GuardsIntact()) << "frame " << i;
    }
    memory.ExpectLevel();
    EXPECT_EQ(effect->Shutdown(), kSuccess);
    frame = scene[0];
    // Without workspace a frame is refused or, by the effects that need none, processed.
    const ResultCode after = effect->ProcessFrame(frame.record());
    EXPECT_TRUE(after == kSuccess || after == kFailure) << after;
    EXPECT_EQ(Configure(*effect, scene[0]), kSuccess);
    EXPECT_EQ(effect->ProcessFrame(frame.record()), kSuccess);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Soak, testing::Range(1, GoldenRows() + 1));

// ---- all effects at once ---------------------------------------------------------------------------------

/// Sets every property to the text that the effect gives as its default, and asks for it.
template <class Char>
void SetAllProperties(CSpecialEffectFilter& effect) {
    CInternalInfo& info = *effect.GetInternalInfo();
    for (int32_t i = 0; i < info.GetPropCount(); ++i) {
        Char name[256], value[256], range[256];
        info.GetPropTypeInfo(i, name, 256u, value, 256u, range, 256u);
        BasicPropertyRecord<Char> property = {0, name, value};
        EXPECT_EQ(effect.SetProperty(&property), kSuccess);
        EXPECT_EQ(effect.GetProperty(&property), kSuccess);
    }
}

/// The whole life of an effect in surroundings of its own, as a checksum of all its frames.
uint64_t RunLife(const CatalogueRow& row, const std::vector<TestFrame>& scene, bool wide) {
    TestSurroundings surroundings;
    const SurroundingsScope scope(surroundings);
    const Effect effect = Create(row);
    EXPECT_EQ(Configure(*effect, scene[0]), kSuccess);
    wide ? SetAllProperties<WideChar>(*effect) : SetAllProperties<char>(*effect);
    uint64_t checksum = 0;
    for (TestFrame frame : scene) {
        EXPECT_EQ(effect->ProcessFrame(frame.record()), kSuccess);
        checksum = checksum * 0x100000001B3ULL ^ frame.Checksum();
    }
    return checksum;
}

TEST(SoakThreads, EffectsOnManyThreadsComputeWhatTheyComputeAlone) {
    const SoakDirectory directory;
    const std::vector<TestFrame> scene = DrawScene(96, 80, 4);
    std::vector<uint64_t> alone;
    for (const CatalogueRow& row : EffectCatalogue()) alone.push_back(RunLife(row, scene, false));

    // The threads do not synchronize before they end, since that would hide a race.
    struct Outcome {
        size_t lives = 0, wrongRow = 0;
    };
    std::vector<Outcome> outcomes(8);
    const auto end = steady_clock::now() + std::chrono::seconds(SE_SOAK_SECONDS);
    std::vector<std::thread> threads;
    for (Outcome& outcome : outcomes) {
        threads.emplace_back([&, seed = threads.size()] {
            TestRandom random(seed);
            while (steady_clock::now() < end && outcome.wrongRow == 0) {
                const auto row = static_cast<size_t>(random.Below(static_cast<int32_t>(alone.size())));
                const uint64_t checksum = RunLife(EffectCatalogue()[row], scene, random.Below(2) == 0);
                if (checksum != alone[row]) outcome.wrongRow = row + 1;
                ++outcome.lives;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    size_t lives = 0;
    for (const Outcome& outcome : outcomes) {
        EXPECT_EQ(outcome.wrongRow, 0u) << "this row computes something else beside other threads";
        lives += outcome.lives;
    }
    EXPECT_GT(lives, outcomes.size());
    std::printf("%zu lives\n", lives);
}

}  // namespace
