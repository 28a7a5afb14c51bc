// The plugin: registers an element for each effect of libsfx's list, and sfxchain.
#include <gst/gst.h>

#include "Elements.h"

#define PACKAGE "specialeffects"

GST_DEBUG_CATEGORY(sfx_debug);

namespace {

gboolean RegisterElements(GstPlugin* plugin) {
    GST_DEBUG_CATEGORY_INIT(sfx_debug, "sfx", 0, "special effects");
    return sfxgst::RegisterEffectElements(plugin) && sfxgst::RegisterChainElement(plugin);
}

}  // namespace

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, specialeffects, "Live video special effects",
                  RegisterElements, SE_VERSION, "MIT/X11", PACKAGE, "specialeffects")
