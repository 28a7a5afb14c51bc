#!/bin/bash
# Runs every effect over a clip made of the portrait in demo/, as from a hand-held camera:
#
#   tools/make_demo.sh BUILD_DIR OUT_DIR
#
# Writes a picture and a short clip of each effect, a contact sheet, a showreel and index.html. Files that are newer than
# the library, the program, this script and the portrait are not made again.
set -euo pipefail

build=$(realpath "$1")
out=$2
source=$(realpath "$(dirname "$0")/..")
program=$build/host/specialeffects
portrait=$source/demo/portrait.jpg
frames=90      # of each clip
reel_start=1.4 # the part of each clip that the showreel takes, in seconds
reel_frames=42 # and in frames
made_from=("$build/libsfx.so" "$program" "$portrait" "$source/tools/make_demo.sh")
cascade=$build/share/specialeffects/haar.txt  # not there without opencv-data
[ ! -e "$cascade" ] || made_from+=("$cascade")
mkdir -p "$out/pictures" "$out/clips" "$out/work"
out=$(realpath "$out")
lowered=$out/work/lowered.png

# Whether a file is newer than all that it is made from: is_fresh FILE [FURTHER_SOURCE...]
is_fresh() {
    local made=$1 file
    shift
    [ -e "$made" ] || return 1
    for file in "${made_from[@]}" "$@"; do [ "$made" -nt "$file" ] || return 1; done
}

# The request for an effect. Plain, some can hardly be seen at this size.
request_of() {
    case $1 in
        rain) echo rain:drop-size=7 ;;
        tiled-up) echo tiled-up:tile-size=16 ;;
        *) echo "$1" ;;
    esac
}

# What the camera sees. Picture Me needs room above the head: it copies a square round the face, which the portrait's
# upper edge would cut off.
portrait_of() {
    case $1 in
        picture-me) echo "$lowered" ;;
        *) echo "$portrait" ;;
    esac
}

# The frame that becomes the picture: one that is typical.
shown_of() {
    case $1 in
        moving-twirl) echo 45 ;; # it swings, and near frame 60 it does not twirl
        *) echo 60 ;;
    esac
}

# One effect: its clip and its picture.
make_effect() {
    local name=$1 request seen
    request=$(request_of "$name")
    seen=$(portrait_of "$name")
    "$program" apply --quiet --yes --seed 1 -e "$request" --frames $frames "still:$seen" "$out/clips/$name.mp4"
    "$program" apply --quiet --yes --seed 1 -e "$request" --frame "$(shown_of "$name")" "still:$seen" "$out/pictures/$name.png"
    echo "  $name"
}
export -f make_effect request_of portrait_of shown_of
export program portrait lowered frames out

list=$("$program" list --json)
mapfile -t names < <(sed -n 's/^    "id": "\(.*\)",$/\1/p' <<< "$list")
mapfile -t titles < <(sed -n 's/^    "title": "\(.*\)",$/\1/p' <<< "$list")

stale=()
for name in "${names[@]}"; do
    is_fresh "$out/clips/$name.mp4" && is_fresh "$out/pictures/$name.png" || stale+=("$name")
done
if [ ${#stale[@]} -gt 0 ]; then
    convert "$portrait" -virtual-pixel edge -distort ScaleRotateTranslate '0,0 1 0 0,48' "$lowered"
    echo "Running ${#stale[@]} effects over $frames frames each"
    printf '%s\n' "${stale[@]}" | xargs -P "$(nproc)" -I{} bash -c 'make_effect {}'
fi

sheet=$out/contact-sheet.jpg
if ! is_fresh "$sheet"; then
    echo "Laying out the contact sheet"
    labelled=()
    for name in "${names[@]}"; do labelled+=(-label "$name" "$out/pictures/$name.png"); done
    montage -background '#16181c' -fill '#f0f0f0' -font DejaVu-Sans -pointsize 18 "${labelled[@]}" \
        -resize 200x150 -tile 7x -geometry +5+4 -quality 85 "$out/work/sheet.jpg"
    mv "$out/work/sheet.jpg" "$sheet"
fi

# A scene of the showreel, as raw frames with a caption: reel_scene TITLE SUBTITLE FFMPEG_INPUT...
reel_scene() {
    local title=$1 subtitle=${2//:/\\:} caption
    shift 2
    caption="drawbox=y=ih-74:h=74:color=black@0.55:t=fill"
    caption+=",drawtext=font=DejaVu Sans:text='$title':fontsize=28:fontcolor=white:x=18:y=h-64"
    caption+=",drawtext=font=DejaVu Sans Mono:text='$subtitle':fontsize=15:fontcolor=white@0.8:x=18:y=h-26"
    ffmpeg -v error -nostdin "$@" -frames:v $reel_frames -vf "setpts=N/30/TB,$caption" -r 30 \
        -f rawvideo -pix_fmt yuv420p -
}

reel=$out/showreel.mp4
if ! is_fresh "$reel"; then
    echo "Cutting the showreel"
    {
        reel_scene "Before" "what the camera sees" -loop 1 -i "$portrait"
        for i in "${!names[@]}"; do
            reel_scene "${titles[i]}" "-e $(request_of "${names[i]}")" -ss $reel_start -i "$out/clips/${names[i]}.mp4"
        done
    } | ffmpeg -v error -nostdin -y -f rawvideo -pix_fmt yuv420p -video_size 640x480 -framerate 30 -i - \
        -c:v libx264 -preset veryfast -crf 25 -movflags +faststart "$out/work/reel.mp4"
    mv "$out/work/reel.mp4" "$reel"
fi

page_parts=("$source/tools/demo_page_head.html" "$source/tools/demo_page.awk" "$source/tools/demo_page_foot.html")
if ! is_fresh "$out/index.html" "${page_parts[@]}"; then
    echo "Writing the page"
    cp "$portrait" "$out/before.jpg"
    {
        cat "$source/tools/demo_page_head.html"
        for i in "${!names[@]}"; do printf '<a href="#%s">%s</a>\n' "${names[i]}" "${titles[i]}"; done
        echo '</nav><main>'
        for name in "${names[@]}"; do
            echo "\"request\": \"$(request_of "$name")\","
            "$program" info "$name" --json
        done | awk -f "$source/tools/demo_page.awk"
        cat "$source/tools/demo_page_foot.html"
    } > "$out/work/index.html"
    mv "$out/work/index.html" "$out/index.html"
fi

echo "Look at $out/index.html"
