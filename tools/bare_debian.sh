# shellcheck shell=sh
# A bare Debian 12 in a folder, for scripts that source this in the root of the tree. Needs root, as `chroot` does.
#
# The system is made once and kept in build/bare-debian, with the packages that were downloaded for it. DEBIAN_MIRROR
# names another mirror than deb.debian.org.

[ "$(id -u)" -eq 0 ] || { echo "$0: run me as root" >&2; exit 1; }
bare_cache=$PWD/build/bare-debian
bare_archives=$bare_cache/archives
mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}
export bare_archives

# make_bare_debian FOLDER: puts a fresh system there.
make_bare_debian() {
    mkdir -p "$bare_archives/partial"
    if ! [ -f "$bare_cache/bare.tar" ]; then
        rm -rf "$bare_cache/bare"
        debootstrap --variant=minbase --include=sudo --cache-dir="$bare_archives" bookworm "$bare_cache/bare" "$mirror" \
            > /dev/null || {
            tail -n 20 "$bare_cache/bare/debootstrap/debootstrap.log" >&2 || true
            echo "Cannot be installed: a bare Debian 12 by debootstrap from $mirror" >&2
            exit 1
        }
        tar -cf "$bare_cache/bare.tar.new" -C "$bare_cache/bare" .
        mv "$bare_cache/bare.tar.new" "$bare_cache/bare.tar"
        rm -rf "$bare_cache/bare"
    fi
    rm -rf "$1"
    mkdir -p "$1"
    tar -xf "$bare_cache/bare.tar" -C "$1"
    cp /etc/resolv.conf /etc/hosts "$1/etc/"
    {
        echo "deb $mirror bookworm main"
        echo "deb $mirror bookworm-updates main"
        echo "deb ${mirror}-security bookworm-security main"
    } > "$1/etc/apt/sources.list"
}

# in_bare_debian FOLDER COMMAND...: runs a command in the system, with nothing of this environment. The mounts end with it.
in_bare_debian() {
    # shellcheck disable=SC2016  # the inner shell expands them
    unshare --mount --pid --fork --propagation private sh -eu -c '
        bare=$1
        shift
        mount -t proc proc "$bare/proc"
        mount -t devpts devpts "$bare/dev/pts"
        mount --bind "$bare_archives" "$bare/var/cache/apt/archives"
        exec chroot "$bare" env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root "$@"' \
        in_bare_debian "$@"
}
