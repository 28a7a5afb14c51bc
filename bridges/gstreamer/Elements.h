// The elements that the plugin consists of.
#ifndef SPECIALEFFECTS_BRIDGES_GSTREAMER_ELEMENTS_H
#define SPECIALEFFECTS_BRIDGES_GSTREAMER_ELEMENTS_H

#include <gst/gst.h>

namespace sfxgst {

/// "sfx-sketch-2" and so on, with the effect's settings as typed properties.
bool RegisterEffectElements(GstPlugin* plugin);

/// "sfxchain", which takes the text of several effects.
bool RegisterChainElement(GstPlugin* plugin);

}  // namespace sfxgst

#endif
