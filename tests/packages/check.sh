#!/bin/sh
# The Debian packages as a user has them: README.md's commands in a bare Debian 12, every package used there by the
# programs that it is for, and purged again. Needs root, as `chroot` does.
#
# The packages are also built from the tarball of `make dist`, in another folder, which has to give the same bytes.
#
# DEBIAN_MIRROR names another mirror than deb.debian.org.
set -eu

cd "$(dirname "$0")/../.."
scratch=$PWD/build/check-packages
mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}
[ "$(id -u)" -eq 0 ] || { echo "check.sh: run me as root" >&2; exit 1; }
mkdir -p "$scratch"

# ---- README.md's commands ----
awk '/^## /{ here = $0 == "## Debian packages" } here && /^```$/ { exit } here && block { print }
    here && /^```sh$/ { block = 1 }' README.md > "$scratch/commands.sh"
first=$(sed -n 's/ *#.*//; 1p' "$scratch/commands.sh")
[ "$first" = "make packages" ] || { echo "README.md builds the packages by '$first'" >&2; exit 1; }
sh -eux -c "$first"

# ---- from the tarball ----
# With what is not committed yet.
tree=$(git stash create)
name=$(basename "$(tools/make_dist.sh "$scratch" "${tree:-HEAD}")" .tar.gz)
rm -rf "${scratch:?}/$name"
tar -xf "$scratch/$name.tar.gz" -C "$scratch"
(cd "$scratch/$name" && CCACHE_DISABLE=1 tools/make_packages.sh build/packages)
for package in build/packages/*.deb; do
    cmp "$package" "$scratch/$name/$package" || {
        echo "$(basename "$package") differs between two builds" >&2
        exit 1
    }
done
[ "$(echo build/packages/*.deb | wc -w)" -eq "$(echo "$scratch/$name"/build/packages/*.deb | wc -w)" ]
echo "two builds give the same packages"

# ---- in a bare Debian ----
# Made once; the downloaded packages stay, too.
archives=$scratch/archives
mkdir -p "$archives/partial"
if ! [ -f "$scratch/bare.tar" ]; then
    rm -rf "$scratch/bare"
    debootstrap --variant=minbase --include=sudo --cache-dir="$archives" bookworm "$scratch/bare" "$mirror" || {
        tail -n 20 "$scratch/bare/debootstrap/debootstrap.log" >&2 || true
        echo "Cannot be installed: a bare Debian 12 by debootstrap from $mirror" >&2
        exit 1
    }
    tar -cf "$scratch/bare.tar.new" -C "$scratch/bare" .
    mv "$scratch/bare.tar.new" "$scratch/bare.tar"
fi
rm -rf "$scratch/bare"
mkdir "$scratch/bare"
tar -xf "$scratch/bare.tar" -C "$scratch/bare"
cp /etc/resolv.conf /etc/hosts "$scratch/bare/etc/"
{
    echo "deb $mirror bookworm main"
    echo "deb $mirror bookworm-updates main"
    echo "deb ${mirror}-security bookworm-security main"
} > "$scratch/bare/etc/apt/sources.list"
# Answers yes, as a user does, and keeps the download small.
cat > "$scratch/bare/etc/apt/apt.conf.d/90check" << 'CONFIGURATION'
APT::Get::Assume-Yes "true";
APT::Install-Recommends "false";
APT::Keep-Downloaded-Packages "true";
DPkg::Options { "--force-unsafe-io"; };
CONFIGURATION

project=$scratch/bare/project
mkdir -p "$project/build"
cp -r build/packages "$project/build"
mkdir -p "$project/tests/layout" "$project/bridges/python" "$project/demo"
cp -r tests/layout/outside tests/layout/outside_sfx "$project/tests/layout"
cp -r bridges/python/examples "$project/bridges/python"
cp demo/portrait.jpg "$project/demo"
cp README.md NEWS.md sfx/sfx.h debian/changelog tests/packages/inside.sh "$scratch/commands.sh" "$project"

# The mounts end with this shell's namespace.
export scratch archives
# shellcheck disable=SC2016  # the inner shell expands them
unshare --mount --pid --fork --propagation private sh -eu -c '
    mount -t proc proc "$scratch/bare/proc"
    mount -t devpts devpts "$scratch/bare/dev/pts"
    mount --bind "$archives" "$scratch/bare/var/cache/apt/archives"
    exec chroot "$scratch/bare" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/tmp/home LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive sh /project/inside.sh'
rm -rf "$scratch/bare" "${scratch:?}/$name"
