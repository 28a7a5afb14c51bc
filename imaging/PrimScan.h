// Running sums along a row, four at a time.
#ifndef SPECIALEFFECTS_IMAGING_PRIMSCAN_H
#define SPECIALEFFECTS_IMAGING_PRIMSCAN_H

#include <cstdint>
#include <cstring>

#include "imaging/PerLevel.h"

namespace prim {

/// Four numbers in one register. Sums wrap around.
using Lanes = uint32_t __attribute__((vector_size(16)));

/// Four numbers from memory of any alignment.
SE_INLINE Lanes LoadLanes(const uint32_t* from) {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof(lanes));
    return lanes;
}

SE_INLINE void StoreLanes(uint32_t* to, Lanes lanes) {
    std::memcpy(to, &lanes, sizeof(lanes));
}

/// Each number plus those in front of it: a, a + b, a + b + c, a + b + c + d.
SE_INLINE Lanes Scan(Lanes v) {
    const Lanes zero = {};
    v += __builtin_shufflevector(zero, v, 3, 4, 5, 6);
    v += __builtin_shufflevector(zero, v, 2, 3, 4, 5);
    return v;
}

/// The last number, four times.
SE_INLINE Lanes SpreadLast(Lanes v) {
    return __builtin_shufflevector(v, v, 3, 3, 3, 3);
}

}  // namespace prim

#endif
