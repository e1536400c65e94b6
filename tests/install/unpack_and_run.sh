#!/bin/sh
# unpack_and_run.sh CPACK BUILD OUTPUT LAUNCHER...: packs BUILD for Debian, unpacks the packages, runs the player and
# looks whether each file that should be in a package is in it.
set -eu
cpack=$1 build=$2 output=$3
shift 3
rm -rf "$output"
"$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$output"
holds() {
  package=$1
  shift
  dpkg-deb -c "$output/${package}_"*.deb >"$output/$package.files"
  for file in "$@"; do
    grep -q "$file" "$output/$package.files" || {
      echo "$package does not hold $file"
      exit 1
    }
  done
}
holds libkest1 'lib.*/libkest\.so\.1' /copyright /changelog.gz
holds libkest-dev ze_kest/port.h 'libkest\.so ->' kestConfig.cmake kest.pc libkest_harness.a kest-harness.pc \
  starter/my_filter.c starter-cpp/my_delay.cpp ladspa/module.cpp host/my_host.c write-a-filter.md write-a-host.md /copyright
holds kest-tools bin/kest-player man1/kest-player.1.gz examples/example.json commands.md player.md /copyright
if grep -qx KEST_BUILD_CTL:BOOL=ON "$build/CMakeCache.txt"; then
  holds kest-tools bin/kestctl man1/kestctl.1.gz completions/kestctl kestctl.md monitoring/kest-alerts.yml
fi
for package in libkest-dev kest-tools; do
  dpkg-deb -f "$output/${package}_"*.deb Depends | grep -F 'libkest1 (= '
done
dpkg-deb -f "$output"/libkest1_*.deb Depends | grep android-liblog
dpkg-deb -f "$output"/kest-tools_*.deb Depends | grep libsndfile1
for package in "$output"/*.deb; do dpkg-deb -x "$package" "$output/unpacked"; done
exec "$@" "$output/unpacked/usr/bin/kest-player" --version
