// Operations on slopes of planes: refraction and relief lighting.
//
// Both load each pixel from an offset that depends on its neighbourhood. The offsets of a stretch of pixels
// are computed first, in loops that the compiler vectorises; then the pixels are loaded one by one.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/Plane8u.h"

namespace {

constexpr ptrdiff_t kStretch = 256;  // pixels that are processed together

// ---- refraction ------------------------------------------------------------------------------------

/// Part of a row of the bump plane, and its position.
struct BumpStretch {
    const uint8_t* here;  // the first pixel
    int32_t x, y;         // its place
    int32_t width, height;
};

/// Computes the source offsets of a stretch from the plane's first pixel. Returns false if the bump plane is
/// level there, so that every pixel is its own source.
SE_INLINE bool Refract(const BumpStretch& bump, ptrdiff_t count, int32_t* SE_RESTRICT sources) {
    const uint8_t* SE_RESTRICT const here = bump.here;
    const uint8_t* SE_RESTRICT const above = here - bump.width;
    const uint8_t* SE_RESTRICT const below = here + bump.width;
    const int32_t right = bump.width - 1, bottom = bump.height - 1;
    int32_t slopes = 0;
    for (int32_t i = 0; i < static_cast<int32_t>(count); ++i) {
        const int32_t gx = here[i - 1] - here[i + 1];
        const int32_t gy = above[i] - below[i];
        const int32_t sx = std::clamp(bump.x + i + gx, 0, right);
        const int32_t sy = std::clamp(bump.y + gy, 0, bottom);
        sources[i] = sy * bump.width + sx;
        slopes |= gx | gy;
    }
    return slopes != 0;
}

/// out = loaded pixel + slope to the right, saturated.
SE_INLINE void Brighten(const uint8_t* SE_RESTRICT fetched, const uint8_t* SE_RESTRICT bump, ptrdiff_t count,
                        uint8_t* SE_RESTRICT out) {
    for (ptrdiff_t i = 0; i < count; ++i) {
        const auto sum = static_cast<int16_t>(fetched[i] + bump[i - 1] - bump[i + 1]);
        out[i] = static_cast<uint8_t>(std::clamp<int16_t>(sum, 0, 255));
    }
}

// ---- relief ----------------------------------------------------------------------------------------

constexpr uint16_t kRim = 128 * 128;  // square of the ball's radius; beyond it all is dark

/// Brightness of a ball seen from above, lit from there, by the squared distance from its middle.
const std::array<uint8_t, kRim + 1>& BallShades() {
    static const std::array<uint8_t, kRim + 1> table = [] {
        std::array<uint8_t, kRim + 1> shades{};
        for (int i = 0; i <= kRim; ++i) {
            const float height = 1.0f - std::sqrt(static_cast<float>(i) / kRim);
            shades[static_cast<size_t>(i)] = static_cast<uint8_t>(std::min(height * 256.0f, 255.0f));
        }
        return shades;
    }();
    return table;
}

/// Squared distances from the middle of the ball, at most kRim, for a stretch of pixels of one row. `level`
/// is the value of a slope of 0.
SE_INLINE void Steepness(const uint8_t* here, ptrdiff_t width, int16_t level, ptrdiff_t count,
                         uint16_t* SE_RESTRICT distances) {
    const auto component = [level](uint8_t low, uint8_t high) {
        const auto g = static_cast<int16_t>(high - low + level);
        // A slope out of range counts as the steepest downward slope.
        return static_cast<int16_t>((g < 0 || g > 255 ? 0 : g) - 128);
    };
    for (ptrdiff_t i = 0; i < count; ++i) {
        const int16_t a = component(here[i - width], here[i + width]);
        const int16_t b = component(here[i - 1], here[i + 1]);
        const auto distance = static_cast<uint16_t>(a * a + b * b);
        distances[i] = std::min(distance, kRim);
    }
}

bool SameSize(const CPlane8u& a, const CPlane8u& b) {
    return a.width == b.width && a.height == b.height;
}

}  // namespace

void DisplaceByGradient(const CPlane8u& bump, const CPlane8u& src, CPlane8u& dst) {
    const int32_t width = src.width;
    const int32_t height = src.height;
    if (src.Empty() || bump.Empty() || dst.Empty() || !SameSize(src, bump) || !SameSize(src, dst)) return;
    if (width < 2 || height < 2 || static_cast<int64_t>(width) * height > INT32_MAX) return;

    std::array<int32_t, kStretch> sources;
    std::array<uint8_t, kStretch> fetched;
    for (int32_t y = 1; y < height - 1; ++y) {
        for (ptrdiff_t x = 1; x < width - 1; x += kStretch) {
            const ptrdiff_t count = std::min<ptrdiff_t>(kStretch, width - 1 - x);
            const uint8_t* const here = bump.Row(y) + x;
            uint8_t* const out = dst.Row(y) + x;
            if (!AtLevel<Refract>({here, static_cast<int32_t>(x), y, width, height}, count, sources.data())) {
                std::memcpy(out, src.Row(y) + x, static_cast<size_t>(count));
                continue;
            }
#pragma GCC unroll 4  // or the speed depends on where the linker puts the loop
            for (size_t i = 0; i < static_cast<size_t>(count); ++i) fetched[i] = src.data[sources[i]];
            AtLevel<Brighten>(fetched.data(), here, count, out);
        }
    }
    const auto columns = static_cast<size_t>(width - 1);
    std::memcpy(dst.Row(0), dst.Row(1), columns);
    if (height > 2) std::memcpy(dst.Row(height - 1), dst.Row(height - 2), columns);
    for (int32_t y = 0; y < height; ++y) dst.Row(y)[0] = dst.Row(y)[1];
}

void ShadeByGradient(const CPlane8u& src, CPlane8u& dst, int32_t bias) {
    const int32_t width = src.width;
    const int32_t height = src.height;
    if (src.Empty() || dst.Empty() || !SameSize(src, dst) || width < 3 || height < 3) return;

    const auto& shades = BallShades();
    // Every bias that takes all slopes out of range gives the same result, so the clamp changes nothing.
    const auto level = static_cast<int16_t>(128 - std::clamp(bias, -1000, 1000));
    std::array<uint16_t, kStretch> distances;
    for (int32_t y = 1; y < height - 1; ++y) {
        for (ptrdiff_t x = 1; x < width - 1; x += kStretch) {
            const ptrdiff_t count = std::min<ptrdiff_t>(kStretch, width - 1 - x);
            AtLevel<Steepness>(src.Row(y) + x, width, level, count, distances.data());
            uint8_t* const out = dst.Row(y) + x;
#pragma GCC unroll 4  // or the speed depends on where the linker puts the loop
            for (size_t i = 0; i < static_cast<size_t>(count); ++i) out[i] = shades[distances[i]];
        }
    }
}
