#!/bin/sh
# Every element gives the frames of the program specialeffects, byte for byte, with a seed.
. "$(dirname "$0")/environment.sh"

# A clip that moves, for the program with a header, for GStreamer without.
silently gst-launch-1.0 -q videotestsrc pattern=ball num-buffers=25 ! \
    video/x-raw,format=I420,width=176,height=144,framerate=25/1 ! tee name=t \
    t. ! queue ! y4menc ! filesink location=clip.y4m t. ! queue ! filesink location=clip.yuv

count=0
for element in $(elements); do
    silently gst-launch-1.0 -q filesrc location=clip.yuv ! \
        rawvideoparse format=i420 width=176 height=144 framerate=25/1 ! "$element" seed=7 ! y4menc ! \
        filesink location=element.y4m
    rm -f program.y4m
    specialeffects apply -e "${element#sfx-}" --seed 7 --quiet clip.y4m program.y4m 2> errors.txt ||
        fail "specialeffects fails on $element: $(cat errors.txt)"
    # The headers differ in what is left to the writer.
    tail -n +2 element.y4m > element.frames
    tail -n +2 program.y4m > program.frames
    cmp element.frames program.frames || fail "$element and specialeffects give different frames"
    count=$((count + 1))
done
[ "$count" -eq 63 ] || fail "$count elements"
