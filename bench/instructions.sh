#!/usr/bin/env bash
# Instructions a conversion, by who executes them: instructions.sh BUILD_DIR
#
# Every case runs under callgrind with two counts of conversions; their
# difference leaves start-up out. Strings and their malloc and free, which the
# plug-in's contract with a host asks for, appear under libc.
set -euo pipefail

build=${1:?usage: instructions.sh BUILD_DIR}
loop=$build/bin/converter_loop
few=100
many=1100
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Self cost by object of a callgrind output file: "OBJECT INSTRUCTIONS" lines.
by_object() {
    awk '
        /^c?ob=/ {
            id = $1; sub(/^c?ob=/, "", id)
            if (NF > 1) name[id] = $2
            if (/^ob=/) object = id
            next
        }
        /^calls=/ { getline; next } # the next line is the callee'"'"'s, inclusive
        /^[0-9+*-]/ { cost[object] += $2 }
        END { for (id in cost) { n = split(name[id], part, "/"); print part[n], cost[id] } }
    ' "$1"
}

measure() { # CASE COUNT
    valgrind --tool=callgrind --callgrind-out-file="$work/$2" "$loop" "$1" "$2" 2>"$work/log" ||
        { cat "$work/log" >&2; exit 1; }
    by_object "$work/$2" >"$work/$2.objects"
}

printf '%-24s %6s %9s %9s %9s %9s %9s\n' 'instructions' nodes total plug-in libsafec libc host
"$loop" | while read -r name nodes; do
    measure "$name" "$few"
    measure "$name" "$many"
    awk -v name="$name" -v nodes="$nodes" -v conversions=$((many - few)) '
        NR == FNR { before[$1] = $2; next }
        {
            delta = ($2 - before[$1]) / conversions
            total += delta
            if ($1 ~ /^libipv4_acl_ace/) plugin += delta
            else if ($1 ~ /^libsafec/) safec += delta
            else if ($1 ~ /^(libc|ld-linux)/) libc += delta
            else host += delta
        }
        END {
            printf "%-24s %6d %9.0f %9.0f %9.0f %9.0f %9.0f\n", name, nodes, total, plugin, safec,
                   libc, host
        }' "$work/$few.objects" "$work/$many.objects"
done
