#!/bin/sh
# The commands of docs/gstreamer.md work as they stand there, with a test picture for the camera and nothing for the
# window. Those for PipeWire are in virtual_camera.sh.
. "$(dirname "$0")/environment.sh"
cp -r "$root/demo" "$root/docs" .

run=0
shell_commands "$root/docs/gstreamer.md" > commands.txt
while IFS= read -r command; do
    case $command in
        make* | export* | *pipewire*) continue ;;
        "python3 docs/gstreamer_control.py") command="$command '$camera' '$window'" ;;
    esac
    echo "$command" > command.sh
    silently sh command.sh
    run=$((run + 1))
done < commands.txt
[ "$run" -ge 9 ] || fail "only $run commands are left"

# What they made.
silently gst-launch-1.0 -q filesrc location=film.webm ! decodebin name=in \
    in. ! queue ! videoconvert ! video/x-raw,format=I420 ! filesink location=film.yuv \
    in. ! queue ! audioconvert ! audio/x-raw,format=S16LE,channels=1 ! filesink location=film.pcm
[ "$(wc -c < film.yuv)" -eq $((50 * 320 * 240 * 3 / 2)) ] || fail "the film has lost pictures"
[ "$(wc -c < film.pcm)" -gt 80000 ] || fail "the film has lost sound"
silently gst-launch-1.0 -q filesrc location=effects.jpg ! jpegdec ! videoconvert ! \
    video/x-raw,format=I420,width=960,height=240 ! filesink location=effects.yuv
