// Box mean in place, at a cost that does not depend on the mask: one running sum down each column, one along
// the row.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

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

struct Box {
    uint8_t* corner;  ///< the pixel under the mask's corner when the mask belongs to (0, 0)
    ptrdiff_t step;
    ptrdiff_t width;
    ptrdiff_t height;
    ptrdiff_t maskWidth;
    ptrdiff_t maskHeight;
    ptrdiff_t anchorX;
    ptrdiff_t anchorY;

    /// Columns that the masks of a row cover.
    ptrdiff_t columns() const { return width + maskWidth - 1; }
    int64_t area() const { return int64_t{maskWidth} * maskHeight; }
};

/// Lines are read in fours.
constexpr ptrdiff_t kSlack = 4;

/// The working memory of one call.
template <typename Sum>
struct Buffers {
    explicit Buffers(const Box& box)
        : columnSums(new (std::nothrow) Sum[static_cast<size_t>(1 + box.columns() + kSlack)]()),
          windowSums(new (std::nothrow) Sum[static_cast<size_t>(box.width + kSlack)]),
          ring(new (std::nothrow) uint8_t[static_cast<size_t>((box.anchorY + 1) * box.columns())]) {}

    explicit operator bool() const { return columnSums && windowSums && ring; }

    std::unique_ptr<Sum[]> columnSums;  ///< after one 0
    std::unique_ptr<Sum[]> windowSums;
    /// Unfiltered rows that are overwritten and not yet left by the mask.
    std::unique_ptr<uint8_t[]> ring;
};

/// Calls means(columnSums, out) for each row, with the sums of the pixels that the mask covers in each
/// column.
template <typename Sum, typename Means>
SE_INLINE void ForRows(const Box& box, const Buffers<Sum>& buffers, Means means) {
    const ptrdiff_t columns = box.columns();
    Sum* SE_RESTRICT const sums = buffers.columnSums.get() + 1;
    const auto kept = [&](ptrdiff_t y) { return buffers.ring.get() + y % (box.anchorY + 1) * columns; };
    const auto add = [&](const uint8_t* SE_RESTRICT entering) {
        for (ptrdiff_t x = 0; x < columns; ++x) {
            sums[x] += entering[x];
        }
    };
    const auto exchange = [&](const uint8_t* SE_RESTRICT entering, const uint8_t* SE_RESTRICT leaving) {
        for (ptrdiff_t x = 0; x < columns; ++x) {
            sums[x] += static_cast<Sum>(entering[x] - leaving[x]);
        }
    };
    const ptrdiff_t reach = box.maskHeight - 1 - box.anchorY;  // rows below the pixel
    for (ptrdiff_t y = -box.anchorY; y < reach; ++y) {
        add(Row(box.corner, box.step, y));
    }
    for (ptrdiff_t y = 0; y < box.height; ++y) {
        const uint8_t* const entering = Row(box.corner, box.step, y + reach);
        const ptrdiff_t leaving = y - 1 - box.anchorY;
        if (y == 0) {
            add(entering);
        } else {
            exchange(entering, leaving < 0 ? Row(box.corner, box.step, leaving) : kept(leaving));
        }
        uint8_t* const row = Row(box.corner, box.step, y);
        std::memcpy(kept(y), row, static_cast<size_t>(columns));
        means(sums, row + box.anchorX);
    }
}

/// Sums over the mask's width, from one column before the first on: each is the one before plus the column
/// that enters, less the one that leaves.
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
SE_INLINE void FilterBox(const Box& box, const Buffers<uint32_t>& buffers) {
    const Mean<Real> mean(box.area());
    uint32_t* const windowSums = buffers.windowSums.get();
    ForRows(box, buffers, [&](const uint32_t* columnSums, uint8_t* SE_RESTRICT out) {
        SumWindows(columnSums, box.maskWidth, windowSums, box.width);
        for (ptrdiff_t x = 0; x < box.width; ++x) {
            out[x] = mean(static_cast<int32_t>(windowSums[x]));
        }
    });
}

/// For masks whose sums pass 32 bits.
void FilterBoxWide(const Box& box, const Buffers<uint64_t>& buffers) {
    const auto area = static_cast<uint64_t>(box.area());
    ForRows(box, buffers, [&](const uint64_t* columnSums, uint8_t* out) {
        uint64_t sum = area / 2;
        for (ptrdiff_t x = 0; x < box.maskWidth - 1; ++x) {
            sum += columnSums[x];
        }
        for (ptrdiff_t x = 0; x < box.width; ++x) {
            sum += columnSums[x + box.maskWidth - 1] - columnSums[x - 1];
            out[x] = static_cast<uint8_t>(sum / area);
        }
    });
}

template <typename Sum>
PrimStatus Filter(const Box& box, void (*filter)(const Box&, const Buffers<Sum>&)) {
    const Buffers<Sum> buffers(box);
    if (!buffers) {
        return kPrimMemoryError;
    }
    filter(box, buffers);
    return kPrimOk;
}

}  // namespace

PrimStatus PrimFilterBox8uC1(uint8_t* data, int32_t step, int32_t width, int32_t height, int32_t maskWidth,
                             int32_t maskHeight, int32_t anchorX, int32_t anchorY) {
    const bool fits = maskWidth >= 1 && maskHeight >= 1 && maskWidth < width && maskHeight < height;
    if (const PrimStatus status =
            FirstError(CheckImage(data, step, width, height), fits ? kPrimOk : kPrimMaskError,
                       CheckAnchor(anchorX, maskWidth), CheckAnchor(anchorY, maskHeight))) {
        return status;
    }
    const Box box = {data - anchorX, step, width, height, maskWidth, maskHeight, anchorX, anchorY};
    if (box.area() <= Mean<float>::kMaxCount) {
        return Filter(box, AtLevel<FilterBox<float>>);
    }
    if (box.area() <= Mean<double>::kMaxCount) {
        return Filter(box, AtLevel<FilterBox<double>>);
    }
    return Filter(box, FilterBoxWide);
}
