#!/bin/sh
# OBS itself, with the plugin as `make install-obs` installs it: it loads a scene collection with both filters,
# records, and ends without a leak.
#
#   xvfb-run -a program.sh BUILD SCRATCH
set -eu

build=$1
scratch=$2
here=$(realpath "$(dirname "$0")")
rm -rf "$scratch"
settings=$scratch/home/.config/obs-studio
mkdir -p "$settings/basic/scenes" "$settings/basic/profiles/Test" "$scratch/run" "$scratch/recordings" "$scratch/empty"
chmod 700 "$scratch/run"
export HOME="$scratch/home" XDG_CONFIG_HOME="$scratch/home/.config" XDG_CACHE_HOME="$scratch/home/.cache"
export XDG_RUNTIME_DIR="$scratch/run" QT_QPA_PLATFORM=xcb LIBGL_ALWAYS_SOFTWARE=1

fail() {
    echo "$1" >&2
    cat "$scratch/log" >&2
    exit 1
}

cmake --install "$build" --component obs-user --prefix "$settings/plugins/specialeffects" > /dev/null
# The manifest is that of the last installation by hand.
rm -f "$build/install_manifest_obs-user.txt"
ffmpeg -v error -f lavfi -i testsrc2=s=320x240:r=30:d=10 -pix_fmt yuv420p "$scratch/clip.mkv"

cat > "$settings/global.ini" << END
[General]
FirstRun=true
EnableAutoUpdates=false
InfoIncrement=99
[Basic]
Profile=Test
ProfileDir=Test
SceneCollection=Test
SceneCollectionFile=Test
ConfigOnNewProfile=false
END
cat > "$settings/basic/profiles/Test/basic.ini" << END
[General]
Name=Test
[Video]
BaseCX=640
BaseCY=240
OutputCX=640
OutputCY=240
FPSCommon=30
[SimpleOutput]
FilePath=$scratch/recordings
RecFormat=mkv
RecQuality=Small
RecEncoder=x264
[Output]
Mode=Simple
END
cat > "$settings/basic/scenes/Test.json" << END
{ "name": "Test", "current_scene": "Scene", "current_program_scene": "Scene", "scene_order": [{ "name": "Scene" }],
  "modules": { "scripts-tool": [{ "path": "$here/record.lua", "settings": {} }] },
  "sources": [
    { "id": "ffmpeg_source", "name": "Camera", "settings": { "local_file": "$scratch/clip.mkv", "looping": true },
      "filters": [{ "id": "specialeffects_filter", "name": "In memory", "settings": { "effect": "gray-scale" } }] },
    { "id": "color_source", "versioned_id": "color_source_v3", "name": "Color",
      "settings": { "color": 4278190335, "width": 320, "height": 240 },
      "filters": [{ "id": "specialeffects_any_filter", "name": "Drawn", "settings": { "effect": "gray-scale" } }] },
    { "id": "scene", "name": "Scene", "settings": { "items": [
      { "name": "Camera", "visible": true, "pos": { "x": 0, "y": 0 }, "scale": { "x": 1, "y": 1 } },
      { "name": "Color", "visible": true, "pos": { "x": 320, "y": 0 }, "scale": { "x": 1, "y": 1 } }] } }] }
END

cd "$scratch/empty"
obs --multi > "$scratch/log" 2>&1 &
obs=$!
trap 'kill -9 $obs 2> /dev/null' EXIT
# Waits for a line of the log, for a minute at most.
wait_for() {
    tries=0
    until grep -q "$1" "$scratch/log"; do
        tries=$((tries + 1))
        # What OBS says last it says before it ends: the log is looked at once more.
        kill -0 "$obs" 2> /dev/null || grep -q "$1" "$scratch/log" || fail "OBS has ended before: $1"
        [ "$tries" -lt 300 ] || fail "OBS did not say in a minute: $1"
        sleep 0.2
    done
}
wait_for "All is recorded."
kill -INT "$obs"
wait_for "Number of memory leaks"
wait "$obs" || fail "OBS has ended with an error"
trap - EXIT

has() {
    grep -qF "$1" "$scratch/log" || fail "OBS did not say: $1"
}
has "[specialeffects] libsfx"
has "filter: 'In memory' (specialeffects_filter)"
has "filter: 'Drawn' (specialeffects_any_filter)"
has "Number of memory leaks: 0"
[ "$(grep -c '\[specialeffects\]' "$scratch/log")" -eq 1 ] || fail "The filters have complained"
[ -z "$(ls)" ] || fail "There is a file in the current directory: $(ls)"

# Both halves of the recording have lost their colour.
recording=$(ls "$scratch"/recordings/*.mkv)
mv "$recording" "$scratch/recording.mkv"
cd "$scratch"
colour=$(ffprobe -v error -f lavfi "movie=recording.mkv,signalstats" \
    -show_entries frame_tags=lavfi.signalstats.SATMAX -of csv=p=0 | sort -n | tail -1)
frames=$(ffprobe -v error -count_frames -select_streams v -show_entries stream=nb_read_frames -of csv=p=0 recording.mkv)
[ "$frames" -gt 10 ] || fail "Only $frames frames were recorded"
[ "${colour%.*}" -lt 6 ] || fail "The recording has colour: $colour"
echo "OBS recorded $frames frames through both filters."
