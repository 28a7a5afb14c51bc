#!/bin/sh
# Writes the sources of the commit at hand as a tarball, the same bytes each time:
#
#   tools/make_dist.sh FOLDER
set -eu

version=$(sed -n 's/^#define SFX_VERSION_[A-Z]* \([0-9]*\)$/\1/p' sfx/sfx.h | paste -sd .)
name="specialeffects-$version"
mkdir -p "$1"
git archive --prefix="$name/" HEAD | gzip -9n > "$1/$name.tar.gz"
echo "$1/$name.tar.gz"
