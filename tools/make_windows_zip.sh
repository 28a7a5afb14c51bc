#!/bin/sh
# Puts what a Windows build installs into a zip:
#
#   tools/make_windows_zip.sh BUILD_FOLDER
set -eu
build=$1
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
name=specialeffects-$version-windows-x64

rm -rf "$build/package"
cmake --install "$build" --prefix "$build/package/$name" > "$build/install.txt"
cd "$build/package"
cmake -E tar cf "../$name.zip" --format=zip "$name"
echo "$build/$name.zip"
