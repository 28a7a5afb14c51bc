#include "effects/distortion/RemapTable.h"

#include "imaging/IndexGather.h"

void RemapTable::FillIdentity() const {
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            XRow(y)[x] = static_cast<float>(x);
            YRow(y)[x] = static_cast<float>(y);
        }
    }
}

std::vector<uint32_t> RemapTable::NearestIndices() const {
    std::vector<uint32_t> indices(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (size_t i = 0; i < indices.size(); ++i) {
        const double x = double{xMap[i]}, y = double{yMap[i]};
        const bool inside = x >= 0 && x <= width - 1 && y >= 0 && y <= height - 1;
        indices[i] = inside ? static_cast<uint32_t>(y + 0.5) * static_cast<uint32_t>(width) +
                                  static_cast<uint32_t>(x + 0.5)
                            : GatherMap::kKeep;
    }
    return indices;
}
