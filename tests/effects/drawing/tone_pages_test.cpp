#include "effects/drawing/TonePages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "tests/support/TestFrame.h"

namespace {

/// The definition, pixel by pixel.
void SprinklePlainly(std::vector<uint8_t>& row, int before, int after) {
    const auto width = static_cast<int>(row.size());
    for (int x = before; x < width - 1; ++x) {
        const auto begin = row.begin() + x - before, end = row.begin() + x + after + 1;
        if (std::find(begin, end, TonePages::kPaper) == end) row[static_cast<size_t>(x)] = TonePages::kPaper;
    }
}

TEST(SprinklePaper, EqualsItsDefinition) {
    TestRandom random(7);
    for (int32_t width = 1; width <= 260; ++width) {
        for (const int inkOf100 : {0, 50, 80, 97, 100}) {
            for (const auto& [before, after] : {std::pair{1, 0}, {1, 1}, {2, 1}}) {
                constexpr int32_t kHeight = 4;
                CPlane8u page = NewPlane(width, kHeight);
                for (size_t i = 0; i < page.Size(); ++i) {
                    const bool ink = random.Byte() % 100 < inkOf100;
                    page.data[i] = ink ? static_cast<uint8_t>(random.Byte() % 255) : TonePages::kPaper;
                }
                std::vector<uint8_t> wanted;
                for (int32_t y = 0; y < kHeight; ++y) {
                    std::vector<uint8_t> row(page.Row(y), page.Row(y) + width);
                    SprinklePlainly(row, before, after);
                    wanted.insert(wanted.end(), row.begin(), row.end());
                }
                SprinklePaper(page, before, after);
                ASSERT_TRUE(std::equal(wanted.begin(), wanted.end(), page.data))
                    << width << " pixels, " << inkOf100 << " % ink, " << before << " before, " << after
                    << " after";
            }
        }
    }
}

}  // namespace
