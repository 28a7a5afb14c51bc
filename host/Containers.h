// The kinds of video file that the program writes.
#ifndef SPECIALEFFECTS_HOST_CONTAINERS_H
#define SPECIALEFFECTS_HOST_CONTAINERS_H

#include <span>
#include <string>
#include <string_view>

#include "Libav.h"

namespace host {

struct Container {
    std::string_view extension;
    const char* muxer;                           ///< FFmpeg's name
    std::span<const char* const> videoEncoders;  ///< in order of preference
    std::span<const char* const> soundEncoders;  ///< the same, for sound that cannot be copied
    AVCodecID subtitles = AV_CODEC_ID_NONE;      ///< what subtitles of text are converted to
    bool chapters = false;
    bool tags = false;
    bool constantRate = false;
    int highestRate = 0;     ///< frames a second, where there is a limit
    bool animation = false;  ///< of pictures: pixels are square and RGB, and there is nothing but pictures
};

/// By the extension; null when the program does not write such files.
const Container* FindContainer(const std::string& path);

/// Whether the container takes packets of this codec.
bool TakesCodec(const Container& container, AVCodecID codec);

}  // namespace host

#endif
