#!/bin/sh
# An installed plugin finds the installed libsfx and its data, wherever the copy lies.
. "$(dirname "$0")/environment.sh"

silently cmake --install "$build" --prefix "$scratch/first"
[ -z "$(find first -name 'libgst*')" ] || fail "the plugin is installed unasked"
silently cmake --install "$build" --prefix "$scratch/first" --component gstreamer
mv first moved
plugin=$(find "$PWD/moved" -name libgstspecialeffects.so)
ldd "$plugin" | grep -q "libsfx.*$scratch/moved/" || fail "$(ldd "$plugin")"
GST_PLUGIN_PATH_1_0=$(dirname "$plugin")
silently gst-launch-1.0 -q videotestsrc num-buffers=3 ! sfx-picture-me ! fakesink silent=true
