#!/bin/sh
# The small program, on a stream and on pictures:
#
#   program.sh SOURCES COMMAND...        the command that runs it
set -eu
sources=$1
shift
rm -rf program
mkdir program
cd program

fail() {
    echo "$*" >&2
    exit 1
}

# Three frames of 16 by 16 of random bytes, so that luma is 256 bytes and chroma twice 64.
printf 'YUV4MPEG2 W16 H16 F25:1 Ip A1:1 C420jpeg\n' > in.y4m
for _ in 1 2 3; do
    printf 'FRAME\n' >> in.y4m
    head -c 384 /dev/urandom >> in.y4m
done
header=$(head -n 1 in.y4m | wc -c)

# Gray Scale keeps the luma and sets chroma to 128.
"$@" apply -e gray-scale in.y4m Ж中.y4m
for frame in 0 1 2; do
    start=$((header + frame * 390 + 1))
    for file in in.y4m Ж中.y4m; do tail -c "+$start" $file | head -c 262 > "$file.luma"; done
    cmp in.y4m.luma Ж中.y4m.luma || fail "the luma of frame $frame is another"
    tail -c "+$((start + 262))" Ж中.y4m | head -c 128 | tr -d '\200' | grep -q . && fail "chroma of frame $frame is not 128"
done
[ "$(wc -c < Ж中.y4m)" -eq "$(wc -c < in.y4m)" ] || fail "the stream has another length"
"$@" apply -e gray-scale --frames 1 in.y4m one.y4m
[ "$(wc -c < one.y4m)" -eq $((header + 390)) ] || fail "--frames 1 wrote more than one frame"

# Twice the negative is the picture, but for the rounding of colours.
"$@" apply -e polarize "$sources/demo/portrait.jpg" negative.png
"$@" apply -e polarize negative.png positive.bmp
[ "$(head -c 2 positive.bmp)" = BM ] || fail "positive.bmp is not a bitmap"
[ "$(head -c 4 negative.png | tail -c 3)" = PNG ] || fail "negative.png is not a PNG"
"$@" apply -e sketch-2+preset:noir --frames 3 positive.bmp sketch.png

# Existing files are kept, and mistakes are reported.
cp one.y4m kept.y4m
! "$@" apply -e sepia in.y4m kept.y4m 2> error.txt || fail "an existing file was replaced"
grep -q 'kept.y4m exists' error.txt
cmp one.y4m kept.y4m
"$@" apply -y -e sepia in.y4m kept.y4m
! cmp -s one.y4m kept.y4m || fail "-y did not replace the file"
! "$@" apply -e sepai in.y4m none.y4m 2> error.txt || fail "an unknown effect was accepted"
grep -q 'sepia' error.txt || fail "no suggestion for sepai"
for bad in "apply -e sepia in.y4m" "apply -e sepia none.y4m out.y4m" "apply -e sepia in.y4m out.png" "apply in.y4m out.y4m" nonsense; do
    # shellcheck disable=SC2086  # several words are meant
    ! "$@" $bad > /dev/null 2>&1 || fail "accepted: $bad"
done
head -c 600 in.y4m > short.y4m
! "$@" apply -e sepia short.y4m out.y4m 2> error.txt || fail "a broken stream was accepted"

"$@" list | grep -q '^sketch-2 ' || fail "list has no sketch-2"
"$@" info rain | grep -q drop-size || fail "info shows no property"

# The commands of the page.
mkdir page
cp in.y4m page
cp "$sources/demo/portrait.jpg" page/in.jpg
cp negative.png page/in.png
cd page
"$sources/tests/docs/commands.py" list docs/platforms.md "The program" --shell bat > commands.txt
while read -r command; do
    # shellcheck disable=SC2086  # several words are meant
    "$@" ${command#specialeffects } < /dev/null > /dev/null || fail "docs/platforms.md: $command"
done < commands.txt

echo "The program does what it should."
