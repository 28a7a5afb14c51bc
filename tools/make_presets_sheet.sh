#!/bin/bash
# A contact sheet of the presets, over the portrait in demo/ as from a hand-held camera:
#
#   tools/make_presets_sheet.sh BUILD_DIR OUT.jpg
#
# Needs ffmpeg and ImageMagick, and the target pipe_effect of the build.
set -euo pipefail

build=$(realpath "$1")
out=$(realpath "$2")
source=$(realpath "$(dirname "$0")/..")
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
size=(640 480)
shown=40 # the frame that becomes the picture

move="zoompan=z='1.12+0.04*sin(on/9)':x='iw/2-(iw/zoom/2)+14*sin(on/7)':y='ih/2-(ih/zoom/2)+9*sin(on/5)'"
ffmpeg -v error -loop 1 -i "$source/demo/portrait.jpg" \
    -vf "$move:d=1:s=${size[0]}x${size[1]}:fps=30,noise=alls=4:allf=t,format=yuv420p" \
    -frames:v $((shown + 1)) -f rawvideo "$work/scene.i420"

pictures=()
while read -r id title; do
    "$build/tools/pipe_effect" "preset:$id" "${size[@]}" < "$work/scene.i420" > "$work/frames.i420"
    ffmpeg -v error -y -f rawvideo -s "${size[0]}x${size[1]}" -pix_fmt yuv420p -i "$work/frames.i420" \
        -vf "select=eq(n\,$shown),scale=320:240" -frames:v 1 "$work/picture.png" < /dev/null
    convert "$work/picture.png" -background '#202020' -fill white -gravity center -pointsize 18 \
        -font DejaVu-Sans label:"$title" -append "$work/$id.png"
    pictures+=("$work/$id.png")
done < <(awk '/^\[/ { id = substr($0, 2, length($0) - 2) } /^title = / { sub(/^title = /, ""); print id, $0 }' \
    "$source/sfx/presets.ini")
montage "${pictures[@]}" -background '#202020' -geometry +4+4 -tile 4x -font DejaVu-Sans "$work/sheet.png"
convert "$work/sheet.png" -resize 1200x -quality 82 "$out"
