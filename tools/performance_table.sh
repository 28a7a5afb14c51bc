#!/bin/sh
# Turns times into a table of docs/performance.md:
#
#   tools/performance_table.sh TIMES.csv
#
# TIMES.csv is what `bench_effects --csv`, `check_kernels --bench --csv` or `bench_opencv` printed.
set -eu

awk -F, '
# The last columns hold no commas; the first may be a quoted name with some.
{ name = $0
  if (name ~ /^"/) { sub(/^"/, "", name); sub(/".*/, "", name); sub(/^"[^"]*"/, "name") } else name = $1 }
NR == 1 {
    effects = $1 == "effect"
    if (!effects) print "| kernel | level | size | ms | x memcpy |\n|---|---|---|---|---|"
    next
}
!effects { printf "| %s | %s | %s | %.3f | %.1f |\n", name, $2, $3, $4, $6; next }
{
    if (!($2 in seen)) { seen[$2] = 1; sizes[++count] = $2 }
    if (!(name in known)) { known[name] = 1; names[++rows] = name }
    cell[name, $2] = sprintf("%.2f | %.1f | %.1f | %.1f", $3, $5, $7, $8)
    logs[$2] += log($3)
}
END {
    if (!effects) exit
    head = "| effect |"; rule = "|---|"
    for (i = 1; i <= count; ++i) {
        head = head " " sizes[i] " ms | x memcpy | Configure ms | MB |"
        rule = rule "---|---|---|---|"
    }
    print head "\n" rule
    for (row = 1; row <= rows; ++row) {
        line = "| " names[row] " |"
        for (i = 1; i <= count; ++i) line = line " " cell[names[row], sizes[i]] " |"
        print line
    }
    print ""
    for (i = 1; i <= count; ++i) printf "Geometric mean at %s: %.2f ms.\n", sizes[i], exp(logs[sizes[i]] / rows)
}' "$1"
