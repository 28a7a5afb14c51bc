// Sums and histograms of planes.
#include <array>
#include <cstring>

#include "imaging/ByteSum.h"
#include "imaging/Lookup.h"
#include "imaging/Plane8u.h"

namespace {

using Histogram = std::array<uint32_t, 256>;

/// Counts the grey levels. Eight counters for each level, taken in turn, so that a run of one level does not
/// wait for its own last increment.
Histogram CountLevels(const uint8_t* data, size_t size) {
    std::array<Histogram, 8> partial{};
    size_t i = 0;
    for (; i + 8 <= size; i += 8) {
        uint64_t eight = 0;
        std::memcpy(&eight, data + i, 8);
        for (size_t k = 0; k < 8; ++k) ++partial[k][(eight >> (8 * k)) & 255];
    }
    for (; i < size; ++i) ++partial[0][data[i]];
    for (size_t k = 1; k < partial.size(); ++k) {
        for (size_t level = 0; level < 256; ++level) partial[0][level] += partial[k][level];
    }
    return partial[0];
}

}  // namespace

uint64_t SumPixelsWide(const CPlane8u& plane) {
    return SumBytes(plane.data, plane.Size());
}

uint32_t SumPixels(const CPlane8u& plane) {
    return static_cast<uint32_t>(SumPixelsWide(plane));
}

void EqualizeHistogram(CPlane8u& plane) {
    const size_t size = plane.Size();
    if (size == 0) return;
    const Histogram count = CountLevels(plane.data, size);
    std::array<uint8_t, 256> table{};
    uint64_t sum = 0;
    for (size_t level = 0; level < 256; ++level) {
        sum += count[level];
        table[level] = static_cast<uint8_t>(sum * 255 / size);
    }
    LookupBytes(table.data(), plane.data, size);
}
