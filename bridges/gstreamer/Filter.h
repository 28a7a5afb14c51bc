// What all elements have in common: frames through libsfx, and the properties "enabled", "seed" and
// "data-folder".
//
// Functions that GLib calls are noexcept: where this code runs out of memory the process ends, as with GLib's
// own allocations. libsfx reports a lack of memory, and that becomes a message on the bus.
#ifndef SPECIALEFFECTS_BRIDGES_GSTREAMER_FILTER_H
#define SPECIALEFFECTS_BRIDGES_GSTREAMER_FILTER_H

#include <gst/video/gstvideofilter.h>

#include <memory>

#include "sfx/sfx.h"

GST_DEBUG_CATEGORY_EXTERN(sfx_debug);

namespace sfxgst {

using Effect = std::shared_ptr<sfx_effect>;

/// Null where libsfx refuses the text; sfx_message() says why.
Effect CreateEffect(const char* text);

struct FilterState;

/// An abstract GObject type. Functions of derived types get the object as GObject*.
struct Filter {
    GstVideoFilter parent;
    FilterState* state;
};
struct FilterClass {
    GstVideoFilterClass parent;
};
GType FilterType();

/// The effect that runs; null where frames pass unchanged. Callable from any thread.
Effect CurrentEffect(GObject* filter);

/// Makes `effect` the one that runs, from the next frame on: with the seed and data folder of the filter, and
/// ready for the size of its frames. Null lets frames pass unchanged.
void ReplaceEffect(GObject* filter, Effect effect);

/// Posts a warning for a text that is not an effect. The effect that runs stays; a filter without one cannot
/// be started until it has one.
void RefuseEffect(GObject* filter, const char* problem);

/// For class_init: what an element is called, and what it does.
void DescribeElement(gpointer elementClass, const char* name, const char* description);

}  // namespace sfxgst

#endif
