#!/bin/sh
# size_report.sh [BUILD]: the figures of docs/release-notes.md, as its tables have them, from a build for the target.
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/arm}
tools=arm-linux-gnueabihf-
stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT

# text, data and bss of each file's object: TEXT DATA BSS PATH, the path from the root. The build keeps the objects
# of files that are gone.
object_sizes() {
  find utility debug -name '*.cpp' -printf '%p.o\n' |
    (cd "$build/CMakeFiles/kest_objects.dir" && xargs ${tools}size) |
    awk '$1 != "text" { sub(/\.o$/, "", $6); print $1, $2, $3, $6 }'
}
largest_three() { sort -nr | head -n 3 | awk '{ printf "| %d | %d | %d | `%s` |\n", $1, $2, $3, $4 }'; }

${tools}strip -o "$stripped" "$build/libkest.so"
echo "The stripped library:"
${tools}size "$stripped" | awk 'NR == 2 { printf "| %d | %d | %d |\n", $1, $2, $3 }'
${tools}size -A "$stripped" | awk '$1 == ".text" || $1 == ".rodata" { print $1, $2 }'
echo "Files:"
object_sizes | largest_three
echo "Rooms:"
object_sizes | awk '{ sub(/[^\/]*$/, "", $4); t[$4] += $1; d[$4] += $2; b[$4] += $3 }
  END { for (room in t) print t[room], d[room], b[room], room }' | largest_three
