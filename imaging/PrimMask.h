// Square masks that separate: down the columns first, then along the row.
#ifndef SPECIALEFFECTS_IMAGING_PRIMMASK_H
#define SPECIALEFFECTS_IMAGING_PRIMMASK_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "imaging/PerLevel.h"
#include "imaging/PrimRow.h"

namespace prim {

/// Pixels around the region that a mask may read. Where there are none, the nearest of the region serves.
enum class Surround { kNone, kAsMaskReaches };

/// line(x) = down(the pixels of the rows in column x).
template <typename Sum, typename Down, size_t... k>
SE_INLINE void SumColumns(const uint8_t* const (&rows)[sizeof...(k)], ptrdiff_t first, ptrdiff_t last,
                          Sum* line, Down down, std::index_sequence<k...>) {
    for (ptrdiff_t x = first; x <= last; ++x) {
        line[x - first] = static_cast<Sum>(down(rows[k][x]...));
    }
}

/// dst(x, y) = along(line + x), with line[x + i] = down(p...) of the 2 * kReach + 1 pixels from row
/// y - kReach to y + kReach in column x + i - kReach. `Sum` is the type of the line.
template <typename Sum, ptrdiff_t kReach, typename Out, typename Down, typename Along>
SE_INLINE void FilterSeparable(const uint8_t* src, ptrdiff_t srcStep, Out* dst, ptrdiff_t dstStep,
                               ptrdiff_t width, ptrdiff_t height, Surround surround, Down down, Along along) {
    const ptrdiff_t margin = surround == Surround::kNone ? 0 : kReach;
    for (const auto [begin, end] : Strips(width)) {
        // The columns that the strip's masks cover, and those of them that there are.
        const ptrdiff_t first = begin - kReach;
        const ptrdiff_t last = end - 1 + kReach;
        const ptrdiff_t firstRead = std::max(first, -margin);
        const ptrdiff_t lastRead = std::min(last, width - 1 + margin);
        Sum line[kStrip + 2 * kReach];
        for (ptrdiff_t y = 0; y < height; ++y) {
            const uint8_t* rows[2 * kReach + 1];
            for (ptrdiff_t k = -kReach; k <= kReach; ++k) {
                rows[k + kReach] = Row(src, srcStep, std::clamp(y + k, -margin, height - 1 + margin));
            }
            SumColumns(rows, firstRead, lastRead, line + (firstRead - first), down,
                       std::make_index_sequence<2 * kReach + 1>());
            std::fill(line, line + (firstRead - first), line[firstRead - first]);
            std::fill(line + (lastRead - first) + 1, line + (last - first) + 1, line[lastRead - first]);
            Out* const out = Row(dst, dstStep, y) + begin;
            for (ptrdiff_t x = 0; x < end - begin; ++x) {
                out[x] = static_cast<Out>(along(line + x));
            }
        }
    }
}

}  // namespace prim

#endif
