// The formats of pictures: their planes, the checks of what a caller passes, the picture laid over memory.
#ifndef SPECIALEFFECTS_SFX_PICTURE_H
#define SPECIALEFFECTS_SFX_PICTURE_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "sfx/sfx.h"

namespace sfx {

/// How the pixels of a format lie in memory.
enum class Layout : uint8_t {
    kPlanar,      ///< Y, and two planes of chroma
    kSemiPlanar,  ///< Y, and one plane of chroma pairs
    kPackedYuv,   ///< groups of two luma and two chroma samples
    kPackedRgb,   ///< red, green and blue of a pixel together
};

struct FormatInfo {
    const char* name;
    Layout layout;
    uint8_t planes;
    uint8_t pixelBytes;  ///< of packed RGB
    /// Planar: the planes of Y, U and V. Semi-planar: the plane of Y, and the places of U and V in a pair.
    /// Packed YUV: the first luma sample's, U's and V's place in a group. Packed RGB: red's, green's, blue's.
    std::array<uint8_t, 3> places;
    uint8_t chromaShiftX, chromaShiftY;  ///< log2 of the luma samples for a chroma sample; 0 for RGB
};

/// Null for a number that is not a format.
const FormatInfo* FindFormat(int32_t format);

/// Rows of a plane, and the bytes of one, for a picture of this size. `plane` is below `planes`.
int32_t PlaneRows(const FormatInfo& format, int plane, int32_t height);
size_t PlaneRowBytes(const FormatInfo& format, int plane, int32_t width);

constexpr bool IsServedSize(int32_t width, int32_t height) {
    return width >= 1 && width <= SFX_MAX_SIDE && height >= 1 && height <= SFX_MAX_SIDE;
}

/// A caller's picture, checked. Rows of a plane follow from its first row and its stride, which is never 0.
struct Picture {
    const FormatInfo* format;
    int32_t width, height;
    int32_t matrix, range;
    std::array<uint8_t*, 4> planes;
    std::array<ptrdiff_t, 4> strides;

    uint8_t* Row(int plane, int32_t y) const {
        const auto index = static_cast<size_t>(plane);
        return planes[index] + strides[index] * y;
    }
    /// Whether the rows of a plane follow each other without a gap.
    bool IsTight(int plane) const;
};

/// Checks what a caller passes. Leaves a message where it refuses the picture.
sfx_status CheckPicture(const sfx_picture* given, Picture& picture);

}  // namespace sfx

#endif
