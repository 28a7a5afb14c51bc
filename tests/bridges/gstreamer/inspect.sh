#!/bin/sh
# gst-inspect-1.0 reads all elements, and gst-launch-1.0 runs them, without a complaint.
. "$(dirname "$0")/environment.sh"

count=0
pipeline=""
for element in $(elements) sfxchain; do
    silently gst-inspect-1.0 "$element"
    grep -q 'Filter/Effect/Video' output.txt || fail "$element has another class"
    grep -q 'data-folder  *:' output.txt || fail "$element has no data-folder"
    pipeline="$pipeline ! $element"
    count=$((count + 1))
done
[ "$count" -eq 64 ] || fail "$count elements"
# shellcheck disable=SC2086  # a list of words is meant
silently gst-launch-1.0 -q videotestsrc num-buffers=3 $pipeline ! fakesink silent=true
