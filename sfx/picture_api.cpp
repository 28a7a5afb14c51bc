// The C functions about formats and pictures.
#include <limits>

#include "sfx/Message.h"
#include "sfx/Picture.h"
#include "sfx/Words.h"

using sfx::Tell;

const char* sfx_format_name(int32_t format) noexcept {
    const sfx::FormatInfo* const info = sfx::FindFormat(format);
    return info != nullptr ? info->name : nullptr;
}

sfx_status sfx_format_from_name(const char* name, int32_t* format) noexcept {
    if (name == nullptr || format == nullptr) {
        return Tell(SFX_ERROR_ARGUMENT, "the name or the format is null");
    }
    for (int32_t i = 0; i < SFX_FORMAT_COUNT; ++i) {
        if (sfx::SameText(name, sfx::FindFormat(i)->name)) {
            *format = i;
            return SFX_OK;
        }
    }
    return Tell(SFX_ERROR_UNKNOWN, "there is no picture format \"%s\"", name);
}

int32_t sfx_format_planes(int32_t format) noexcept {
    const sfx::FormatInfo* const info = sfx::FindFormat(format);
    return info != nullptr ? info->planes : 0;
}

int32_t sfx_plane_rows(int32_t format, int32_t plane, int32_t height) noexcept {
    const bool there = plane >= 0 && plane < sfx_format_planes(format) && sfx::IsServedSize(1, height);
    return there ? sfx::PlaneRows(*sfx::FindFormat(format), plane, height) : 0;
}

size_t sfx_plane_row_bytes(int32_t format, int32_t plane, int32_t width) noexcept {
    const bool there = plane >= 0 && plane < sfx_format_planes(format) && sfx::IsServedSize(width, 1);
    return there ? sfx::PlaneRowBytes(*sfx::FindFormat(format), plane, width) : 0;
}

size_t sfx_picture_layout(sfx_picture* picture, int32_t format, int32_t width, int32_t height,
                          void* pixels) noexcept {
    if (sfx::FindFormat(format) == nullptr || !sfx::IsServedSize(width, height)) {
        return 0;
    }
    sfx_picture laid = SFX_PICTURE_INIT;
    laid.format = format;
    laid.width = width;
    laid.height = height;
    size_t bytes = 0;
    for (int32_t plane = 0; plane < sfx_format_planes(format); ++plane) {
        const size_t rowBytes = sfx_plane_row_bytes(format, plane, width);
        laid.planes[plane] = pixels != nullptr ? static_cast<uint8_t*>(pixels) + bytes : nullptr;
        laid.strides[plane] = static_cast<ptrdiff_t>(rowBytes);
        laid.sizes[plane] = rowBytes * static_cast<size_t>(sfx_plane_rows(format, plane, height));
        bytes += laid.sizes[plane];
    }
    if (picture != nullptr) {
        *picture = laid;
    }
    return bytes;
}
