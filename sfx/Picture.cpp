#include "sfx/Picture.h"

#include <algorithm>
#include <limits>

#include "sfx/Message.h"

namespace sfx {
namespace {

// clang-format off
constexpr std::array<FormatInfo, SFX_FORMAT_COUNT> kFormats = {{
    {"i420",  Layout::kPlanar,     3, 0, {0, 1, 2}, 1, 1},
    {"yv12",  Layout::kPlanar,     3, 0, {0, 2, 1}, 1, 1},
    {"nv12",  Layout::kSemiPlanar, 2, 0, {0, 0, 1}, 1, 1},
    {"nv21",  Layout::kSemiPlanar, 2, 0, {0, 1, 0}, 1, 1},
    {"i422",  Layout::kPlanar,     3, 0, {0, 1, 2}, 1, 0},
    {"i444",  Layout::kPlanar,     3, 0, {0, 1, 2}, 0, 0},
    {"yuy2",  Layout::kPackedYuv,  1, 0, {0, 1, 3}, 1, 0},
    {"uyvy",  Layout::kPackedYuv,  1, 0, {1, 0, 2}, 1, 0},
    {"rgb24", Layout::kPackedRgb,  1, 3, {0, 1, 2}, 0, 0},
    {"bgr24", Layout::kPackedRgb,  1, 3, {2, 1, 0}, 0, 0},
    {"rgba",  Layout::kPackedRgb,  1, 4, {0, 1, 2}, 0, 0},
    {"bgra",  Layout::kPackedRgb,  1, 4, {2, 1, 0}, 0, 0},
    {"argb",  Layout::kPackedRgb,  1, 4, {1, 2, 3}, 0, 0},
    {"abgr",  Layout::kPackedRgb,  1, 4, {3, 2, 1}, 0, 0},
}};
// clang-format on

constexpr int32_t Halved(int32_t length, int shift) {
    return (length + (1 << shift) - 1) >> shift;
}

/// The bytes from the lowest address of a plane's rows to the end of the highest; 0 when it does not fit the
/// address space.
size_t Extent(size_t rowBytes, int32_t rows, ptrdiff_t stride) {
    const size_t step = stride < 0 ? size_t{0} - static_cast<size_t>(stride) : static_cast<size_t>(stride);
    const auto steps = static_cast<size_t>(rows - 1);
    constexpr auto kMost = static_cast<size_t>(std::numeric_limits<ptrdiff_t>::max());
    if (steps > 0 && step > (kMost - rowBytes) / steps) {
        return 0;
    }
    return step * steps + rowBytes;
}

sfx_status CheckPlane(const sfx_picture& given, size_t plane, Picture& picture) {
    const size_t rowBytes = PlaneRowBytes(*picture.format, static_cast<int>(plane), picture.width);
    const int32_t rows = PlaneRows(*picture.format, static_cast<int>(plane), picture.height);
    uint8_t* const first = given.planes[plane];
    ptrdiff_t stride = given.strides[plane];
    if (first == nullptr) {
        return Tell(SFX_ERROR_PICTURE, "plane %zu of the %s picture is null", plane, picture.format->name);
    }
    if (stride == 0) {
        stride = static_cast<ptrdiff_t>(rowBytes);
    }
    const size_t step = stride < 0 ? size_t{0} - static_cast<size_t>(stride) : static_cast<size_t>(stride);
    if (rows > 1 && step < rowBytes) {
        return Tell(SFX_ERROR_PICTURE, "plane %zu has a stride of %td bytes where a row has %zu", plane,
                    stride, rowBytes);
    }
    const size_t extent = Extent(rowBytes, rows, stride);
    if (extent == 0) {
        return Tell(SFX_ERROR_PICTURE, "plane %zu has a stride of %td bytes, which is too large", plane,
                    stride);
    }
    if (given.sizes[plane] != 0 && given.sizes[plane] < extent) {
        return Tell(SFX_ERROR_PICTURE, "plane %zu has %zu bytes where %zu are needed", plane,
                    given.sizes[plane], extent);
    }
    picture.planes[plane] = first;
    picture.strides[plane] = stride;
    return SFX_OK;
}

}  // namespace

const FormatInfo* FindFormat(int32_t format) {
    return format >= 0 && format < SFX_FORMAT_COUNT ? &kFormats[static_cast<size_t>(format)] : nullptr;
}

int32_t PlaneRows(const FormatInfo& format, int plane, int32_t height) {
    return plane == 0 ? height : Halved(height, format.chromaShiftY);
}

size_t PlaneRowBytes(const FormatInfo& format, int plane, int32_t width) {
    const auto pixels = static_cast<size_t>(width);
    const auto pairs = static_cast<size_t>(Halved(width, 1));
    switch (format.layout) {
        case Layout::kPackedRgb:
            return pixels * format.pixelBytes;
        case Layout::kPackedYuv:
            return pairs * 4;
        case Layout::kSemiPlanar:
            return plane == 0 ? pixels : pairs * 2;
        case Layout::kPlanar:
            break;
    }
    return plane == 0 ? pixels : static_cast<size_t>(Halved(width, format.chromaShiftX));
}

bool Picture::IsTight(int plane) const {
    const size_t rowBytes = PlaneRowBytes(*format, plane, width);
    return strides[static_cast<size_t>(plane)] == static_cast<ptrdiff_t>(rowBytes) ||
           PlaneRows(*format, plane, height) == 1;
}

sfx_status CheckPicture(const sfx_picture* given, Picture& picture) {
    if (given == nullptr) {
        return Tell(SFX_ERROR_ARGUMENT, "the picture is null");
    }
    if (given->struct_size < sizeof(sfx_picture)) {
        return Tell(SFX_ERROR_ARGUMENT, "struct_size of the picture is %zu; it is not initialised",
                    given->struct_size);
    }
    picture = {FindFormat(given->format), given->width, given->height, given->matrix, given->range, {}, {}};
    if (picture.format == nullptr) {
        return Tell(SFX_ERROR_PICTURE, "there is no picture format %d", static_cast<int>(given->format));
    }
    if (!IsServedSize(picture.width, picture.height)) {
        return Tell(SFX_ERROR_PICTURE, "a picture of %d by %d is refused; sides are 1 to %d",
                    static_cast<int>(picture.width), static_cast<int>(picture.height), SFX_MAX_SIDE);
    }
    if (picture.matrix < SFX_BT601 || picture.matrix > SFX_BT2020) {
        return Tell(SFX_ERROR_PICTURE, "there is no colour matrix %d", static_cast<int>(picture.matrix));
    }
    if (picture.range != SFX_LIMITED && picture.range != SFX_FULL) {
        return Tell(SFX_ERROR_PICTURE, "there is no colour range %d", static_cast<int>(picture.range));
    }
    for (size_t plane = 0; plane < picture.format->planes; ++plane) {
        if (const sfx_status status = CheckPlane(*given, plane, picture); status != SFX_OK) {
            return status;
        }
    }
    return SFX_OK;
}

}  // namespace sfx
