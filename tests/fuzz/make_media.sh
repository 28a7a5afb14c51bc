#!/bin/sh
# Makes the small videos and pictures in tests/fuzz/inputs/media with FFmpeg.
set -eu
cd "$(dirname "$0")/inputs/media"

printf '1\n00:00:00,000 --> 00:00:00,300\nwords\n' > words.srt
trap 'rm words.srt' EXIT
make() {
    ffmpeg -v error -y -f lavfi -i testsrc2=size=32x24:rate=10:duration=0.4 "$@"
}
sound="-f lavfi -i sine=duration=0.4:sample_rate=8000"
# shellcheck disable=SC2086  # lists of words are meant
make $sound -c:v libx264 -pix_fmt yuv420p -x264-params sei=0 -c:a aac -b:a 16k -movflags faststart clip.mp4
# shellcheck disable=SC2086
make $sound -i words.srt -map 0 -map 1 -map 2 -c:v mpeg4 -c:a libopus -b:a 8k -c:s srt clip.mkv
make -frames:v 1 picture.png
make -frames:v 1 -pix_fmt rgb48be -vf scale=9:7 deep.png
make -frames:v 1 -q:v 12 picture.jpg
make clip.gif
make -vf scale=12:8 -frames:v 2 clip.y4m
make -vf scale=7:5 -frames:v 2 -pix_fmt yuv444p odd.y4m
