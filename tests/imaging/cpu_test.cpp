#include "imaging/Cpu.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "imaging/PerLevel.h"
#include "tests/support/LevelLimit.h"

namespace {

using cpu::Level;

TEST(Cpu, LevelsRiseFromTheBaseline) {
    ASSERT_FALSE(cpu::Levels().empty());
    EXPECT_EQ(cpu::Levels().front(), Level::kBaseline);
    EXPECT_TRUE(std::ranges::is_sorted(cpu::Levels(), std::ranges::less_equal()));
}

TEST(Cpu, TheHighestLevelIsInForceUnlessLimited) {
    EXPECT_EQ(cpu::Current(), cpu::Levels().back());
    for (const Level level : cpu::Levels()) {
        const LevelLimit limit(level);
        EXPECT_EQ(cpu::Current(), level);
    }
    EXPECT_EQ(cpu::Current(), cpu::Levels().back());
}

TEST(Cpu, ALimitThatTheProcessorDoesNotHaveMeansTheNextLowerLevel) {
    for (const Level level : {Level::kBaseline, Level::kVector128, Level::kAvx2, Level::kAvx512}) {
        const LevelLimit limit(level);
        EXPECT_LE(cpu::Current(), level);
        EXPECT_TRUE(std::ranges::count(cpu::Levels(), cpu::Current()) == 1);
    }
}

TEST(Cpu, BytePermutationsNeedTheHighestLevel) {
    const LevelLimit limit(Level::kAvx2);
    EXPECT_FALSE(cpu::HasVbmi());
}

TEST(Cpu, NamesDiffer) {
    std::set<std::string> names;
    for (const Level level : {Level::kBaseline, Level::kVector128, Level::kAvx2, Level::kAvx512}) {
        EXPECT_TRUE(names.insert(cpu::Name(level)).second);
    }
}

TEST(Cpu, ALimitHoldsInAllThreads) {
    const LevelLimit limit(Level::kBaseline);
    Level seen = cpu::Levels().back();
    std::thread([&] { seen = cpu::Current(); }).join();
    EXPECT_EQ(seen, Level::kBaseline);
}

TEST(Cpu, ThreadsMayAskWhileOthersLimit) {
    const LevelLimit restore(Level::kBaseline);
    std::vector<std::thread> threads;
    for (const Level level : cpu::Levels()) {
        threads.emplace_back([level] {
            for (int i = 0; i < 1000; ++i) {
                cpu::Limit(level);
                EXPECT_EQ(std::ranges::count(cpu::Levels(), cpu::Current()), 1);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

SE_INLINE int32_t Scale(const int32_t* SE_RESTRICT from, int32_t* SE_RESTRICT to, size_t count,
                        const int32_t& factor) {
    int32_t sum = 0;
    for (size_t i = 0; i < count; ++i) {
        to[i] = from[i] * factor;
        sum += to[i];
    }
    return sum;
}

TEST(PerLevel, ALoopDoesTheSameAtEveryLevel) {
    for (size_t count = 0; count < 100; ++count) {
        std::vector<int32_t> from(count + 1);
        std::vector<int32_t> expected(count + 1, -1);
        for (size_t i = 0; i < count; ++i) {
            from[i] = static_cast<int32_t>(i * i) - 50;
            expected[i] = 3 * from[i];
        }
        int32_t sum = 0;
        for (size_t i = 0; i < count; ++i) {
            sum += expected[i];
        }
        for (const Level level : cpu::Levels()) {
            const LevelLimit limit(level);
            std::vector<int32_t> to(count + 1, -1);
            EXPECT_EQ(AtLevel<Scale>(from.data(), to.data(), count, 3), sum) << cpu::Name(level);
            EXPECT_EQ(to, expected) << cpu::Name(level);
        }
    }
}

}  // namespace
