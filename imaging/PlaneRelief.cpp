// What planes do with slopes: refraction and relief lighting.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "imaging/Plane8u.h"

namespace {

/// Brightness of a ball seen from above, by the slope's two components (128 is level): entry [gy][gx].
using ShadeTable = std::array<std::array<uint8_t, 256>, 256>;

const ShadeTable& Shades() {
    static const ShadeTable table = [] {
        ShadeTable shades{};
        for (int i = 0; i < 256; ++i)
            for (int j = 0; j < 256; ++j) {
                const float a = static_cast<float>(i - 128) / 128.0f;
                const float b = static_cast<float>(j - 128) / 128.0f;
                const float v = std::max(1.0f - std::sqrt(a * a + b * b), 0.0f);
                shades[static_cast<size_t>(i)][static_cast<size_t>(j)] = static_cast<uint8_t>(
                    std::min(static_cast<int>(v * 256.0f), 255));  // 256 only at the very top
            }
        return shades;
    }();
    return table;
}

}  // namespace

void DisplaceByGradient(const CPlane8u& bump, const CPlane8u& src, CPlane8u& dst) {
    const int32_t width = src.width;
    const int32_t height = src.height;
    if (src.Empty() || bump.Empty() || dst.Empty()) return;
    if (bump.width != width || bump.height != height || dst.width != width || dst.height != height) return;
    if (width < 2 || height < 2) return;

    for (int32_t y = 1; y < height - 1; ++y) {
        const uint8_t* const slope = bump.Row(y);
        uint8_t* const out = dst.Row(y);
        for (int32_t x = 1; x < width - 1; ++x) {
            const int32_t gx = slope[x - 1] - slope[x + 1];
            const int32_t gy = slope[x - width] - slope[x + width];
            const int32_t sx = std::clamp(x + gx, 0, width - 1);
            const int32_t sy = std::clamp(y + gy, 0, height - 1);
            out[x] = static_cast<uint8_t>(std::clamp(src.Row(sy)[sx] + gx, 0, 255));
        }
    }
    const auto columns = static_cast<size_t>(width - 1);
    std::memmove(dst.Row(0), dst.Row(1), columns);
    std::memmove(dst.Row(height - 1), dst.Row(height - 2), columns);
    for (int32_t y = 0; y < height; ++y) dst.Row(y)[0] = dst.Row(y)[1];
}

void ShadeByGradient(const CPlane8u& src, CPlane8u& dst, int32_t bias) {
    const int32_t width = src.width;
    const int32_t height = src.height;
    if (src.Empty() || dst.Empty() || dst.width != width || dst.height != height) return;
    if (width < 3 || height < 3) return;

    const ShadeTable& shades = Shades();
    const int64_t level = 128 - static_cast<int64_t>(bias);
    const auto index = [level](int32_t difference) {
        const int64_t g = difference + level;
        return static_cast<size_t>(g < 0 || g > 255 ? 0 : g);
    };
    for (int32_t y = 1; y < height - 1; ++y) {
        const uint8_t* const row = src.Row(y);
        uint8_t* const out = dst.Row(y);
        for (int32_t x = 1; x < width - 1; ++x)
            out[x] = shades[index(row[x + width] - row[x - width])][index(row[x + 1] - row[x - 1])];
    }
}
