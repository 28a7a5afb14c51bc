#include "tests/sfx/PlainPicture.h"

#include <algorithm>
#include <cmath>

#include "tests/support/TestFrame.h"

PlainPicture::PlainPicture(sfx_format format, int32_t width, int32_t height, Rows rows) {
    record_.format = format;
    record_.width = width;
    record_.height = height;
    for (int plane = 0; plane < sfx_format_planes(format); ++plane) {
        const size_t rowBytes = sfx_plane_row_bytes(format, plane, width);
        const auto count = static_cast<size_t>(sfx_plane_rows(format, plane, height));
        const size_t step = rows == Rows::kTight ? rowBytes : rowBytes + 13;
        const size_t size = step * (count - 1) + rowBytes;
        std::vector<uint8_t>& storage = storage_[plane];
        storage.assign(size + 2 * kGuard, kGuardByte);
        const bool bottomUp = rows == Rows::kBottomUp;
        record_.planes[plane] = storage.data() + kGuard + (bottomUp ? step * (count - 1) : 0);
        record_.strides[plane] = bottomUp ? -static_cast<ptrdiff_t>(step) : static_cast<ptrdiff_t>(step);
        record_.sizes[plane] = size;
    }
}

namespace {

template <class Visit>
void EachRow(const sfx_picture& record, Visit visit) {
    for (int plane = 0; plane < sfx_format_planes(record.format); ++plane) {
        for (int32_t y = 0; y < sfx_plane_rows(record.format, plane, record.height); ++y) {
            visit(record.planes[plane] + record.strides[plane] * y,
                  sfx_plane_row_bytes(record.format, plane, record.width));
        }
    }
}

}  // namespace

void PlainPicture::Randomize(uint64_t seed) {
    TestRandom random(seed);
    EachRow(record_,
            [&](uint8_t* row, size_t bytes) { std::generate_n(row, bytes, [&] { return random.Byte(); }); });
}

void PlainPicture::Smooth(uint64_t seed) {
    Randomize(seed);
    for (int32_t y = 0; y < height(); ++y) {
        for (int32_t x = 0; x < width(); ++x) {
            for (int component = 0; component < 3; ++component) {
                const double wave = std::sin(0.13 * (component + 1) * x + static_cast<double>(seed)) *
                                    std::cos(0.11 * y + component);
                *Sample(component, x, y) = static_cast<uint8_t>(128 + 90 * wave);
            }
        }
    }
}

std::vector<uint8_t> PlainPicture::Bytes() const {
    std::vector<uint8_t> bytes;
    EachRow(record_, [&](const uint8_t* row, size_t count) { bytes.insert(bytes.end(), row, row + count); });
    return bytes;
}

bool PlainPicture::GuardsIntact() const {
    for (int plane = 0; plane < sfx_format_planes(record_.format); ++plane) {
        std::vector<uint8_t> rest = storage_[plane];
        uint8_t* const first = record_.planes[plane];
        for (int32_t y = 0; y < sfx_plane_rows(record_.format, plane, record_.height); ++y) {
            const ptrdiff_t at = first + record_.strides[plane] * y - storage_[plane].data();
            std::fill_n(rest.begin() + at, sfx_plane_row_bytes(record_.format, plane, record_.width),
                        kGuardByte);
        }
        if (!std::all_of(rest.begin(), rest.end(), [](uint8_t byte) { return byte == kGuardByte; })) {
            return false;
        }
    }
    return true;
}

int32_t PlainPicture::ChromaWidth() const {
    return IsRgb() || record_.format == SFX_I444 ? 1 : 2;
}
int32_t PlainPicture::ChromaHeight() const {
    return record_.format <= SFX_NV21 ? 2 : 1;
}

uint8_t* PlainPicture::Sample(int component, int32_t x, int32_t y) const {
    const auto at = [&](int plane, int32_t column, int32_t row) {
        return record_.planes[plane] + record_.strides[plane] * row + column;
    };
    const int32_t cx = x / ChromaWidth(), cy = y / ChromaHeight();
    switch (record_.format) {
        case SFX_I420:
        case SFX_I422:
        case SFX_I444:
            return component == 0 ? at(0, x, y) : component == 3 ? nullptr : at(component, cx, cy);
        case SFX_YV12:
            return component == 0 ? at(0, x, y) : component == 3 ? nullptr : at(3 - component, cx, cy);
        case SFX_NV12:
            return component == 0   ? at(0, x, y)
                   : component == 3 ? nullptr
                                    : at(1, 2 * cx + component - 1, cy);
        case SFX_NV21:
            return component == 0   ? at(0, x, y)
                   : component == 3 ? nullptr
                                    : at(1, 2 * cx + 2 - component, cy);
        case SFX_YUY2:
            return component == 0   ? at(0, 2 * x, y)
                   : component == 3 ? nullptr
                                    : at(0, 4 * cx + 2 * component - 1, y);
        case SFX_UYVY:
            return component == 0   ? at(0, 2 * x + 1, y)
                   : component == 3 ? nullptr
                                    : at(0, 4 * cx + 2 * component - 2, y);
        case SFX_RGB24:
            return component == 3 ? nullptr : at(0, 3 * x + component, y);
        case SFX_BGR24:
            return component == 3 ? nullptr : at(0, 3 * x + 2 - component, y);
        case SFX_RGBA:
            return at(0, 4 * x + component, y);
        case SFX_BGRA:
            return component == 3 ? at(0, 4 * x + 3, y) : at(0, 4 * x + 2 - component, y);
        case SFX_ARGB:
            return component == 3 ? at(0, 4 * x, y) : at(0, 4 * x + 1 + component, y);
        case SFX_ABGR:
            return component == 3 ? at(0, 4 * x, y) : at(0, 4 * x + 3 - component, y);
        default:
            return nullptr;
    }
}
