#!/bin/sh
# check_library.sh LIBRARY LIST NM READELF: LIBRARY exports the names in LIST and no other, and needs nothing of a
# C++ run-time.
set -eu
library=$1 list=$2 nm=$3 readelf=$4

"$nm" -D --defined-only "$library" | awk '{ print $NF }' | LC_ALL=C sort | diff -u "$list" - || {
  echo "$library does not export what $list lists"
  exit 1
}

# The C library's own __cxa_ functions register and run destructors at exit.
needed=$(
  "$nm" -D --undefined-only "$library" | awk '{ print $NF }' | grep -E '^(_Z|__cxa_|__gxx_|_Unwind_)' |
    grep -vE '^__cxa_(atexit|finalize)(@|$)'
  "$readelf" -d "$library" | grep -E 'NEEDED.*(c\+\+|libgcc)'
) || true
[ -z "$needed" ] || {
  printf '%s needs a C++ run-time:\n%s\n' "$library" "$needed"
  exit 1
}
