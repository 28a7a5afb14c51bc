#!/bin/sh
# `make install` with DESTDIR puts everything below that folder, and `make uninstall` leaves nothing of it.
set -eu

cd "$(dirname "$0")/../.."
scratch=$PWD/build/make_install
rm -rf "$scratch"
export PREFIX=/usr/local DESTDIR="$scratch" INSTALLED="$scratch.txt"
make install
for file in bin/specialeffects include/specialeffects/framework/SpecialEffectFilter.h include/sfx/sfx.h \
    share/man/man1/specialeffects.1 share/bash-completion/completions/specialeffects; do
    [ -f "$scratch/usr/local/$file" ] || { echo "not installed: $file" >&2; exit 1; }
done
"$scratch/usr/local/bin/specialeffects" info sepia
make uninstall
left=$(cd "$scratch" && find . ! -type d && find . -type d -name specialeffects)
[ -z "$left" ] || { echo "left behind: $left" >&2; exit 1; }
rm -r "$scratch"
