#!/bin/sh
# The slots that a compiler for Microsoft's ABI gives the contract's operations are those of slots.txt:
#
#   slots.sh CLANG++ SOURCES
set -eu
folder=$(dirname "$0")
listing=$("$1" --target=x86_64-pc-windows-msvc -std=c++17 -ffreestanding -nostdinc++ -isystem "$folder/headers" \
    -I "$2" -Xclang -fdump-vtable-layouts -S -emit-llvm -o /dev/null "$folder/slots.cpp")
echo "$listing" | awk '
    /^VFTable indices/ {
        split($0, part, "\047")
        wanted = part[2] ~ /^(ISpecialEffectFactory|CInternalInfo|CSpecialEffectFilter|CROISpecialEffectFilter)$/
        if (wanted) print part[2]
        next
    }
    /^VFTable for/ || /^$/ { wanted = 0 }
    wanted' | diff "$folder/slots.txt" -
