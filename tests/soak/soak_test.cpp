// Every effect for a long time: created and destroyed repeatedly, given thousands of frames, and many of them
// at once on many threads. How long is set where the test program is built, and by variables of the
// environment of the same names (SE_SOAK_...).
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "framework/Catalogue.h"
#include "tests/soak/Soak.h"
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

// ---- one effect at a time --------------------------------------------------------------------------------

class Soak : public testing::TestWithParam<int> {
  protected:
    const CatalogueRow& row() const { return EffectCatalogue()[static_cast<size_t>(GetParam() - 1)]; }

  private:
    SoakDirectory directory_;
};

TEST_P(Soak, LivesThatFollowEachOtherLeaveNothingBehind) {
    static constexpr int32_t kSides[][2] = {{64, 48}, {176, 144}, {1, 1}, {33, 97}, {160, 90}, {320, 2}};
    std::vector<std::vector<TestFrame>> scenes;
    for (const auto& [width, height] : kSides) scenes.push_back(Scene(width, height, 3));
    const size_t lives = SoakSetting("SE_SOAK_LIVES", SE_SOAK_LIVES);
    const size_t settled = std::max(lives / 10, 2 * scenes.size());
    LevelMemory memory;
    for (size_t life = 0; life < lives; ++life) {
        if (life == settled) memory.Settled();
        const std::vector<TestFrame>& scene = scenes[life % scenes.size()];
        const Effect effect = Create(row());
        ASSERT_EQ(Configure(*effect, scene[0]), kSuccess);
        for (TestFrame frame : scene) ASSERT_EQ(effect->ProcessFrame(frame.record()), kSuccess);
        // Every other one changes its size, and every third is destroyed as it runs.
        if (life % 2 == 0) {
            TestFrame frame = scenes[(life + 1) % scenes.size()][0];
            ASSERT_EQ(Configure(*effect, frame), kSuccess);
            ASSERT_EQ(effect->ProcessFrame(frame.record()), kSuccess);
        }
        if (life % 3 != 0) {
            ASSERT_EQ(effect->Shutdown(), kSuccess);
        }
    }
    if (SE_SOAK_MEMORY_COUNTS) memory.ExpectLevel(row().shortName);
}

TEST_P(Soak, LongStreamEndsAsItShould) {
    const std::vector<TestFrame>& scene = Scene(176, 144, 50);
    const Effect effect = Create(row());
    ASSERT_EQ(Configure(*effect, scene[0]), kSuccess);
    const size_t frames = SoakSetting("SE_SOAK_FRAMES", SE_SOAK_FRAMES);
    const size_t settled = std::min<size_t>(frames / 10, 1000);
    LevelMemory memory;
    TestFrame frame = scene[0];
    for (size_t i = 0; i < frames; ++i) {
        if (i == settled) memory.Settled();
        frame = scene[i % scene.size()];
        ASSERT_EQ(effect->ProcessFrame(frame.record()), kSuccess) << "frame " << i;
        ASSERT_TRUE(frame.GuardsIntact()) << "frame " << i;
    }
    if (SE_SOAK_MEMORY_COUNTS) memory.ExpectLevel(row().shortName);
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

/// The life of an effect in surroundings of its own, frame by frame.
class Life {
  public:
    Life(const CatalogueRow& row, const std::vector<TestFrame>& scene, bool wide) : scene_(&scene) {
        const SurroundingsScope scope(*surroundings_);
        effect_ = Create(row);
        EXPECT_EQ(Configure(*effect_, scene[0]), kSuccess);
        wide ? SetAllProperties<WideChar>(*effect_) : SetAllProperties<char>(*effect_);
    }

    bool HasFrames() const { return next_ < scene_->size(); }
    void Step() {
        const SurroundingsScope scope(*surroundings_);
        TestFrame frame = (*scene_)[next_++];
        EXPECT_EQ(effect_->ProcessFrame(frame.record()), kSuccess);
        checksum_ = checksum_ * 0x100000001B3ULL ^ frame.Checksum();
    }
    /// Of all frames so far.
    uint64_t Checksum() const { return checksum_; }

  private:
    const std::vector<TestFrame>* scene_;
    std::unique_ptr<TestSurroundings> surroundings_ = std::make_unique<TestSurroundings>();
    Effect effect_;
    size_t next_ = 0;
    uint64_t checksum_ = 0;
};

/// Each of the threads has as many effects as this at once.
constexpr size_t kThreads = 8, kEffectsOfThread = 3;

TEST(SoakThreads, EffectsOnManyThreadsComputeWhatTheyComputeAlone) {
    const SoakDirectory directory;
    const std::vector<TestFrame>& scene = Scene(96, 80, 4);
    std::vector<uint64_t> alone;
    for (const CatalogueRow& row : EffectCatalogue()) {
        Life life(row, scene, false);
        while (life.HasFrames()) life.Step();
        alone.push_back(life.Checksum());
    }

    // The threads do not synchronize before they end, since that would hide a race.
    struct Outcome {
        size_t lives = 0, wrongRow = 0;
    };
    std::vector<Outcome> outcomes(kThreads);
    const auto end =
        steady_clock::now() + std::chrono::seconds(SoakSetting("SE_SOAK_SECONDS", SE_SOAK_SECONDS));
    std::vector<std::thread> threads;
    for (Outcome& outcome : outcomes) {
        threads.emplace_back([&, seed = threads.size()] {
            struct Running {
                size_t row = 0;
                std::unique_ptr<Life> life = nullptr;
            };
            std::array<Running, kEffectsOfThread> effects;
            TestRandom random(seed);
            while (steady_clock::now() < end && outcome.wrongRow == 0) {
                auto& [row, life] = effects[static_cast<size_t>(random.Below(kEffectsOfThread))];
                if (life == nullptr) {
                    row = static_cast<size_t>(random.Below(static_cast<int32_t>(alone.size())));
                    life = std::make_unique<Life>(EffectCatalogue()[row], scene, random.Below(2) == 0);
                } else if (life->HasFrames()) {
                    life->Step();
                } else {
                    if (life->Checksum() != alone[row]) outcome.wrongRow = row + 1;
                    life.reset();
                    ++outcome.lives;
                }
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
