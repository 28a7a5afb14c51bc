#include "PictureInput.h"

namespace host {

Frame FirstFrame(VideoInput& source) {
    while (auto item = source.Next()) {
        if (item->frame) return std::move(item->frame);
    }
    throw Failure("the picture cannot be decoded");
}

PictureInput::PictureInput(VideoInput& source, const InputOptions& options) : picture_(FirstFrame(source)) {
    stream_ = source.Stream();
    if (options.rate) stream_.frameRate = *options.rate;
    stream_.timeBase = av_inv_q(stream_.frameRate);
    pool_ = FramePool(stream_.size.width, stream_.size.height);
}

std::optional<InputItem> PictureInput::Next() {
    if (ended_) return std::nullopt;
    Frame frame = pool_.Take();
    frame.CopyPixels(picture_);
    SetColor(frame.Picture(), stream_.color);
    frame.SetTime(count_++);
    return InputItem{std::move(frame)};
}

}  // namespace host
