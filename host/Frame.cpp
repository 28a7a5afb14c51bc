#include "Frame.h"

#include <new>

#include "Errors.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace host {
namespace {

// Vector code of the scaler and of the encoders may read a little past the last row.
constexpr size_t kSlack = 64;

size_t BytesOf(int width, int height) {
    const auto pixels = [](int x, int y) { return static_cast<size_t>(x) * static_cast<size_t>(y); };
    return pixels(width, height) + 2 * pixels((width + 1) / 2, (height + 1) / 2);
}

Frame FrameIn(AVBufferRef* buffer, int width, int height) {
    if (buffer == nullptr) throw std::bad_alloc();
    AVFramePtr picture = NewAVFrame();
    picture->buf[0] = buffer;
    picture->width = width;
    picture->height = height;
    picture->format = AV_PIX_FMT_YUV420P;
    uint8_t* plane = buffer->data;
    for (int i = 0; i < Frame::kPlanes; ++i) {
        picture->linesize[i] = i == 0 ? width : (width + 1) / 2;
        picture->data[i] = plane;
        plane += static_cast<ptrdiff_t>(picture->linesize[i]) * (i == 0 ? height : (height + 1) / 2);
    }
    picture->extended_data = picture->data;
    return Frame(std::move(picture));
}

}  // namespace

Frame::Frame(int width, int height)
    : Frame(FrameIn(av_buffer_alloc(BytesOf(width, height) + kSlack), width, height)) {}

Frame Frame::Share() const {
    AVFramePtr reference(av_frame_clone(picture_.get()));
    if (!reference) throw std::bad_alloc();
    return Frame(std::move(reference));
}

void Frame::CopyPixels(const Frame& from) {
    av_image_copy(picture_->data, picture_->linesize, const_cast<const uint8_t**>(from.picture_->data),
                  from.picture_->linesize, AV_PIX_FMT_YUV420P, Width(), Height());
}

FramePool::FramePool(int width, int height)
    : width_(width), height_(height), pool_(av_buffer_pool_init(BytesOf(width, height) + kSlack, nullptr)) {
    if (!pool_) throw std::bad_alloc();
}

Frame FramePool::Take() const {
    return FrameIn(av_buffer_pool_get(pool_.get()), width_, height_);
}

bool IsFrameLayout(const AVFrame& picture) {
    const bool planar = picture.format == AV_PIX_FMT_YUV420P || picture.format == AV_PIX_FMT_YUVJ420P;
    const int chromaWidth = (picture.width + 1) / 2;
    return planar && picture.linesize[0] == picture.width && picture.linesize[1] == chromaWidth &&
           picture.linesize[2] == chromaWidth && av_frame_is_writable(const_cast<AVFrame*>(&picture)) != 0;
}

}  // namespace host
