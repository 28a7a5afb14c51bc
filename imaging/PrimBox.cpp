// Box mean, at a cost that does not depend on the mask: one running sum down each column, one along
// the row.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "imaging/BoxFilter.h"
#include "imaging/PerLevel.h"
#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimDivide.h"
#include "imaging/PrimRow.h"
#include "imaging/PrimScan.h"

using prim::CheckAnchor;
using prim::CheckImage;
using prim::FirstError;
using prim::Mean;
using prim::Row;

namespace {

using box::Region;

/// Lines are read in fours.
constexpr ptrdiff_t kSlack = 4;

/// The working memory of one call.
template <typename Sum>
struct Buffers {
    static size_t Bytes(const Region& region) {
        return SumCount(region) * sizeof(Sum) + static_cast<size_t>((region.anchorY + 1) * region.Columns());
    }

    Buffers(const Region& region, void* scratch)
        : columnSums(static_cast<Sum*>(scratch)),
          windowSums(columnSums + ColumnCount(region)),
          ring(reinterpret_cast<uint8_t*>(columnSums + SumCount(region))) {
        std::fill(columnSums, columnSums + ColumnCount(region), Sum{0});
    }

    Sum* columnSums;  ///< after one 0
    Sum* windowSums;
    /// Copies of overwritten rows that the mask still covers.
    uint8_t* ring;

  private:
    static size_t ColumnCount(const Region& region) {
        return static_cast<size_t>(1 + region.Columns() + kSlack);
    }
    static size_t SumCount(const Region& region) {
        return ColumnCount(region) + static_cast<size_t>(region.width + kSlack);
    }
};

/// Calls means(columnSums, out) for each row, with the sums of the pixels that the mask covers in each
/// column.
template <typename Sum, typename Means>
SE_INLINE void ForRows(const Region& region, const Buffers<Sum>& buffers, Means means) {
    const ptrdiff_t columns = region.Columns();
    const bool inPlace = region.InPlace();
    const uint8_t* const corner = region.src - region.anchorX;
    Sum* SE_RESTRICT const sums = buffers.columnSums + 1;
    const auto kept = [&](ptrdiff_t y) { return buffers.ring + y % (region.anchorY + 1) * columns; };
    const auto add = [&](const uint8_t* SE_RESTRICT entering) {
        for (ptrdiff_t x = 0; x < columns; ++x) {
            sums[x] = static_cast<Sum>(sums[x] + entering[x]);
        }
    };
    const auto exchange = [&](const uint8_t* SE_RESTRICT entering, const uint8_t* SE_RESTRICT leaving) {
        for (ptrdiff_t x = 0; x < columns; ++x) {
            sums[x] = static_cast<Sum>(sums[x] + static_cast<Sum>(entering[x] - leaving[x]));
        }
    };
    const ptrdiff_t reach = region.maskHeight - 1 - region.anchorY;  // rows below the pixel
    for (ptrdiff_t y = -region.anchorY; y < reach; ++y) {
        add(Row(corner, region.srcStep, y));
    }
    for (ptrdiff_t y = 0; y < region.height; ++y) {
        const uint8_t* const entering = Row(corner, region.srcStep, y + reach);
        const ptrdiff_t leaving = y - 1 - region.anchorY;
        if (y == 0) {
            add(entering);
        } else {
            const bool overwritten = inPlace && leaving >= 0;
            exchange(entering, overwritten ? kept(leaving) : Row(corner, region.srcStep, leaving));
        }
        if (inPlace) {
            std::memcpy(kept(y), Row(corner, region.srcStep, y), static_cast<size_t>(columns));
        }
        means(sums, Row(region.dst, region.dstStep, y));
    }
}

/// Sums over the mask's width, starting one column before the first: each is the previous sum plus the column
/// that enters, minus the column that leaves.
SE_INLINE void SumWindows(const uint32_t* SE_RESTRICT columnSums, ptrdiff_t maskWidth,
                          uint32_t* SE_RESTRICT windowSums, ptrdiff_t width) {
    uint32_t start = 0;
    for (ptrdiff_t x = 0; x < maskWidth - 1; ++x) {
        start += columnSums[x];
    }
    prim::Lanes last = {start, start, start, start};
    for (ptrdiff_t x = 0; x < width; x += 4) {
        const prim::Lanes entering = prim::LoadLanes(columnSums + x + maskWidth - 1);
        const prim::Lanes leaving = prim::LoadLanes(columnSums + x - 1);
        const prim::Lanes sums = last + prim::Scan(entering - leaving);
        prim::StoreLanes(windowSums + x, sums);
        last = prim::SpreadLast(sums);
    }
}

template <typename Real>
SE_INLINE void FilterBox(const Region& region, const Buffers<uint32_t>& buffers) {
    const Mean<Real> mean(region.Area());
    uint32_t* const windowSums = buffers.windowSums;
    ForRows(region, buffers, [&](const uint32_t* columnSums, uint8_t* SE_RESTRICT out) {
        SumWindows(columnSums, region.maskWidth, windowSums, region.width);
        for (ptrdiff_t x = 0; x < region.width; ++x) {
            out[x] = mean(static_cast<int32_t>(windowSums[x]));
        }
    });
}

/// For the mean of 3 by 3 and of 5 by 5 everything fits 16 bits, and the sum over so short a row is not worth
/// keeping from pixel to pixel.
template <ptrdiff_t kSide>
SE_INLINE void FilterBoxNarrow(const Region& region, const Buffers<uint16_t>& buffers) {
    ForRows(region, buffers, [&](const uint16_t* SE_RESTRICT columnSums, uint8_t* SE_RESTRICT out) {
        for (ptrdiff_t x = 0; x < region.width; ++x) {
            auto sum = static_cast<uint16_t>(columnSums[x] + columnSums[x + 1] + columnSums[x + 2]);
            if constexpr (kSide == 5) {
                sum = static_cast<uint16_t>(sum + columnSums[x + 3] + columnSums[x + 4]);
            }
            out[x] = static_cast<uint8_t>(prim::MeanOfSquare<kSide>(sum));
        }
    });
}

/// For masks whose sums exceed 32 bits.
void FilterBoxWide(const Region& region, const Buffers<uint64_t>& buffers) {
    const auto area = static_cast<uint64_t>(region.Area());
    ForRows(region, buffers, [&](const uint64_t* columnSums, uint8_t* out) {
        uint64_t sum = area / 2;
        for (ptrdiff_t x = 0; x < region.maskWidth - 1; ++x) {
            sum += columnSums[x];
        }
        for (ptrdiff_t x = 0; x < region.width; ++x) {
            sum += columnSums[x + region.maskWidth - 1] - columnSums[x - 1];
            out[x] = static_cast<uint8_t>(sum / area);
        }
    });
}

bool NeedsWideSums(const Region& region) {
    return region.Area() > Mean<double>::kMaxCount;
}

bool IsSquare(const Region& region, ptrdiff_t side) {
    return region.maskWidth == side && region.maskHeight == side;
}

}  // namespace

size_t box::ScratchBytes(const Region& region) {
    return NeedsWideSums(region) ? Buffers<uint64_t>::Bytes(region) : Buffers<uint32_t>::Bytes(region);
}

void box::Filter(const Region& region, void* scratch) {
    if (IsSquare(region, 3)) {
        AtLevel<FilterBoxNarrow<3>>(region, Buffers<uint16_t>(region, scratch));
    } else if (IsSquare(region, 5)) {
        AtLevel<FilterBoxNarrow<5>>(region, Buffers<uint16_t>(region, scratch));
    } else if (NeedsWideSums(region)) {
        FilterBoxWide(region, Buffers<uint64_t>(region, scratch));
    } else if (region.Area() > Mean<float>::kMaxCount) {
        AtLevel<FilterBox<double>>(region, Buffers<uint32_t>(region, scratch));
    } else {
        AtLevel<FilterBox<float>>(region, Buffers<uint32_t>(region, scratch));
    }
}

PrimStatus PrimFilterBox8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, int32_t maskWidth,
                             int32_t maskHeight, int32_t anchorX, int32_t anchorY) {
    const bool fits = maskWidth >= 1 && maskHeight >= 1 && maskWidth < width && maskHeight < height;
    if (const PrimStatus status =
            FirstError(CheckImage(data, step, width, height), fits ? kPrimOk : kPrimMaskError,
                       CheckAnchor(anchorX, maskWidth), CheckAnchor(anchorY, maskHeight))) {
        return status;
    }
    const Region region = {data, step, data, step, width, height, maskWidth, maskHeight, anchorX, anchorY};
    const size_t words = box::ScratchBytes(region) / sizeof(uint64_t) + 1;
    const std::unique_ptr<uint64_t[]> scratch(new (std::nothrow) uint64_t[words]);
    if (!scratch) {
        return kPrimMemoryError;
    }
    box::Filter(region, scratch.get());
    return kPrimOk;
}
