// A picture as effects take it.
#ifndef SPECIALEFFECTS_HOST_FRAME_H
#define SPECIALEFFECTS_HOST_FRAME_H

#include <cstdint>

#include "Libav.h"

namespace host {

/// A picture in planar YUV 4:2:0, 8 bits, with no gap between the rows of a plane. It holds a reference to
/// its pixels: FFmpeg's encoders keep one of their own, without a copy.
class Frame {
  public:
    /// No picture.
    Frame() = default;
    /// With planes of its own, whose contents are undefined.
    Frame(int width, int height);
    /// Takes over a picture in this layout.
    explicit Frame(AVFramePtr picture) : picture_(std::move(picture)) {}

    explicit operator bool() const { return picture_ != nullptr; }

    int Width() const { return picture_->width; }
    int Height() const { return picture_->height; }

    static constexpr int kPlanes = 3;
    uint8_t* Plane(int plane) { return picture_->data[plane]; }
    const uint8_t* Plane(int plane) const { return picture_->data[plane]; }
    /// Bytes in a row of the plane, and from one row to the next.
    int RowBytes(int plane) const { return plane == 0 ? Width() : (Width() + 1) / 2; }
    int Rows(int plane) const { return plane == 0 ? Height() : (Height() + 1) / 2; }

    /// When to show it, in ticks of the stream it belongs to.
    int64_t Time() const { return picture_->pts; }
    void SetTime(int64_t time) { picture_->pts = time; }

    /// The picture as FFmpeg's libraries take it, with its colour.
    AVFrame& Picture() { return *picture_; }
    const AVFrame& Picture() const { return *picture_; }

    /// A frame with the same pixels in memory. Neither may be written to as long as both live.
    Frame Share() const;

    /// Copies the pixels of a frame of the same size.
    void CopyPixels(const Frame& from);

  private:
    AVFramePtr picture_;
};

/// Frames of one size whose memory is used again when nobody holds it any more.
class FramePool {
  public:
    FramePool() = default;
    FramePool(int width, int height);

    Frame Take() const;

  private:
    struct Uninit {
        void operator()(AVBufferPool* pool) const { av_buffer_pool_uninit(&pool); }
    };

    int width_ = 0;
    int height_ = 0;
    std::unique_ptr<AVBufferPool, Uninit> pool_;
};

/// Whether FFmpeg's picture is in the layout of a frame, and nobody else refers to its pixels.
bool IsFrameLayout(const AVFrame& picture);

}  // namespace host

#endif
