// Every effect's frames at every processor level against the checksums in checksums.txt. A change of a
// checksum is a decision: look at the picture, then run update_goldens.
#include <gtest/gtest.h>

#include <span>
#include <string>
#include <tuple>

#include "effects/animated/TextRenderer.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/LevelLimit.h"

namespace {

constexpr std::span<const GoldenSize> kSmallSizes = std::span(kGoldenSizes).first(2);
/// Under a sanitizer the small sizes reach all code; the release build runs all sizes.
constexpr std::span<const GoldenSize> kSizes = SE_SANITIZED ? kSmallSizes : kGoldenSizes;

void ExpectGoldens(int row, TestClock& surroundings, std::span<const GoldenSize> sizes) {
    static const GoldenTable goldens = ReadGoldens(SE_SOURCE_DIR "/tests/golden/checksums.txt");
    const TemporaryDirectory directory;
    const TextFromTable text;  // the system may draw Logo Animation's otherwise
    for (const GoldenSize& size : sizes) {
        const auto golden = goldens.find(GoldenKey(row, size));
        ASSERT_NE(golden, goldens.end()) << "nothing is on record for " << GoldenKey(row, size);
        EXPECT_EQ(RunGolden(row, size, surroundings), golden->second)
            << GoldenRowName(row) << ", " << GoldenKey(row, size);
    }
}

/// A row of the catalogue and a level.
class Golden : public testing::TestWithParam<std::tuple<int, cpu::Level>> {};

TEST_P(Golden, FramesAreThoseOnRecord) {
    const auto [row, level] = GetParam();
    const LevelLimit limit(level);
    TestSurroundings surroundings;
    ExpectGoldens(row, surroundings, kSizes);
}

/// A row of the catalogue, with the C library's generator in place of our own.
class GoldenWithLibrarysRand : public testing::TestWithParam<int> {};

TEST_P(GoldenWithLibrarysRand, FramesAreTheSame) {
#if !defined(__GLIBC__)
    GTEST_SKIP() << "the generator of this C library is another one";
#endif
    if (SE_SANITIZED) GTEST_SKIP() << "the same code as with our own";
    TestClock surroundings;
    ExpectGoldens(GetParam(), surroundings, kSmallSizes);
}

#if defined(_WIN32)
/// A host may have set the x87 unit, which the C library's functions use here, to the precision of doubles.
TEST_P(Golden, FramesAreTheSameWithALessPreciseX87) {
    const auto [row, level] = GetParam();
    const LevelLimit limit(level);
    const auto set = [](uint16_t word) { __asm__ volatile("fldcw %0" : : "m"(word)); };
    set(0x27F);
    TestSurroundings surroundings;
    ExpectGoldens(row, surroundings, kSmallSizes);
    set(0x37F);
}
#endif

std::string Name(const testing::TestParamInfo<Golden::ParamType>& info) {
    return std::to_string(std::get<0>(info.param)) + "_" + cpu::Name(std::get<1>(info.param));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Golden,
                         testing::Combine(testing::Range(1, GoldenRows() + 1),
                                          testing::ValuesIn(cpu::Levels().begin(), cpu::Levels().end())),
                         Name);
INSTANTIATE_TEST_SUITE_P(Catalogue, GoldenWithLibrarysRand, testing::Range(1, GoldenRows() + 1));

}  // namespace
