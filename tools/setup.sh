#!/bin/sh
# Installs what building, testing and the demo need on Debian 12, and the packages named as arguments. Does
# nothing, at once, when all is there.
set -eu

packages="build-essential clang libclang-rt-dev cmake ninja-build ccache pkg-config git
    libgtest-dev libbenchmark-dev libcli11-dev libfmt-dev nlohmann-json3-dev
    libavformat-dev libavcodec-dev libavdevice-dev libavutil-dev libswscale-dev
    opencv-data libpugixml-dev imagemagick ffmpeg $*"

missing=""
for package in $packages; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
        missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing:$missing"
as_root=""
[ "$(id -u)" -eq 0 ] || as_root="sudo"
$as_root apt-get update -qq
# shellcheck disable=SC2086  # a list of words is meant
DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends $missing
