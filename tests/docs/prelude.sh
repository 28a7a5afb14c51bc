# shellcheck shell=bash
# What a shell that runs a page's commands begins with. Given: the tree, the release build, a scratch folder.
#
# The working folder has links to what is in the tree. What builds or installs works in the tree itself, and installs below
# the scratch folder.
# shellcheck disable=SC2034,SC2154  # what is given, and what is looked at in the end
set -o pipefail
failed=0

export PATH="$release/host:/usr/bin:$PATH" # Debian's own python3, which has the packages
export PYTHONDONTWRITEBYTECODE=1
CCACHE_DIR=$(ccache --get-config cache_dir)
export CCACHE_DIR HOME="$scratch/home" XDG_CACHE_HOME="$scratch/cache" XDG_CONFIG_HOME="$scratch/config" MPLBACKEND=Agg
export DESTDIR="$scratch/root" INSTALLED="$scratch/installed.txt"
export LD_LIBRARY_PATH="$DESTDIR/usr/local/lib" GST_REGISTRY="$scratch/registry.bin"
export PKG_CONFIG_PATH="$DESTDIR/usr/local/lib/pkgconfig" PKG_CONFIG_SYSROOT_DIR="$DESTDIR"
mkdir -p "$HOME"

make() { command make -C "$tree" "$@"; }
cmake() { (cd "$tree" && command cmake "$@"); }
sudo() { "$@"; }
ffmpeg() { command ffmpeg -v error -y "$@"; }

# judge STATUS QUIET: whether the command succeeded, without a word of complaint if QUIET is yes.
judge() {
    if [ "$1" -ne 0 ] || { [ "$2" = yes ] && [ -s "$scratch/err" ]; }; then
        failed=1
        echo "FAILED with status $1:"
        tail -n 30 "$scratch/out" "$scratch/err"
    fi
}
