// Every effect's frames at every processor level against the checksums in checksums.txt. A change of a
// checksum is a decision: look at the picture, then run update_goldens.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <tuple>

#include "tests/support/GoldenRun.h"
#include "tests/support/LevelLimit.h"

namespace {

/// A row of the catalogue and a level.
class Golden : public testing::TestWithParam<std::tuple<int, cpu::Level>> {
  public:
    /// Ends the process: some effects keep counters for the whole process, which a second run would find
    /// moved on.
    [[noreturn]] static void CheckFrames(TestClock& surroundings, std::span<const GoldenSize> sizes) {
        const auto [row, level] = GetParam();
        const GoldenTable goldens = ReadGoldens(SE_SOURCE_DIR "/tests/golden/checksums.txt");
        const LevelLimit limit(level);
        {
            const TemporaryDirectory directory;
            for (const GoldenSize& size : sizes) {
                const auto golden = goldens.find(GoldenKey(row, size));
                const bool known = golden != goldens.end();
                EXPECT_TRUE(known) << "nothing is on record for " << GoldenKey(row, size);
                EXPECT_TRUE(known && RunGolden(row, size, surroundings) == golden->second)
                    << GoldenRowName(row) << ", " << GoldenKey(row, size);
            }
        }
        std::fflush(nullptr);
        std::_Exit(HasFailure() ? 1 : 0);
    }
};

TEST_P(Golden, FramesAreThoseOnRecord) {
    TestSurroundings surroundings;
    EXPECT_EXIT(CheckFrames(surroundings, kGoldenSizes), testing::ExitedWithCode(0), "");
}

/// With the C library's generator in place of our own.
TEST_P(Golden, FramesAreTheSameWithTheLibrarysRand) {
#if !defined(__GLIBC__)
    GTEST_SKIP() << "the generator of this C library is another one";
#endif
    TestClock surroundings;
    EXPECT_EXIT(CheckFrames(surroundings, std::span(kGoldenSizes).first(2)), testing::ExitedWithCode(0), "");
}

std::string Name(const testing::TestParamInfo<Golden::ParamType>& info) {
    return std::to_string(std::get<0>(info.param)) + "_" + cpu::Name(std::get<1>(info.param));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Golden,
                         testing::Combine(testing::Range(1, GoldenRows() + 1),
                                          testing::ValuesIn(cpu::Levels().begin(), cpu::Levels().end())),
                         Name);

}  // namespace
