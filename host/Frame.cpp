#include "Frame.h"

namespace host {
namespace {

// Vector code of the scaler may read a little past the last row.
constexpr size_t kSlack = 64;

}  // namespace

Frame::Frame(int width, int height, int32_t format) : m_width(width), m_height(height), m_format(format) {
    for (int plane = 0; plane < PlaneCount(); ++plane) {
        m_offsets[static_cast<size_t>(plane)] = m_size;
        m_size += static_cast<size_t>(RowBytes(plane)) * static_cast<size_t>(Rows(plane));
    }
    m_bytes.resize(m_size + kSlack);
}

int Frame::RowBytes(int plane) const {
    if (m_format == kFormatPacked) return 3 * m_width;
    return plane == 0 ? m_width : m_width / 2;
}

ImageRecord Frame::Record() {
    ImageRecord record{};
    record.Format = m_format;
    for (int plane = 0; plane < PlaneCount(); ++plane) {
        record.Plane[plane] = Plane(plane);
        record.PlaneSize[plane] = RowBytes(plane) * Rows(plane);
    }
    return record;
}

}  // namespace host
