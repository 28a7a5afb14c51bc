#include "Frame.h"

namespace host {
namespace {

// Vector code of the scaler may read a little past the last row.
constexpr size_t kSlack = 64;

}  // namespace

Frame::Frame(int width, int height, int32_t format) : width_(width), height_(height), format_(format) {
    for (int plane = 0; plane < PlaneCount(); ++plane) {
        offsets_[static_cast<size_t>(plane)] = size_;
        size_ += static_cast<size_t>(RowBytes(plane)) * static_cast<size_t>(Rows(plane));
    }
    bytes_.resize(size_ + kSlack);
}

int Frame::RowBytes(int plane) const {
    if (format_ == kFormatPacked) return 3 * width_;
    return plane == 0 ? width_ : width_ / 2;
}

ImageRecord Frame::Record() {
    ImageRecord record{};
    record.Format = format_;
    for (int plane = 0; plane < PlaneCount(); ++plane) {
        record.Plane[plane] = Plane(plane);
        record.PlaneSize[plane] = RowBytes(plane) * Rows(plane);
    }
    return record;
}

}  // namespace host
