#!/bin/sh
# Golden frames on an emulated processor, where an instruction that the processor lacks ends the run:
#
#   emulated.sh GOLDEN_TESTS PROCESSOR LEVEL
#
# LEVEL is the highest that the module must find on the PROCESSOR (a name that qemu knows).
set -eu
tests=$1 processor=$2 level=$3

if ! command -v qemu-x86_64 > /dev/null; then
    echo "skipped: qemu-x86_64 (package qemu-user) is not installed"
    exit 77
fi
emulated() { qemu-x86_64 -cpu "$processor" "$tests" "$@"; }

# The tests that exist are those of the levels that the module finds.
found=$(emulated --gtest_list_tests | sed -n 's/^  FramesAreThoseOnRecord\/1_\([a-z0-9]*\).*/\1/p' | tail -n 1)
if [ "$found" != "$level" ]; then
    echo "on $processor the highest level is '$found', not $level"
    exit 1
fi
emulated --gtest_brief=1 --gtest_filter="*GoldenWithLibrarysRand*"
