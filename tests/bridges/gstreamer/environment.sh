# shellcheck shell=sh
# What the scripts in this folder share. To be sourced with: BUILD folder, SCRATCH folder.
#
# A registry, a cache and plugins of their own, so that no other plugin of the machine says a word when GStreamer makes
# the registry; the program specialeffects on the path; an empty folder to work in.
set -eu
build=$1
scratch=$2
export GST_REGISTRY_1_0="$scratch.registry.bin" GST_PLUGIN_PATH_1_0="$build/gstreamer-1.0"
export GST_PLUGIN_SYSTEM_PATH_1_0="$build/tests/bridges/gstreamer/plugins"
export XDG_CACHE_HOME="$build/tests/bridges/gstreamer/cache" G_DEBUG=fatal-criticals
export PATH="$build/host:/usr/bin:$PATH" # Debian's own python3, which has python3-gi
root=$(cd "$(dirname "$0")/../../.." && pwd)
export root
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch"

fail() {
    echo "$*" >&2
    exit 1
}

# Runs a command that must succeed without a word on stderr.
silently() {
    "$@" > output.txt 2> errors.txt || fail "$* failed: $(cat errors.txt)"
    [ ! -s errors.txt ] || fail "$* complains: $(cat errors.txt)"
}

# The elements of the effects.
elements() {
    gst-inspect-1.0 specialeffects | sed -n 's/^  \(sfx-[a-z0-9-]*\):.*/\1/p'
}
