// Median of a window: a network of minima and maxima for 5 by 5, a sliding histogram for any other size. The
// work for a pixel does not depend on pixel values.
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRow.h"

using prim::CheckAnchor;
using prim::CheckImages;
using prim::FirstError;
using prim::kStrip;
using prim::Row;

namespace {

// ---- 5 by 5 ----------------------------------------------------------------------------------------------

/// A step of a network: the smaller of two values goes to `low`, the larger to `high`.
struct Exchange {
    size_t low;
    size_t high;
};

constexpr std::array<Exchange, 9> kSort5 = {
    {{0, 1}, {2, 3}, {1, 3}, {0, 2}, {1, 2}, {3, 4}, {2, 3}, {1, 2}, {0, 1}}};

/// The median of a 5 by 5 window whose columns are sorted, in row order; it ends up in the middle. First each
/// row is sorted. Since the columns stay sorted, six values are then too small to be the median, six too
/// large, and 13 are left: the last two of row 0, three of row 1, 2 and 3, and the first two of row 4. Their
/// order among each other is known in part, and 15 exchanges complete what is needed of it. The compiler
/// drops what the result does not depend on; 90 minima and maxima remain.
constexpr std::array<Exchange, 5 * kSort5.size() + 15> kMedianOfSortedColumns = [] {
    std::array<Exchange, 5 * kSort5.size() + 15> network = {};
    auto next = network.begin();
    for (size_t row = 0; row < 5; ++row) {
        for (const Exchange& e : kSort5) {
            *next++ = {5 * row + e.low, 5 * row + e.high};
        }
    }
    constexpr Exchange kSelect[] = {{3, 16}, {21, 17}, {13, 16}, {4, 11},  {8, 21},
                                    {8, 15}, {12, 15}, {11, 20}, {11, 12}, {13, 7},
                                    {12, 7}, {9, 7},   {9, 15},  {9, 20},  {9, 12}};
    for (const Exchange& e : kSelect) {
        *next++ = e;
    }
    return network;
}();

template <typename Values>
SE_INLINE void Perform(Exchange exchange, Values& values) {
    const uint8_t a = values[exchange.low];
    const uint8_t b = values[exchange.high];
    values[exchange.low] = a < b ? a : b;
    values[exchange.high] = a > b ? a : b;
}

template <const auto& kNetwork, typename Values, size_t... i>
SE_INLINE void Run(Values& values, std::index_sequence<i...>) {
    (Perform(kNetwork[i], values), ...);
}

/// `Values` is an array with constant indices only, so that the compiler can treat its elements as separate
/// variables.
template <const auto& kNetwork, typename Values>
SE_INLINE void Run(Values& values) {
    Run<kNetwork>(values, std::make_index_sequence<kNetwork.size()>());
}

using RankedColumns = uint8_t[5][kStrip + 4];

template <size_t... i>
SE_INLINE std::array<uint8_t, 25> WindowAt(const RankedColumns& ranked, ptrdiff_t x,
                                           std::index_sequence<i...>) {
    return {ranked[i / 5][x + static_cast<ptrdiff_t>(i % 5)]...};
}

/// `src` is the middle of the first window.
SE_INLINE void Median5x5(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                         ptrdiff_t width, ptrdiff_t height) {
    for (const auto [begin, end] : prim::Strips(width)) {
        const ptrdiff_t count = end - begin;
        RankedColumns ranked;
        for (ptrdiff_t y = 0; y < height; ++y) {
            const uint8_t* const p = Row(src, srcStep, y - 2) + begin - 2;
            for (ptrdiff_t x = 0; x < count + 4; ++x) {
                std::array<uint8_t, 5> column = {p[x], p[x + srcStep], p[x + 2 * srcStep], p[x + 3 * srcStep],
                                                 p[x + 4 * srcStep]};
                Run<kSort5>(column);
                ranked[0][x] = column[0];
                ranked[1][x] = column[1];
                ranked[2][x] = column[2];
                ranked[3][x] = column[3];
                ranked[4][x] = column[4];
            }
            uint8_t* const out = Row(dst, dstStep, y) + begin;
            for (ptrdiff_t x = 0; x < count; ++x) {
                std::array<uint8_t, 25> window = WindowAt(ranked, x, std::make_index_sequence<25>());
                Run<kMedianOfSortedColumns>(window);
                out[x] = window[12];
            }
        }
    }
}

// ---- any size --------------------------------------------------------------------------------------------

/// How often each value occurs, and how often each range of 16 values.
class Histogram {
  public:
    void Count(uint8_t value, int64_t times) {
        fine_[value] += times;
        coarse_[value / kRange] += times;
    }

    /// The value with `rank` values before it in sorted order.
    uint8_t AtRank(int64_t rank) const {
        const size_t range = Find(coarse_.data(), rank);
        return static_cast<uint8_t>(range * kRange + Find(fine_.data() + range * kRange, rank));
    }

  private:
    static constexpr size_t kRange = 16;

    /// The one of 16 entries that `rank` falls in; subtracts the entries before it from the rank. Always
    /// reads all entries.
    static size_t Find(const int64_t* counts, int64_t& rank) {
        size_t entry = 0;
        int64_t end = 0;
        int64_t before = 0;
        for (size_t i = 0; i < kRange; ++i) {
            end += counts[i];
            entry += end <= rank ? 1 : 0;
            before = end <= rank ? end : before;
        }
        rank -= before;
        return entry;
    }

    std::array<int64_t, 256> fine_ = {};
    std::array<int64_t, 256 / kRange> coarse_ = {};
};

/// `src` is the corner of the first window.
void MedianAnySize(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                   ptrdiff_t height, ptrdiff_t maskWidth, ptrdiff_t maskHeight) {
    for (ptrdiff_t y = 0; y < height; ++y) {
        const uint8_t* const corner = Row(src, srcStep, y);
        uint8_t* const out = Row(dst, dstStep, y);
        Histogram histogram;
        const auto countColumn = [&](ptrdiff_t x, int64_t times) {
            for (ptrdiff_t row = 0; row < maskHeight; ++row) {
                histogram.Count(corner[row * srcStep + x], times);
            }
        };
        for (ptrdiff_t x = 0; x < maskWidth - 1; ++x) {
            countColumn(x, 1);
        }
        for (ptrdiff_t x = 0; x < width; ++x) {
            countColumn(x + maskWidth - 1, 1);
            out[x] = histogram.AtRank(maskWidth * maskHeight / 2);
            countColumn(x, -1);
        }
    }
}

}  // namespace

PrimStatus PrimFilterMedian8uC1(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                int32_t width, int32_t height, int32_t maskWidth, int32_t maskHeight,
                                int32_t anchorX, int32_t anchorY) {
    const bool odd = maskWidth > 0 && maskHeight > 0 && maskWidth % 2 != 0 && maskHeight % 2 != 0;
    if (const PrimStatus status =
            FirstError(CheckImages(src, srcStep, dst, dstStep, width, height), odd ? kPrimOk : kPrimMaskError,
                       CheckAnchor(anchorX, maskWidth), CheckAnchor(anchorY, maskHeight))) {
        return status;
    }
    const uint8_t* const corner = Row(src, srcStep, -anchorY) - anchorX;
    if (maskWidth == 5 && maskHeight == 5) {
        AtLevel<Median5x5>(Row(corner, srcStep, 2) + 2, srcStep, dst, dstStep, width, height);
    } else {
        MedianAnySize(corner, srcStep, dst, dstStep, width, height, maskWidth, maskHeight);
    }
    return kPrimOk;
}
