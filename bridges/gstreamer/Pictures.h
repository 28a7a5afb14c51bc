// GStreamer's video frames as libsfx's pictures.
#ifndef SPECIALEFFECTS_BRIDGES_GSTREAMER_PICTURES_H
#define SPECIALEFFECTS_BRIDGES_GSTREAMER_PICTURES_H

#include <gst/video/video.h>

#include "sfx/sfx.h"

namespace sfxgst {

/// What the pads take: raw video in system memory in the formats that libsfx knows, I420 first. The caller
/// owns the caps.
GstCaps* SupportedCaps();

/// A mapped frame, of which the negotiated size is visible, as a picture. Planes that do not lie in the
/// mapped memory get a size that libsfx refuses.
sfx_picture PictureOf(const GstVideoFrame& frame, const GstVideoInfo& negotiated);

}  // namespace sfxgst

#endif
