// Video files for tests: made by FFmpeg's libraries, looked at through the program's own input.
#ifndef SPECIALEFFECTS_TESTS_HOST_CLIPS_H
#define SPECIALEFFECTS_TESTS_HOST_CLIPS_H

#include <string>
#include <vector>

#include "Frame.h"
#include "Libav.h"

struct ClipOptions {
    int width = 96;
    int height = 64;
    int frames = 30;                     ///< at 30 a second
    AVCodecID sound = AV_CODEC_ID_NONE;  ///< AV_CODEC_ID_AAC or a PCM codec
    int rotation = 0;                    ///< degrees clockwise that a player is asked to turn it
};

/// Writes a clip; the container goes by the extension.
void MakeClip(const std::string& path, const ClipOptions& options);

/// All frames, planar, as the program's input gives them.
std::vector<host::Frame> FramesOf(const std::string& path);

/// The first frame of a picture or a video.
host::Frame FirstFrameOf(const std::string& path);

struct Sound {
    std::string bytes;       ///< of all packets
    double firstSecond = 0;  ///< when the first packet begins
    double lastSecond = 0;   ///< when the last packet begins
};
/// The first sound stream of a file. A file without sound gives an empty one.
Sound SoundOf(const std::string& path);

/// Mean of a plane.
double MeanOf(const host::Frame& frame, int plane);

/// Mean of the absolute differences over all bytes.
double Difference(const host::Frame& a, const host::Frame& b);

#endif
