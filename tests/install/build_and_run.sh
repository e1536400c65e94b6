#!/bin/sh
# build_and_run.sh PACKAGE PREFIX OUTPUT COMPILER SOURCES LAUNCHER...: builds SOURCES, words of a command line, with
# COMPILER, another one, against the kest installed in PREFIX with what pkg-config says of PACKAGE, and runs it.
set -eu
package=$1 prefix=$2 output=$3 compiler=$4 sources=$5
shift 5
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name kest.pc)")
export PKG_CONFIG_PATH
pkg-config --atleast-version=1.0 "$package"
# As a shell reads it: a blank in a path is escaped.
eval "$compiler $sources -o \"\$output\" $(pkg-config --cflags --libs "$package") \
  -Wl,-rpath,$(pkg-config --variable=libdir "$package")"
exec "$@" "$output"
