// OBS's asynchronous video frames as libsfx's pictures.
#ifndef SPECIALEFFECTS_BRIDGES_OBS_FRAMES_H
#define SPECIALEFFECTS_BRIDGES_OBS_FRAMES_H

#include <obs.h>

#include "sfx/sfx.h"

namespace sfxobs {

/// Lays a picture over a frame, top row first. False for a format that libsfx does not know. A plane of alpha
/// is left out.
bool PictureOf(const obs_source_frame& frame, sfx_picture& picture);

}  // namespace sfxobs

#endif
