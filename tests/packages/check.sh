#!/bin/sh
# The Debian packages as a user has them: README.md's commands in a bare Debian 12, every package used there by the
# programs that it is for, and purged again. Needs root, as `chroot` does.
#
# The packages are also built from the tarball of `make dist`, in another folder, which has to give the same bytes.
set -eu

cd "$(dirname "$0")/../.."
. tools/bare_debian.sh
scratch=$PWD/build/check-packages
mkdir -p "$scratch"

# ---- README.md's commands ----
tests/docs/commands.py list README.md "Debian packages" > "$scratch/commands.sh"
first=$(head -n 1 "$scratch/commands.sh")
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
make_bare_debian "$scratch/bare"
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

in_bare_debian "$scratch/bare" HOME=/tmp/home LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive sh /project/inside.sh
rm -rf "$scratch/bare" "${scratch:?}/$name"
