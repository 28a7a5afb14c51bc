#!/bin/sh
# Builds the Debian packages into a folder and checks them:
#
#   tools/make_packages.sh FOLDER
set -eu

folder=$(realpath -m "$1")
header=$(sed -n 's/^#define SFX_VERSION_[A-Z]* \([0-9]*\)$/\1/p' sfx/sfx.h | paste -sd .)
packaged=$(dpkg-parsechangelog --show-field Version)
[ "$header" = "$packaged" ] || {
    echo "tools/make_packages.sh: sfx/sfx.h has version $header, debian/changelog $packaged" >&2
    exit 1
}
mkdir -p "$folder"
rm -f "$folder"/*.deb
export PACKAGES="$folder"
trap 'debian/rules clean > /dev/null' EXIT
fakeroot debian/rules clean binary
# The packages are not for Debian's archive, whose first upload closes a bug.
lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs "$folder"/*.deb
