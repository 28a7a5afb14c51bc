// Every effect's frames against the checksums in checksums.txt. A change of a checksum is a decision: look at
// the picture, then run update_goldens.
#include <gtest/gtest.h>

#include <span>

#include "tests/support/GoldenRun.h"

namespace {

class Golden : public testing::TestWithParam<int> {};

void ExpectGoldens(int row, TestClock& surroundings, std::span<const GoldenSize> sizes) {
    static const GoldenTable goldens = ReadGoldens(SE_SOURCE_DIR "/tests/golden/checksums.txt");
    const TemporaryDirectory directory;
    for (const GoldenSize& size : sizes) {
        const auto golden = goldens.find(GoldenKey(row, size));
        ASSERT_NE(golden, goldens.end()) << "nothing is on record for " << GoldenKey(row, size);
        EXPECT_EQ(RunGolden(row, size, surroundings), golden->second)
            << GoldenRowName(row) << ", " << GoldenKey(row, size);
    }
}

TEST_P(Golden, FramesAreThoseOnRecord) {
    TestSurroundings surroundings;
    ExpectGoldens(GetParam(), surroundings, kGoldenSizes);
}

/// With the C library's generator in place of our own.
TEST_P(Golden, FramesAreTheSameWithTheLibrarysRand) {
#if !defined(__GLIBC__)
    GTEST_SKIP() << "the generator of this C library is another one";
#endif
    TestClock surroundings;
    ExpectGoldens(GetParam(), surroundings, std::span(kGoldenSizes).first(2));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Golden, testing::Range(1, GoldenRows() + 1));

}  // namespace
