#include "framework/RoundedChroma.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int32_t RoundedHalf(int32_t side) {
    return (side + 1) / 2;
}

constexpr int64_t RoundedUpBytes(int32_t width, int32_t height) {
    return int64_t{RoundedHalf(width)} * RoundedHalf(height);
}

constexpr int64_t OwnBytes(const FramePlane& chroma) {
    return int64_t{chroma.width} * chroma.height;
}

bool IsRoundedUp(const PlanarFrame& frame, const FramePlane& chroma) {
    const int64_t own = OwnBytes(chroma), rounded = RoundedUpBytes(frame.y.width, frame.y.height);
    return own == rounded || chroma.size >= rounded || (chroma.size <= 0 && own > 0);
}

}  // namespace

void RoundedChroma::Prepare(int32_t width, int32_t height) {
    if (width % 2 == 0 && height % 2 == 0) return;
    u_.resize(static_cast<size_t>(RoundedUpBytes(width, height)));
    v_.resize(u_.size());
}

bool RoundedChroma::IsLargeEnough(const PlanarFrame& frame, const FramePlane& chroma) {
    return IsRoundedUp(frame, chroma) || std::max(chroma.size, 0) >= OwnBytes(chroma);
}

uint8_t* RoundedChroma::RoundUp(const PlanarFrame& frame, const FramePlane& chroma,
                                std::vector<uint8_t>& copy) {
    if (IsRoundedUp(frame, chroma)) return chroma.data;
    if (OwnBytes(chroma) == 0) {
        std::fill(copy.begin(), copy.end(), uint8_t{128});
        return copy.data();
    }
    const ptrdiff_t step = RoundedHalf(frame.y.width);
    uint8_t* row = copy.data();
    for (int32_t y = 0; y < RoundedHalf(frame.y.height); ++y, row += step) {
        const uint8_t* const own = chroma.data + ptrdiff_t{chroma.width} * std::min(y, chroma.height - 1);
        std::memcpy(row, own, static_cast<size_t>(chroma.width));
        row[step - 1] = own[chroma.width - 1];
    }
    return copy.data();
}

void RoundedChroma::RoundDown(const PlanarFrame& frame, const uint8_t* rounded, const FramePlane& chroma) {
    if (rounded == chroma.data) return;
    const ptrdiff_t step = RoundedHalf(frame.y.width);
    for (int32_t y = 0; y < chroma.height; ++y) {
        std::memcpy(chroma.data + ptrdiff_t{chroma.width} * y, rounded + step * y,
                    static_cast<size_t>(chroma.width));
    }
}
