// How the numbers of a picture become colours.
#ifndef SPECIALEFFECTS_HOST_COLOR_H
#define SPECIALEFFECTS_HOST_COLOR_H

#include "Libav.h"

namespace host {

struct Color {
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;  ///< unspecified means 16 to 235
    AVChromaLocation chroma = AVCHROMA_LOC_UNSPECIFIED;

    bool operator==(const Color&) const = default;
};

/// As the picture's fields say.
Color ColorOf(const AVFrame& picture);
void SetColor(AVFrame& picture, const Color& color);
void SetColor(AVCodecContext& codec, const Color& color);

/// The transfer functions PQ and HLG.
bool IsHighDynamicRange(const AVFrame& picture);

/// Whether black is 0 and white is 255.
bool IsFullRange(const AVFrame& picture);

bool IsRgb(AVPixelFormat format);

/// The matrix that players assume where none is stated: BT.709 from 720 lines on, else BT.601.
AVColorSpace MatrixForHeight(int lines);

/// The colour that a decoded picture has as a frame of this height: its own where it is YUV. RGB gets the
/// matrix of its height. What is to be tone-mapped becomes BT.709.
Color ColorAsFrame(const AVFrame& picture, int targetHeight);

}  // namespace host

#endif
