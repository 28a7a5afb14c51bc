#include "effects/distortion/RepeatedMean.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/LevelLimit.h"
#include "tests/support/TestFrame.h"

namespace {

/// One mean after the other, on a copy with three more pixels around it.
void MeanPlainly(CPlane8u& plane, int count) {
    const int w = plane.width, h = plane.height, bw = w + 6, bh = h + 6;
    std::vector<int> pixels(static_cast<size_t>(bw * bh));
    const auto at = [&](std::vector<int>& of, int x, int y) -> int& {
        return of[static_cast<size_t>(y * bw + x)];
    };
    for (int y = 0; y < bh; ++y) {
        for (int x = 0; x < bw; ++x) {
            at(pixels, x, y) = plane.Row(std::clamp(y - 3, 0, h - 1))[std::clamp(x - 3, 0, w - 1)];
        }
    }
    for (; count > 0; --count) {
        std::vector<int> from = pixels;
        for (int y = 1; y < bh - 1; ++y) {
            for (int x = 1; x < bw - 1; ++x) {
                int sum = 0;
                for (int k = 0; k < 9; ++k) sum += at(from, x + k % 3 - 1, y + k / 3 - 1);
                at(pixels, x, y) = (sum + 4) / 9;
            }
        }
    }
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) plane.Row(y)[x] = static_cast<uint8_t>(at(pixels, x + 3, y + 3));
    }
}

/// The means of planes whose pixels are close together are made in bytes, up to a difference of 27.
TEST(RepeatedMean, EqualsOneMeanAfterTheOther) {
    constexpr struct {
        int lowest, highest;
    } kRanges[] = {{0, 255}, {0, 27}, {228, 255}, {100, 127}, {100, 128}, {40, 40}, {250, 255}};
    constexpr struct { int width, height; } kSizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 3}, {61, 7}, {130, 20}};
    TestRandom random(5);
    for (const auto [lowest, highest] : kRanges) {
        for (const auto [width, height] : kSizes) {
            CPlane8u source(width, height);
            std::generate_n(source.data, source.Size(), [&, first = lowest, count = highest - lowest + 1] {
                return static_cast<uint8_t>(first + random.Below(count));
            });
            source.data[0] = static_cast<uint8_t>(lowest);
            source.data[source.Size() - 1] = static_cast<uint8_t>(highest);
            for (const int count : {3, 4, 6, 30}) {
                CPlane8u expected = source;
                MeanPlainly(expected, count);
                for (const cpu::Level level : cpu::Levels()) {
                    const LevelLimit limit(level);
                    CPlane8u result = source;
                    RepeatedMean(width, height).Apply(result, count);
                    EXPECT_TRUE(std::equal(result.data, result.data + result.Size(), expected.data))
                        << width << "x" << height << ", " << lowest << " to " << highest << ", " << count
                        << ", " << cpu::Name(level);
                }
            }
        }
    }
}

}  // namespace
