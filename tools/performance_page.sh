#!/bin/sh
# Puts new times into a page of docs/:
#
#   tools/performance_page.sh FOLDER PAGE
#
# The lines between <!-- NAME --> and <!-- end --> become the table of FOLDER/NAME.csv, or what FOLDER/NAME.md holds. The
# lines of `machine` say what the times were measured on.
set -eu
folder=$1
page=$2

machine() {
    model=$(lscpu | sed -n 's/^Model name: *//p' | head -n 1)
    level=$(tools/performance_table.sh "$folder/kernels.csv" | awk -F'|' 'NR == 3 { gsub(/ /, "", $3); print $3 }')
    echo "Measured on one thread of: $model, $(nproc) cores, GCC $(gcc -dumpfullversion), level $level, on $(date +%Y-%m-%d)."
    echo "Times are medians of processor time."
}

names=$(sed -n 's/^<!-- \([a-z]*\) -->$/\1/p' "$page" | grep -vx end)
for name in $names; do
    if [ "$name" = machine ]; then
        machine
    elif [ -f "$folder/$name.md" ]; then
        cat "$folder/$name.md"
    else
        tools/performance_table.sh "$folder/$name.csv"
    fi > "$folder/$name.part"
    awk -v start="<!-- $name -->" -v part="$folder/$name.part" '
        $0 == "<!-- end -->" { skipping = 0 }
        !skipping
        $0 == start {
            print ""
            while ((getline line < part) > 0) print line
            print ""
            skipping = 1
        }' "$page" > "$folder/page.part"
    cat "$folder/page.part" > "$page"
    rm "$folder/$name.part" "$folder/page.part"
done
