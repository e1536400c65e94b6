#!/bin/sh
# check_android_bp.sh ANDROID_BP SOURCES COLD_SOURCES: the lists of ANDROID_BP hold the files that the two others, a
# line each, name: the archive that is optimised for size the cold ones, the library itself the rest.
set -eu
android_bp=$1 sources=$2 cold_sources=$3

# The sources that ANDROID_BP lists for the module NAME.
listed() { sed -n "/name: \"$1\"/,/^}/ s/^ *\"\(.*\.cpp\)\",$/\1/p" "$android_bp" | LC_ALL=C sort; }
compare() {
  diff -u - "$1" || {
    echo "$android_bp, $2: the sources above with a + are missing, those with a - are not built by CMake there"
    exit 1
  }
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
LC_ALL=C sort "$cold_sources" >"$work/cold"
LC_ALL=C sort "$sources" | LC_ALL=C comm -23 - "$work/cold" >"$work/rest"
listed libkest_cold | compare "$work/cold" libkest_cold
listed libkest | compare "$work/rest" libkest
