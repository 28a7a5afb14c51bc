#!/bin/sh
# What check.sh runs in a bare Debian 12, in /project: README.md's commands, the installed packages in use, and their
# removal.
set -eu
cd /project
mkdir -p "$HOME" /tmp/work

say() { echo "== $*"; }
fail() { echo "check-packages: $*" >&2; exit 1; }
# Debian's own packages.
get() {
    apt-get "$@" || { echo "Cannot be installed: apt-get $*" >&2; exit 1; }
}

ours=$(for file in build/packages/*.deb; do dpkg-deb --field "$file" Package; done)

# Every path but those of this test and what apt and dpkg keep about themselves.
paths() {
    find / -xdev \( -path /proc -o -path /project -o -path /tmp -o -path /var/cache -o -path /var/log -o \
        -path /var/lib/apt -o -path '/var/lib/dpkg/*-old' \) -prune -o -print | sort
}

# README.md's commands but for the first, which has made the packages.
install_packages() {
    sed 1d commands.sh > /tmp/commands.sh
    paths > /tmp/before
    sh -eux /tmp/commands.sh
}

# Removes them again, after which there is what there was before.
purge_packages() {
    # shellcheck disable=SC2086  # a list of words is meant
    apt-get purge -qq $ours
    paths > /tmp/after
    diff /tmp/before /tmp/after || fail "a purge does not leave what was there before"
}

# same_version WHERE VERSION
same_version() {
    echo "$1: $2"
    [ "$2" = "$version" ] || fail "$1 has version '$2', sfx.h $version"
}
version=$(sed -n 's/^#define SFX_VERSION_[A-Z]* \([0-9]*\)$/\1/p' sfx.h | paste -sd .)

# ---- as the user installs them ----
say "the packages that ours depend on"
get update -qq
# In a step of their own, since they may leave something behind.
simulated=$(apt-get install --simulate ./build/packages/*.deb | sed -n 's/^Inst \([^ ]*\) .*/\1/p')
needed=$(echo "$simulated" | grep -vxF "$ours")
# shellcheck disable=SC2086
get install -qq --mark-auto $needed

say "README.md, and nothing beside what the packages ask for"
install_packages
for package in $ours; do
    for file in $(dpkg-query --listfiles "$package"); do
        case $file in
            *.so* | /usr/bin/*)
                if ldd "$file" | grep "not found"; then fail "$package lacks a dependency of $file"; fi ;;
        esac
    done
done
for plugin in gstreamer-1.0/libgstspecialeffects.so obs-plugins/specialeffects.so; do
    ls /usr/lib/*/"$plugin" > /dev/null || fail "$plugin is not installed"
done
cd /tmp/work
specialeffects apply -q -e sketch-2 test: sketch.mp4
specialeffects apply -q -e clouds+sepia /project/demo/portrait.jpg clouds.png
[ -s sketch.mp4 ] && [ -s clouds.png ]
[ "$(specialeffects list --json | grep -c '"id"')" -ge 63 ] || fail "the list is not whole"
specialeffects apply -q -e preset:noir test: noir.y4m --frames 2
python3 - << 'PYTHON'
import numpy, specialeffects
assert len(specialeffects.effects()) == 63
frame = numpy.full((48, 64, 3), 128, numpy.uint8)
assert specialeffects.Effect("sepia")(frame) is frame and (frame != 128).any()
picture_me = specialeffects.Effect("picture-me")
picture_me(frame)  # with its cascade, from the data package
PYTHON
cd /project

say "purged"
purge_packages

# ---- by the programs that they are for ----
say "those programs"
get install -qq ca-certificates cmake ffmpeg g++ gstreamer1.0-plugins-base gstreamer1.0-tools make pkg-config
install_packages > /dev/null
cd /tmp/work

say "GStreamer"
gst-inspect-1.0 specialeffects | tail -n 4
gst-launch-1.0 -q videotestsrc num-buffers=5 ! video/x-raw,format=I420,width=64,height=48 ! sfx-sketch-2 ! \
    filesink location=gstreamer.yuv
[ "$(stat -c %s gstreamer.yuv)" -eq $((5 * 64 * 48 * 3 / 2)) ]

say "FFmpeg, with frei0r"
for filter in null frei0r=sfx_sepia; do
    ffmpeg -v error -f lavfi -i testsrc=size=64x48 -frames:v 5 -vf "$filter" -pix_fmt yuv420p -y "$filter.y4m"
done
[ -s null.y4m ]
if cmp -s null.y4m frei0r=sfx_sepia.y4m; then fail "the frei0r plugin changes nothing"; fi

say "programs in C and C++"
for project in outside outside_sfx; do
    cmake -S "/project/tests/layout/$project" -B "$project" -DWANTED_VERSION="$version" > /dev/null
    cmake --build "$project" > /dev/null
done
outside/outside
outside_sfx/outside_c
outside_sfx/outside_cpp
sources=/project/tests/layout
# shellcheck disable=SC2046
g++ -std=c++17 "$sources/outside/main.cpp" -o outside_pkg $(pkg-config --cflags --libs specialeffects)
# shellcheck disable=SC2046
gcc -std=c99 "$sources/outside_sfx/main.c" -o sfx_pkg $(pkg-config --cflags --libs sfx)
./outside_pkg

# ---- versions ----
say "versions"
same_version "NEWS.md" "$(sed -n 's/^## \([0-9.]*\)$/\1/p' /project/NEWS.md | head -n 1)"
same_version "debian/changelog" "$(sed -n '1s/.*(\(.*\)).*/\1/p' /project/changelog)"
for package in $ours; do
    same_version "package $package" "$(dpkg-query --show --showformat '${Version}' "$package")"
done
same_version "specialeffects --version" "$(specialeffects --version)"
# The program itself compares the header's macro with the function's number.
same_version "libsfx" "$(./sfx_pkg | sed 's/libsfx \([^,]*\),.*/\1/')"
same_version "pkg-config sfx" "$(pkg-config --modversion sfx)"
same_version "pkg-config specialeffects" "$(pkg-config --modversion specialeffects)"
for package in sfx specialeffects; do
    echo "include($(echo /usr/lib/*/cmake/$package/$package-config-version.cmake))" > version.cmake
    # shellcheck disable=SC2016  # CMake expands it
    echo 'message("${PACKAGE_VERSION}")' >> version.cmake
    same_version "CMake package $package" "$(cmake -P version.cmake 2>&1)"
done
same_version "Python module" "$(python3 -c 'import specialeffects; print(specialeffects.__version__)')"
same_version "GStreamer plugin" "$(gst-inspect-1.0 specialeffects | awk '$1 == "Version" { print $2 }')"

say "purged"
cd /project
purge_packages
