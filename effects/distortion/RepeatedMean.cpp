#include "effects/distortion/RepeatedMean.h"

#include <algorithm>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/PrimDivide.h"

namespace {

struct Range {
    uint8_t lowest, highest;
};

SE_INLINE Range RangeOf(const uint8_t* pixels, size_t count) {
    uint8_t lowest = 255, highest = 0;
    for (size_t i = 0; i < count; ++i) {
        lowest = std::min(lowest, pixels[i]);
        highest = std::max(highest, pixels[i]);
    }
    return {lowest, highest};
}

/// Half of the nine pixels of a mean, which rounds it.
constexpr int32_t kHalf = 4;

/// Up to this pixel nine of them and that half fit a byte.
constexpr int32_t kNarrow = (255 - kHalf) / 9;

/// sum / 9, for up to nine pixels and half of nine.
SE_INLINE uint8_t Ninth(uint16_t sum) {
    return static_cast<uint8_t>(prim::MulHigh(sum, 7282));
}

/// The outermost pixels stay as they are.
template <class Sum>
SE_INLINE void MeanRow(const uint8_t* SE_RESTRICT above, const uint8_t* SE_RESTRICT here,
                       const uint8_t* SE_RESTRICT below, size_t width, uint8_t* SE_RESTRICT memory,
                       uint8_t* SE_RESTRICT means) {
    Sum* SE_RESTRICT const sums = reinterpret_cast<Sum*>(memory);
    for (size_t x = 0; x < width; ++x) sums[x] = static_cast<Sum>(above[x] + here[x] + below[x]);
    for (size_t x = 1; x < width - 1; ++x) {
        means[x] = Ninth(static_cast<Sum>(sums[x - 1] + sums[x] + sums[x + 1] + kHalf));
    }
    means[0] = here[0];
    means[width - 1] = here[width - 1];
}

SE_INLINE void AddToRow(const uint8_t* SE_RESTRICT from, uint8_t summand, size_t width,
                        uint8_t* SE_RESTRICT to) {
    for (size_t x = 0; x < width; ++x) to[x] = static_cast<uint8_t>(from[x] + summand);
}

}  // namespace

RepeatedMean::RepeatedMean(int32_t width, int32_t height)
    : width_(width + 2 * kBorder), height_(height + 2 * kBorder), sums_(NewPlane(width_, sizeof(uint16_t))) {}

/// The row of the plane that stands at row `y` with the border around it.
void RepeatedMean::StartRow(const CPlane8u& plane, int32_t y, uint8_t lowest) {
    const uint8_t* const from = plane.Row(std::clamp(y - kBorder, 0, plane.height - 1));
    uint8_t* const to = Row(0, y);
    AtLevel<AddToRow>(from, static_cast<uint8_t>(-lowest), static_cast<size_t>(plane.width), to + kBorder);
    std::memset(to, to[kBorder], kBorder);
    std::memset(to + kBorder + plane.width, to[kBorder + plane.width - 1], kBorder);
}

void RepeatedMean::Apply(CPlane8u& plane, int32_t count) {
    if (plane.Empty()) return;
    constexpr int32_t kLine = 64;
    rows_ = NewPlane((width_ + kLine - 1) / kLine * kLine, (count + 1) * kKept);
    // A mean does not change when the same is taken from all pixels.
    const Range range = AtLevel<RangeOf>(plane.data, plane.Size());
    const bool narrow = range.highest - range.lowest <= kNarrow;
    const auto meanRow = narrow ? AtLevel<MeanRow<uint8_t>> : AtLevel<MeanRow<uint16_t>>;
    for (int32_t front = 0; front < height_ + count; ++front) {
        if (front < height_) StartRow(plane, front, range.lowest);
        for (int32_t k = std::max(1, front - height_ + 1); k <= std::min(count, front); ++k) {
            const int32_t y = front - k;
            if (y == 0 || y == height_ - 1) {
                std::memcpy(Row(k, y), Row(k - 1, y), static_cast<size_t>(width_));
            } else {
                meanRow(Row(k - 1, y - 1), Row(k - 1, y), Row(k - 1, y + 1), static_cast<size_t>(width_),
                        sums_.data, Row(k, y));
            }
        }
        const int32_t done = front - count - kBorder;
        if (done < 0 || done >= plane.height) continue;
        AtLevel<AddToRow>(Row(count, done + kBorder) + kBorder, range.lowest,
                          static_cast<size_t>(plane.width), plane.Row(done));
    }
}
