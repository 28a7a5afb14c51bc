#include "imaging/ByteSum.h"

#include <algorithm>

#include "imaging/PerLevel.h"

namespace {

constexpr size_t kBlock = size_t{1} << 20;

/// Sum of at most kBlock bytes, which fits 32 bits.
SE_INLINE uint32_t SumBlock(const uint8_t* data, size_t count) {
    uint32_t sum = 0;
    for (size_t i = 0; i < count; ++i) sum += data[i];
    return sum;
}

}  // namespace

uint64_t SumBytes(const uint8_t* data, size_t count) {
    uint64_t sum = 0;
    for (size_t begin = 0; begin < count; begin += kBlock) {
        sum += AtLevel<SumBlock>(data + begin, std::min(kBlock, count - begin));
    }
    return sum;
}
