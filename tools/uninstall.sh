#!/bin/sh
# Removes the files that a list names, below DESTDIR, and our own folders that are then empty:
#
#   DESTDIR=FOLDER tools/uninstall.sh LIST
set -eu

[ -f "$1" ] || { echo "nothing was installed from here: there is no $1" >&2; exit 1; }
while IFS= read -r file || [ -n "$file" ]; do
    rm -fv "${DESTDIR:-}$file"
    folder=${file%/*}
    while :; do
        case $folder in
            */specialeffects | */sfx | */framework | */obs-studio/plugins/specialeffects/*) rmdir "${DESTDIR:-}$folder" 2> /dev/null || break ;;
            *) break ;;
        esac
        folder=${folder%/*}
    done
done < "$1"
rm "$1"
