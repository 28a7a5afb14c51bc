#!/bin/sh
# Turns what `bench_effects` or `bench_primitives` printed with --benchmark_format=csv into its table of
# docs/performance.md:
#
#   tools/performance_table.sh TIMES.csv
#
# Of primitives the table takes those at 1280x720. The bars are ratios to a memcpy of the same frame, at
# 1920x1080 and on one core.
set -eu

awk -F, '
BEGIN {
    bars = "Gray Scale=0.5;Polarize=2;Spot Light=6;X-Ray=8;Chrome=30;Twirl=25;Hallway Vision=25;Bulge=25;Fish Eye=25;" \
           "Blockhead=25;Moving Twirl=40;Liquefy=40;Neonize=60;Antiquated Movie=60;Sepia=40;Colored Pencil=45;" \
           "Cotton Candy=45;Comic Book=30;Line Art=60;Plaster=60;Motion Blur - Ghost=10;Motion Detector=40;" \
           "Time Distortion=30;Four Square=40;Tiled Up=30;Quark=35;Rain=40;Fire=45;Camera Flashes=12;Logo Animation=6;" \
           "Rain Drops=45;Clouds=12"
    count = split(bars, list, ";")
    for (i = 1; i <= count; ++i) { split(list[i], pair, "="); bar[pair[1]] = pair[2] }
    # By catalogue row where the variants of a class differ.
    row_bar[1] = 25; row_bar[2] = 40; row_bar[3] = 40; row_bar[4] = 40
    row_bar[8] = 25; row_bar[9] = 40; row_bar[10] = 40
    row_bar[15] = 150; row_bar[16] = 150; row_bar[17] = 50
    primitives = 1
    head = "| row | effect | 1280x720 ms | Mpx/s | x memcpy | 1920x1080 ms | Mpx/s | x memcpy | bar | met |\n" \
           "|---|---|---|---|---|---|---|---|---|---|"
}
# A name is quoted and may have commas in it; what comes after it has none.
{ name = $0; if (!sub(/^"/, "", name)) sub(/,.*/, "", name); else { sub(/".*/, "", name); sub(/^"[^"]*"/, "name") } }
/^name,iterations/ { for (i = 1; i <= NF; ++i) { gsub(/"/, "", $i); column[$i] = i } next }
column["ms"] && name ~ /^[0-9]/ {
    primitives = 0
    split(name, part, "/")
    row = part[1] + 0
    sub(/^[0-9]+ /, "", part[1])
    names[row] = part[1]
    cell[row, part[2]] = sprintf("%.2f | %.0f | %.1f", $(column["ms"]), $(column["Mpx_per_s"]), $(column["x_memcpy"]))
    ratio[row, part[2]] = $(column["x_memcpy"])
    if (part[2] == "1280x720") { logs += log($(column["ms"])); ++rows }
    if (row > last) last = row
}
column["ms"] && name ~ /^[^0-9].*\/1280x720/ {
    if (!heads++) print "| primitive | ms | x memcpy |\n|---|---|---|"
    sub(/\/1280x720.*/, "", name)
    printf "| %s | %.3f | %.1f |\n", name, $(column["ms"]), $(column["x_memcpy"])
}
END {
    if (primitives) exit
    print head
    for (row = 1; row <= last; ++row) {
        if (!(row in names)) continue
        limit = row in row_bar ? row_bar[row] : bar[names[row]]
        met = limit == "" ? "" : (ratio[row, "1920x1080"] <= limit ? "yes" : "no")
        printf "| %d | %s | %s | %s | %s | %s |\n", row, names[row], cell[row, "1280x720"], cell[row, "1920x1080"], limit, met
    }
    printf "\nGeometric mean of the rows at 1280x720: %.2f ms.\n", exp(logs / rows)
}' "$1"
