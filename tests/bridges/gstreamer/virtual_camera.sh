#!/bin/sh
# The commands of docs/gstreamer.md for a virtual camera, in a session of PipeWire of their own.
if [ -z "${SFX_TEST_SESSION:-}" ]; then
    SFX_TEST_SESSION=1 exec dbus-run-session -- "$0" "$@"
fi
. "$(dirname "$0")/environment.sh"

export XDG_RUNTIME_DIR="$scratch/run" XDG_CONFIG_HOME="$scratch/config" XDG_STATE_HOME="$scratch/state"
mkdir -m 700 run config state

processes=""
trap 'kill $processes 2> /dev/null; wait' EXIT
start() {
    "$@" > "$1.txt" 2>&1 &
    processes="$! $processes"
}
# Waits up to 20 seconds for a command to succeed.
await() {
    for _ in $(seq 100); do
        if "$@" > await.txt 2>&1; then
            return 0
        fi
        sleep 0.2
    done
    fail "in vain: $*
$(cat await.txt ./*.txt)"
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
timeout 30 sh reader.sh > reader.txt 2>&1 || fail "$(cat reader.txt)"

frame=$((320 * 240 * 3 / 2))
[ "$(wc -c < seen.yuv)" -eq $((10 * frame)) ] || fail "other than 10 pictures came out"
chroma=$(tail -c $((frame / 3)) seen.yuv | od -An -v -tu1 -w1 | sort -u | tr -d ' \n')
[ "$chroma" = 128 ] || fail "the picture is not gray: $chroma"
