// What the list says of effects holds for their frames.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "tests/sfx/Handles.h"

namespace {

/// One home for all tests, since Clouds takes long to make its data.
class Flags : public testing::Test {
  protected:
    static void SetUpTestSuite() { home = std::make_unique<Home>(); }
    static void TearDownTestSuite() { home.reset(); }

  private:
    static std::unique_ptr<Home> home;
};
std::unique_ptr<Home> Flags::home;

/// The frames of an effect over one still picture.
std::vector<uint64_t> StillFrames(const char* id) {
    const EffectHandle effect = Create(id);
    std::vector<uint64_t> sums;
    for (int i = 0; i < 30; ++i) {
        TestFrame frame = Scene(160, 120, 1)[0];
        EXPECT_GE(Process(effect, frame, i), 0);
        sums.push_back(frame.Checksum());
    }
    return sums;
}

TEST_F(Flags, DependOnTheSeedWhereTheListSaysSo) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        const EffectHandle one = Create(info.id), two = Create(info.id);
        ASSERT_EQ(sfx_set_seed(two.get(), 99), SFX_OK);
        uint32_t seed = 0;
        ASSERT_EQ(sfx_get_seed(two.get(), &seed), SFX_OK);
        EXPECT_EQ(seed, 99U);
        const bool differs = ChecksumOf(one, 40) != ChecksumOf(two, 40);
        EXPECT_EQ(differs, (info.flags & SFX_USES_CHANCE) != 0) << info.id;
    }
}

TEST_F(Flags, DependOnTimeWhereTheListSaysSo) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        const EffectHandle slow = Create(info.id), fast = Create(info.id);
        bool differs = false;
        for (int frame = 0; frame < 20; ++frame) {
            TestFrame a = Scene(160, 120, 20)[static_cast<size_t>(frame)], b = a;
            const sfx_picture pa = PictureOf(a), pb = PictureOf(b);
            ASSERT_GE(sfx_process(slow.get(), &pa, frame * int64_t{300000000}), 0);
            ASSERT_GE(sfx_process(fast.get(), &pb, frame * int64_t{10000000}), 0);
            differs = differs || !(a == b);
        }
        // Logo Animation reads the clock before its first frame only.
        EXPECT_EQ(differs || std::strcmp(info.id, "logo-animation") == 0, (info.flags & SFX_USES_TIME) != 0)
            << info.id;
    }
}

TEST_F(Flags, MoveByThemselvesWhereTheListSaysSo) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        const std::vector<uint64_t> sums = StillFrames(info.id);
        // An effect with a memory may need some frames to settle.
        const bool moves = sums[28] != sums[29] || sums[27] != sums[28] || sums[20] != sums[29];
        if ((info.flags & SFX_MOVES) != 0) {
            // There are no faces in the picture that Picture Me could fly.
            EXPECT_TRUE(moves || std::strcmp(info.id, "picture-me") == 0) << info.id;
        } else {
            // An effect that adapts to the scene can take long to settle.
            EXPECT_TRUE(!moves || (info.flags & SFX_HAS_MEMORY) != 0) << info.id;
        }
    }
}

TEST_F(Flags, RememberWhereTheListSaysSo) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        // Two streams that differ until the last frame.
        const EffectHandle one = Create(info.id), two = Create(info.id);
        bool differs = false;
        const std::vector<TestFrame>& scene = Scene(320, 240, 104);
        for (size_t frame = 0; frame < 24; ++frame) {
            TestFrame a = scene[frame], b = scene[frame < 22 ? frame * 3 + 40 : frame];
            ASSERT_GE(Process(one, a, static_cast<int>(frame)), 0);
            ASSERT_GE(Process(two, b, static_cast<int>(frame)), 0);
            differs = differs || (frame >= 22 && !(a == b));
        }
        // Time Distortion shows only old frames; Picture Me needs faces.
        const bool hidden =
            std::strcmp(info.id, "time-distortion") == 0 || std::strcmp(info.id, "picture-me") == 0;
        EXPECT_EQ(differs || hidden, (info.flags & SFX_HAS_MEMORY) != 0) << info.id;
    }
}

}  // namespace
