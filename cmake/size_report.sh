#!/bin/sh
# size_report.sh [BUILD]: prints the sizes in docs/release-notes.md, as table rows, for a build for the target.
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/arm}
tools=arm-linux-gnueabihf-
stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT

# Prints TEXT DATA BSS PATH for the object of each source file, PATH relative to the root. Starts from the sources,
# because the build directory also keeps objects of deleted ones.
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
echo "Directories:"
object_sizes | awk '{ sub(/[^\/]*$/, "", $4); t[$4] += $1; d[$4] += $2; b[$4] += $3 }
  END { for (dir in t) print t[dir], d[dir], b[dir], dir }' | largest_three
