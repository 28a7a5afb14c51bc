#!/bin/sh
# Installs what the named groups need on Debian 12:
#
#   tools/setup.sh GROUP...
#
# Does nothing if all of it is installed. A line of the table is the name of a group and packages of it.
set -eu

groups='
build        build-essential cmake ninja-build pkg-config libfmt-dev libcli11-dev nlohmann-json3-dev
build        libavformat-dev libavcodec-dev libavdevice-dev libavfilter-dev libavutil-dev libswscale-dev libwebp-dev
build        libpugixml-dev opencv-data
check        ccache libgtest-dev ffmpeg python3
clang        clang libclang-rt-dev
slow         qemu-user
arm64        cmake ninja-build ccache libgtest-dev g++-aarch64-linux-gnu qemu-user
windows      g++-mingw-w64-x86-64-posix llvm libstb-dev
check-windows python3 wine wine64 clang lld libgtest-dev ccache
gstreamer    libgstreamer-plugins-base1.0-dev
check-gstreamer gstreamer1.0-tools gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-pipewire
check-gstreamer gir1.2-gstreamer-1.0 python3-gi pipewire wireplumber dbus
dist         git
packages     python3 debhelper dh-python fakeroot lintian
check-packages debootstrap
python       python3 python3-numpy python3-pip python3-setuptools python3-wheel python3-pytest python3-opencv
python       python3-matplotlib mypy
check-docs   python3-venv
check-python python3-coverage
demo         ffmpeg imagemagick
frei0r       frei0r-plugins-dev
check-frei0r ffmpeg melt libxml2-utils qtdeclarative5-dev-tools
web          clang-22 lld-22 libc++-22-dev-wasm32 libc++abi-22-dev-wasm32 libclang-rt-22-dev-wasm32 wasi-libc binaryen
web          cmake ninja-build nodejs
web-page     nodejs npm
check-web-page chromium ffmpeg
obs          libobs-dev
check-obs    obs-studio ffmpeg xvfb xauth libx11-dev libgl1-mesa-dri libegl1
bench        libopencv-dev
bench-peers  python3 ffmpeg frei0r-plugins
bench-peers  gstreamer1.0-tools gstreamer1.0-plugins-good gstreamer1.0-plugins-bad
lint         git clang clang-format clang-tidy cppcheck shellcheck flake8 libopencv-dev libgtest-dev
'

packages=""
for group in "$@"; do
    found=$(echo "$groups" | awk -v group="$group" '$1 == group { $1 = ""; print }')
    [ -n "$found" ] || { echo "tools/setup.sh: there is no group $group" >&2; exit 2; }
    packages="$packages $found"
done

if ! command -v dpkg-query > /dev/null; then
    echo "Not a Debian system; it should have what these packages hold: $packages"
    exit 0
fi
missing=""
for package in $packages; do
    # Node's own packages of nodejs bring npm along.
    [ "$package" = npm ] && command -v npm > /dev/null && continue
    dpkg-query -W -f='${Status}' "$package" 2> /dev/null | grep -q '^install ok installed$' ||
        missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing:$missing"
as_root=""
[ "$(id -u)" -eq 0 ] || as_root="sudo"
export DEBIAN_FRONTEND=noninteractive
# shellcheck disable=SC2086  # a list of words is meant
if $as_root apt-get update -qq && $as_root apt-get install -y -qq --no-install-recommends $missing; then
    exit 0
fi
echo "Cannot be installed:$missing" >&2
exit 1
