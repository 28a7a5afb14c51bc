#include "effects/distortion/RemapTable.h"

#include "imaging/IndexGather.h"
#include "imaging/PerLevel.h"

namespace {

SE_INLINE void FindNearest(const float* SE_RESTRICT xMap, const float* SE_RESTRICT yMap, int32_t width,
                           int32_t height, size_t count, uint32_t* SE_RESTRICT indices) {
    const double lastX = width - 1, lastY = height - 1;
    for (size_t i = 0; i < count; ++i) {
        const double x = double{xMap[i]}, y = double{yMap[i]};
        const bool inside = (x >= 0) & (x <= lastX) & (y >= 0) & (y <= lastY);
        const auto column = static_cast<int32_t>(inside ? x + 0.5 : 0.0);
        const auto row = static_cast<int32_t>(inside ? y + 0.5 : 0.0);
        indices[i] = inside ? static_cast<uint32_t>(row * width + column) : GatherMap::kKeep;
    }
}

}  // namespace

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
    AtLevel<FindNearest>(xMap, yMap, width, height, indices.size(), indices.data());
    return indices;
}
