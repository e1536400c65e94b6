#!/bin/sh
# unpack_and_run.sh CPACK BUILD OUTPUT LAUNCHER...: packs BUILD for Debian, unpacks the package and runs its player.
set -eu
cpack=$1 build=$2 output=$3
shift 3
rm -rf "$output"
"$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$output"
dpkg-deb -f "$output"/*.deb Depends | grep -E 'android-liblog.*libsndfile1'
dpkg-deb -x "$output"/*.deb "$output/unpacked"
exec "$@" "$output/unpacked/usr/bin/kest-player" --help
