#!/bin/bash
# Runs every effect over a clip made of the portrait in demo/, as from a hand-held camera:
#
#   tools/make_demo.sh BUILD_DIR OUT_DIR
#
# Writes a picture and a short clip of each effect, a contact sheet, a showreel and index.html. What is newer than the
# module and the program is not made again.
set -euo pipefail

build=$(realpath "$1")
out=$2
source=$(realpath "$(dirname "$0")/..")
program=$build/host/specialeffects
module=$build/libspecialeffects.so
scene=still:$source/demo/portrait.jpg
frames=90   # of each clip
shown=60    # the frame that becomes the picture
mkdir -p "$out/pictures" "$out/clips" "$out/work"
out=$(realpath "$out")

is_fresh() { [ -e "$1" ] && [ "$1" -nt "$module" ] && [ "$1" -nt "$program" ]; }

# One effect: its clip and its picture. In a directory of its own, since some effects keep files where they run.
make_effect() {
    local name=$1
    is_fresh "$out/clips/$name.mp4" && is_fresh "$out/pictures/$name.png" && return 0
    local here="$out/work/$name"
    mkdir -p "$here"
    cd "$here"
    "$program" apply --quiet --seed 1 -e "$name" --frames $frames "$scene" "$out/clips/$name.mp4"
    "$program" apply --quiet --seed 1 -e "$name" --frame $shown "$scene" "$out/pictures/$name.png"
    echo "  $name"
}
export -f make_effect is_fresh
export program module scene frames shown out

mapfile -t names < <("$program" list --all --json | sed -n 's/^ *"name": "\(.*\)",$/\1/p')
echo "Running ${#names[@]} effects over $frames frames each"
printf '%s\n' "${names[@]}" | xargs -P "$(nproc)" -I{} bash -c 'make_effect {}'

sheet=$out/contact-sheet.jpg
if ! is_fresh "$sheet"; then
    montage_arguments=()
    for name in "${names[@]}"; do montage_arguments+=(-label "$name" "$out/pictures/$name.png"); done
    montage "${montage_arguments[@]}" -resize 200x150 -tile 9x -geometry +3+3 -pointsize 12 -quality 85 "$sheet"
fi

reel=$out/showreel.mp4
if ! is_fresh "$reel"; then
    for name in "${names[@]}"; do printf "file '%s'\noutpoint 1.2\n" "$out/clips/$name.mp4"; done > "$out/work/reel.txt"
    ffmpeg -v error -y -f concat -safe 0 -i "$out/work/reel.txt" -c:v libx264 -crf 23 -pix_fmt yuv420p "$reel"
fi

escape() { sed 's/&/\&amp;/g; s/</\&lt;/g; s/>/\&gt;/g'; }
{
    cat <<'HTML'
<!doctype html>
<html lang="en"><head><meta charset="utf-8"><title>Special effects</title><style>
body { font: 15px/1.4 sans-serif; margin: 2em auto; max-width: 1240px; padding: 0 1em; background: #fafafa; color: #222; }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(290px, 1fr)); gap: 1.5em; }
article { background: #fff; border: 1px solid #ddd; border-radius: 6px; padding: .8em; }
h2 { font-size: 1.05em; margin: .4em 0; } video, img { width: 100%; border-radius: 3px; }
pre { font-size: 11px; overflow-x: auto; color: #555; }
</style></head><body>
<h1>Special effects</h1>
<p>Every effect on one clip. <a href="showreel.mp4">The showreel</a> has them all in a row,
<a href="contact-sheet.jpg">the contact sheet</a> on one page.</p>
<main>
HTML
    for name in "${names[@]}"; do
        printf '<article><video src="clips/%s.mp4" poster="pictures/%s.png" muted loop controls preload="none"></video>\n' \
            "$name" "$name"
        printf '<h2>%s</h2><pre>%s</pre></article>\n' "$name" "$("$program" info "$name" | escape)"
    done
    echo '</main></body></html>'
} > "$out/index.html"

echo "Look at $out/index.html"
