#!/bin/sh
# Removes the files that a list names, below DESTDIR, and folders of our own that are empty then:
#
#   DESTDIR=FOLDER tools/uninstall.sh LIST
set -eu

[ -f "$1" ] || { echo "nothing was installed from here: there is no $1" >&2; exit 1; }
while IFS= read -r file || [ -n "$file" ]; do
    rm -fv "${DESTDIR:-}$file"
done < "$1"
sed -n 's|^\(.*/specialeffects\)/.*|\1|p' "$1" | sort -u | while IFS= read -r folder; do
    [ ! -d "${DESTDIR:-}$folder" ] || find "${DESTDIR:-}$folder" -depth -type d -empty -delete
done
rm "$1"
