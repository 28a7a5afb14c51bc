#!/bin/sh
# A DLL exports what a list names, needs nothing but Windows, and relies on no stack alignment beyond the platform's:
#
#   check_dll.sh OBJDUMP DLL LIST
#
# The list is a module definition file, or the header of libsfx.
set -eu
objdump=$1 dll=$2 list=$3
export LC_ALL=C
failed=0

case $list in
    *.def) wanted=$(sed -n 's/^    \([A-Za-z_][^ ]*\).*/\1/p' "$list") ;;
    *.h) wanted=$(tr '\n' ' ' < "$list" | grep -oE 'SFX_API [^;(]*[(]' | sed -nE 's/.*[ *](sfx_[a-z_]+)[(]/\1/p') ;;
esac

headers=$("$objdump" -p "$dll")
exports=$(echo "$headers" | sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p')
folder=check_dll_$(basename "$dll" .dll)
mkdir -p "$folder"
echo "$wanted" | sort > "$folder"/wanted.txt
echo "$exports" | sort > "$folder"/exports.txt
if ! diff "$folder"/wanted.txt "$folder"/exports.txt; then
    echo "< in $list, > exported"
    failed=1
fi

imports=$(echo "$headers" | sed -n 's/^[[:space:]]*DLL Name: //p')
for import in $imports; do
    case $import in
        KERNEL32.dll | msvcrt.dll | GDI32.dll | USER32.dll) ;;
        *)
            echo "needs $import"
            failed=1
            ;;
    esac
done

# Moves of 32 and 64 bytes that fault on addresses that are not a multiple of their size. The stack is a multiple of 16.
aligned='[[:space:]]v?mov(nt)?(aps|apd|dqa|dqa32|dqa64|dq|ntps|ntpd|ntdqa)[[:space:]].*%[yz]mm'
wide=$("$objdump" -d --no-show-raw-insn "$dll" | grep -c '%[yz]mm')
if [ "$wide" -lt 1000 ]; then
    echo "only $wide instructions on wide vectors: the processor levels are missing"
    failed=1
fi
if "$objdump" -d --no-show-raw-insn "$dll" | grep -E "$aligned" | head -20 | grep .; then
    echo "moves that need an aligned stack"
    failed=1
fi
exit $failed
