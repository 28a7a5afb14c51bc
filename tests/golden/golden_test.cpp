// Every effect's frames against the checksums in checksums.txt. A change of a checksum is a decision: look at
// the picture, then run update_goldens.
#include <gtest/gtest.h>

#include "tests/support/GoldenRun.h"

namespace {

class Golden : public testing::TestWithParam<int> {};

TEST_P(Golden, FramesAreThoseOnRecord) {
    const int row = GetParam();
    static const GoldenTable goldens = ReadGoldens(SE_SOURCE_DIR "/tests/golden/checksums.txt");
    const TemporaryDirectory directory;
    for (const GoldenSize& size : kGoldenSizes) {
        const auto golden = goldens.find(GoldenKey(row, size));
        ASSERT_NE(golden, goldens.end()) << "nothing is on record for " << GoldenKey(row, size);
        EXPECT_EQ(RunGolden(row, size), golden->second) << GoldenRowName(row) << ", " << GoldenKey(row, size);
    }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Golden, testing::Range(1, GoldenRows() + 1));

}  // namespace
