// Animated WebP as input, which the decoders of FFmpeg's libraries do not read.
#ifndef SPECIALEFFECTS_HOST_WEBPANIMATION_H
#define SPECIALEFFECTS_HOST_WEBPANIMATION_H

#include <webp/demux.h>

#include <optional>
#include <string>

#include "Intake.h"
#include "VideoInput.h"

namespace host {

/// Whether a regular file of this name begins as an animated WebP. False for a still WebP.
bool IsWebpAnimation(const std::string& path);

/// Its frames, once: the loop count is ignored. The colour under alpha is taken as it is. A duration of 0
/// counts as 100 ms, as in browsers. Throws Failure where a frame cannot be decoded.
class WebpAnimation : public VideoInput {
  public:
    WebpAnimation(const std::string& path, const InputOptions& options, const Notes& notes);

    std::optional<InputItem> Next() override;

  private:
    void Open();
    bool DecodeNext();
    int64_t Duration(int frame) const;
    AVRational AverageRate() const;

    std::string path_;
    std::string bytes_;  // of the file; the decoder refers to them
    std::unique_ptr<WebPAnimDecoder, FreeByValue<WebPAnimDecoderDelete>> decoder_;
    AVFramePtr picture_;  // decoded and not yet taken
    std::optional<Intake> intake_;
    Size canvas_{};
    int count_ = 0;  // frames in the file
    int decodedCount_ = 0;
    int64_t start_ = 0;  // in the file, of what is wanted, in milliseconds
    int64_t end_ = 0;    // of the frames that are decoded
};

}  // namespace host

#endif
