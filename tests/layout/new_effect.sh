#!/bin/sh
# Follows CONTRIBUTING.md in a copy of the tree: the commands that add an effect yield one that passes its tests.
#
#   tests/layout/new_effect.sh SOURCE SCRATCH
set -eu
source=$1
scratch=$2

rm -rf "$scratch"
mkdir -p "$scratch"
(cd "$source" && tar -cf - --exclude=./build --exclude=./.git .) | tar -xf - -C "$scratch"
cd "$scratch"
export CCACHE_BASEDIR="$scratch"  # the compiler's cache knows most of it

tests/docs/commands.py list CONTRIBUTING.md "Add an effect" > commands.sh
cat commands.sh
sh -eu commands.sh

# All of it is there: the row's golden frames, and tests that ran.
grep -q ' Posterize$' tests/golden/checksums.txt
build/release/tests/drawing_tests --gtest_filter='Posterize.*' | grep -q 'PASSED.*2 tests'
if tools/new_effect.sh drawing Posterize 2> /dev/null; then echo "an effect was written twice" >&2; exit 1; fi
if build/release/tests/update_goldens tests/golden/checksums.txt no-such-effect 2> /dev/null; then
    echo "update_goldens ignores what it does not know" >&2
    exit 1
fi
if build/release/tests/update_goldens no/such/folder/checksums.txt posterize 2> /dev/null; then
    echo "update_goldens ignores that it cannot write" >&2
    exit 1
fi
cd /
rm -rf "$scratch"
