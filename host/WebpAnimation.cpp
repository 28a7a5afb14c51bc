#include "WebpAnimation.h"

#include <webp/decode.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "Interrupt.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace host {
namespace {

constexpr AVRational kMilliseconds{1, 1000};
constexpr int64_t kDefaultDuration = 100;
constexpr int kRgbaBytes = 4;

// The decoder needs the whole file and holds three pictures of the canvas: these limits bound its memory to
// about 2 GB.
constexpr uintmax_t kMostBytes = uintmax_t{1} << 30;
constexpr int64_t kMostPixels = int64_t{1} << 26;

// The size of the canvas if the file begins as an animated WebP.
std::optional<Size> CanvasOf(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;  // a pipe can be read only once
    uint8_t head[30] = {};  // the headers of the file and of its first chunk
    std::ifstream file(path, std::ios::binary);
    WebPBitstreamFeatures features{};
    if (!file.read(reinterpret_cast<char*>(head), sizeof head) ||
        WebPGetFeatures(head, sizeof head, &features) != VP8_STATUS_OK || features.has_animation == 0) {
        return std::nullopt;
    }
    return Size{features.width, features.height};
}

}  // namespace

bool IsWebpAnimation(const std::string& path) {
    return CanvasOf(path).has_value();
}

WebpAnimation::WebpAnimation(const std::string& path, const InputOptions& options, const Notes& notes)
    : path_(path), start_(std::llround(options.start * kMilliseconds.den)) {
    Open();
    stream_.kind = InputKind::Recording;
    stream_.isFile = true;
    stream_.timeBase = kMilliseconds;
    stream_.frameRate = AverageRate();
    const int64_t skipped = std::llround(options.start * av_q2d(stream_.frameRate));
    stream_.frameCount = std::max<int64_t>(count_ - skipped, 0);
    if (!DecodeNext()) {
        if (Interrupted()) throw Failure("interrupted before the first frame");
        throw UsageError("{} ends before {} seconds", path_, options.start);
    }
    stream_.size = FrameSize(path_, canvas_, options, notes);
    stream_.color = ColorAsFrame(*picture_, stream_.size.height);
    intake_.emplace(stream_.size.width, stream_.size.height, 0, stream_.color);
}

void WebpAnimation::Open() {
    const std::optional<Size> canvas = CanvasOf(path_);
    if (canvas && int64_t{canvas->width} * canvas->height > kMostPixels) {
        throw Failure("{} is {}x{}; an animated WebP can have up to {} megapixels", path_, canvas->width,
                      canvas->height, kMostPixels >> 20);
    }
    std::error_code error;
    const uintmax_t size = std::filesystem::file_size(path_, error);
    if (error) throw Failure("cannot open {}: {}", path_, error.message());
    if (size > kMostBytes) {
        throw Failure("{} is too large; an animated WebP can have up to {} megabytes", path_,
                      kMostBytes >> 20);
    }
    bytes_.resize(size);
    std::ifstream file(path_, std::ios::binary);
    if (!file.read(bytes_.data(), static_cast<std::streamsize>(size))) {
        throw Failure("cannot read {}: {}", path_, SystemText(errno));
    }
    const WebPData data{reinterpret_cast<const uint8_t*>(bytes_.data()), bytes_.size()};
    WebPAnimInfo info{};
    decoder_.reset(canvas ? WebPAnimDecoderNew(&data, nullptr) : nullptr);
    if (!decoder_ || WebPAnimDecoderGetInfo(decoder_.get(), &info) == 0 || info.frame_count == 0) {
        throw Failure("{} is not an animated WebP that can be read, or is cut short", path_);
    }
    canvas_ = {static_cast<int>(info.canvas_width), static_cast<int>(info.canvas_height)};
    count_ = static_cast<int>(info.frame_count);
}

// How long a frame, counted from 0, is shown. In milliseconds.
int64_t WebpAnimation::Duration(int frame) const {
    WebPIterator iterator{};
    const bool found =
        WebPDemuxGetFrame(WebPAnimDecoderGetDemuxer(decoder_.get()), frame + 1, &iterator) != 0;
    const int64_t duration = found ? iterator.duration : 0;
    WebPDemuxReleaseIterator(&iterator);
    return duration > 0 ? duration : kDefaultDuration;
}

AVRational WebpAnimation::AverageRate() const {
    constexpr int kEnough = 1000;  // to find a frame takes time in proportion to its number
    const int frames = std::min(count_, kEnough);
    int64_t total = 0;
    for (int i = 0; i < frames; ++i) total += Duration(i);
    // The file's times are whole milliseconds. Where they fit a whole rate, that is the rate.
    const int64_t whole = (int64_t{frames} * kMilliseconds.den + total / 2) / total;
    if (whole > 0 && std::abs(int64_t{frames} * kMilliseconds.den - total * whole) <= whole) {
        return {static_cast<int>(whole), 1};
    }
    AVRational rate{};
    av_reduce(&rate.num, &rate.den, int64_t{frames} * kMilliseconds.den, total, 1'000'000);
    return rate;
}

// Puts the next picture that is wanted into picture_, with its time. False at the end.
bool WebpAnimation::DecodeNext() {
    while (decodedCount_ < count_ && !cancelled_ && !Interrupted()) {
        uint8_t* pixels = nullptr;
        int unused = 0;  // the time when the frame ends, which overflows in long files
        if (WebPAnimDecoderGetNext(decoder_.get(), &pixels, &unused) == 0) {
            throw Failure("{} is damaged: frame {} of {} cannot be decoded", path_, decodedCount_ + 1,
                          count_);
        }
        const int64_t time = end_ - start_;
        end_ += Duration(decodedCount_++);
        if (time < 0) continue;
        picture_ = NewAVFrame(canvas_.width, canvas_.height, AV_PIX_FMT_RGBA);
        const int rowBytes = canvas_.width * kRgbaBytes;
        av_image_copy_plane(picture_->data[0], picture_->linesize[0], pixels, rowBytes, rowBytes,
                            canvas_.height);
        picture_->pts = time;
        return true;
    }
    return false;
}

std::optional<InputItem> WebpAnimation::Next() {
    if (ended_ || (!picture_ && !DecodeNext())) return std::nullopt;
    return InputItem{intake_->Take(std::move(picture_))};
}

}  // namespace host
