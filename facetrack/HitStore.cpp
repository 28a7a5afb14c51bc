#include "facetrack/HitStore.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int64_t SquareKey(int64_t column, int64_t row) {
    return column * (int64_t{1} << 32) + row;
}

}  // namespace

CHitStore::CHitStore(float mergeRadius, float sizeRatio)
    : mergeRadius_(mergeRadius),
      sizeRatio_(sizeRatio),
      squareSide_(std::max(static_cast<int32_t>(std::ceil(mergeRadius)), 1)) {}

int64_t CHitStore::SquareOf(int32_t coordinate) const {
    return coordinate >= 0 ? coordinate / squareSide_
                           : -((squareSide_ - 1 - int64_t{coordinate}) / squareSide_);
}

void CHitStore::Add(const Hit& hit) {
    const int64_t column = SquareOf(hit.x), line = SquareOf(hit.y);
    const double reach = double{mergeRadius_} * mergeRadius_;
    size_t row = rows_.size();
    for (int64_t dy = -1; dy <= 1; ++dy) {
        for (int64_t dx = -1; dx <= 1; ++dx) {
            const auto square = squares_.find(SquareKey(column + dx, line + dy));
            if (square == squares_.end()) continue;
            for (const Member& member : square->second) {
                const int64_t x = int64_t{hit.x} - member.hit.x, y = int64_t{hit.y} - member.hit.y;
                const bool near = static_cast<double>(x * x + y * y) <= reach;
                const bool alike =
                    static_cast<float>(member.hit.size) * sizeRatio_ >= static_cast<float>(hit.size);
                if (near && alike) row = std::min(row, member.row);
            }
        }
    }
    if (row == rows_.size()) rows_.emplace_back();
    rows_[row].push_back(hit);
    squares_[SquareKey(column, line)].push_back({hit, row});
}

void CHitStore::Clear() {
    rows_.clear();
    squares_.clear();
}

Hit MeanHit(const std::vector<Hit>& hits) {
    int64_t x = 0, y = 0, size = 0;
    for (const Hit& hit : hits) {
        x += hit.x;
        y += hit.y;
        size += hit.size;
    }
    const auto count = static_cast<int64_t>(hits.size());
    return {static_cast<int32_t>(x / count), static_cast<int32_t>(y / count),
            static_cast<int32_t>(size / count)};
}
