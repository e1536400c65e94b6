#!/bin/sh
# build_and_run.sh SOURCE PREFIX OUTPUT LAUNCHER... -- COMPILER...: builds SOURCE against the kest installed in
# PREFIX with what pkg-config says of it alone, and runs it.
set -eu
source=$1 prefix=$2 output=$3
shift 3
launcher=
while [ "$1" != -- ]; do
  launcher="$launcher $1"
  shift
done
shift
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name kest.pc)")
export PKG_CONFIG_PATH
pkg-config --atleast-version=1.0 kest
libdir=$(pkg-config --variable=libdir kest)
# shellcheck disable=SC2046
"$@" "$source" -o "$output" $(pkg-config --cflags --libs kest) "-Wl,-rpath,$libdir"
exec $launcher "$output"
