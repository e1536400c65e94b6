#!/bin/sh
# build_and_run.sh SOURCE PREFIX OUTPUT COMPILER LAUNCHER...: builds SOURCE with COMPILER, a command line, against
# the kest installed in PREFIX with what pkg-config says of it alone, and runs it.
set -eu
source=$1 prefix=$2 output=$3 compiler=$4
shift 4
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name kest.pc)")
export PKG_CONFIG_PATH
pkg-config --atleast-version=1.0 kest
# As a shell reads it: a blank in a path is escaped.
eval "$compiler \"\$source\" -o \"\$output\" $(pkg-config --cflags --libs kest) \
  -Wl,-rpath,$(pkg-config --variable=libdir kest)"
exec "$@" "$output"
