#!/bin/sh
# The commands of docs/gstreamer.md for a virtual camera, in a session of PipeWire of their own.
if [ -z "${SFX_TEST_SESSION:-}" ]; then
    SFX_TEST_SESSION=1 exec dbus-run-session -- "$0" "$@"
fi
. "$(dirname "$0")/environment.sh"

# The path of a socket has to be short.
XDG_RUNTIME_DIR=$(mktemp -d)
export XDG_RUNTIME_DIR XDG_CONFIG_HOME="$scratch/config" XDG_STATE_HOME="$scratch/state"
mkdir -m 700 config state
unset G_DEBUG # what PipeWire's own elements complain about ends nothing

processes=""
trap 'kill -9 $processes 2> /dev/null; wait; rm -rf "$XDG_RUNTIME_DIR"' EXIT
trap 'exit 1' HUP INT TERM
start() {
    "$@" > "$1.txt" 2>&1 &
    processes="$! $processes"
}
# Repeats a command until it succeeds, for a minute at most.
await() {
    end=$(($(date +%s) + 60))
    until "$@" > await.txt 2>&1; do
        [ "$(date +%s)" -lt "$end" ] || fail "in vain: $*
$(tail -n 50 ./*.txt)"
        sleep 0.2
    done
}

start pipewire
await pw-cli info 0
start wireplumber
await sh -c 'wpctl status | grep -q WirePlumber'

"$root/tests/docs/commands.py" list docs/gstreamer.md | grep pipewire > commands.txt
[ "$(wc -l < commands.txt)" -eq 2 ] || fail "the page has other commands for PipeWire"
# Without colour, so that the effect can be recognized.
sed -n 1p commands.txt | sed 's/v4l2src/videotestsrc is-live=true/; s/sfx-rain/sfx-gray-scale/; s/^/exec /' > camera.sh
start sh camera.sh
await sh -c 'pw-cli ls Node | grep -q sfx-camera'
sed -n 2p commands.txt |
    sed "s|pipewiresrc|pipewiresrc num-buffers=10|; s|autovideosink|video/x-raw,format=I420 ! filesink location=seen.yuv|" \
        > reader.sh
# Again, where PipeWire has listed the camera before it can connect it.
await timeout 30 sh reader.sh

frame=$((320 * 240 * 3 / 2))
[ "$(wc -c < seen.yuv)" -eq $((10 * frame)) ] || fail "other than 10 pictures came out"
chroma=$(tail -c $((frame / 3)) seen.yuv | od -An -v -tu1 -w1 | sort -u | tr -d ' \n')
[ "$chroma" = 128 ] || fail "the picture is not gray: $chroma"
