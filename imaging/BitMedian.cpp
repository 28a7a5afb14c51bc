#include "imaging/BitMedian.h"

#include "imaging/PerLevel.h"
#include "imaging/PrimRow.h"

namespace {

using prim::kStrip;
using prim::Row;

/// Eight sums of three bits each: the bits of weight 1 and those of weight 2.
struct BitSums {
    uint8_t one;
    uint8_t two;
};

SE_INLINE BitSums Add(uint8_t a, uint8_t b, uint8_t c) {
    return {static_cast<uint8_t>(a ^ b ^ c), static_cast<uint8_t>((a & b) | (c & (a | b)))};
}

/// For each column, how many of its five pixels have a bit, as three binary digits.
struct ColumnCounts {
    uint8_t ones[kStrip + 4];
    uint8_t twos[kStrip + 4];
    uint8_t fours[kStrip + 4];
};

/// Whether the counts of five columns from `x` on come to 13 or more.
SE_INLINE uint8_t Majority(const ColumnCounts& counts, ptrdiff_t x) {
    const uint8_t* const o = counts.ones + x;
    const uint8_t* const t = counts.twos + x;
    const uint8_t* const f = counts.fours + x;
    const BitSums o0 = Add(o[0], o[1], o[2]);
    const BitSums o1 = Add(o0.one, o[3], o[4]);
    const BitSums t0 = Add(t[0], t[1], t[2]);
    const BitSums t1 = Add(t[3], t[4], o0.two);
    const BitSums t2 = Add(t0.one, t1.one, o1.two);
    // The sum is o1.one + 2 * t2.one + 4 * n, with n of the eight bits of weight 4. It is 13 or more when n
    // is 4 or more, or n is 3 and one of the others is set: when four of these nine are.
    const auto rest = static_cast<uint8_t>(o1.one | t2.one);
    const BitSums n0 = Add(f[0], f[1], f[2]);
    const BitSums n1 = Add(f[3], f[4], t0.two);
    const BitSums n2 = Add(t1.two, t2.two, rest);
    const BitSums n3 = Add(n0.one, n1.one, n2.one);
    return static_cast<uint8_t>((n0.two & n1.two) | (n2.two & n3.two) |
                                ((n0.two | n1.two) & (n2.two | n3.two)));
}

SE_INLINE void Majority5x5(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
                           ptrdiff_t width, ptrdiff_t height) {
    for (const auto [begin, end] : prim::Strips(width)) {
        const ptrdiff_t count = end - begin;
        ColumnCounts counts;
        for (ptrdiff_t y = 0; y < height; ++y) {
            const uint8_t* const p = Row(src, srcStep, y - 2) + begin - 2;
            for (ptrdiff_t x = 0; x < count + 4; ++x) {
                const BitSums upper = Add(p[x], p[x + srcStep], p[x + 2 * srcStep]);
                const BitSums all = Add(upper.one, p[x + 3 * srcStep], p[x + 4 * srcStep]);
                counts.ones[x] = all.one;
                counts.twos[x] = static_cast<uint8_t>(upper.two ^ all.two);
                counts.fours[x] = static_cast<uint8_t>(upper.two & all.two);
            }
            uint8_t* const out = Row(dst, dstStep, y) + begin;
            for (ptrdiff_t x = 0; x < count; ++x) out[x] = Majority(counts, x);
        }
    }
}

}  // namespace

void FilterMajority5(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, ptrdiff_t width,
                     ptrdiff_t height) {
    AtLevel<Majority5x5>(src, srcStep, dst, dstStep, width, height);
}
