#!/usr/bin/env bash
# android_bp.sh: tries Android.bp. The platform's formatter accepts it unchanged; a reimplementation of the platform's
# build makes libkest.so from it; that library exports what it should, needs no C++ run-time, and a program runs with
# it.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
need "${build_packages[@]}" "${test_packages[@]}" "${android_bp_packages[@]}"
cd "$root"

unformatted=$(bpfmt -l Android.bp)
[ -z "$unformatted" ] || fail "bpfmt would change Android.bp:" "$(bpfmt -d Android.bp)"

# The tool works in the directory where it runs, so it gets one of its own.
dir=$root/build/android-bp
rm -rf "$dir"
mkdir -p "$dir"
ln -s "$root"/{Android.bp,utility,debug,include} "$dir"
# It warns of the licence, which it does not know.
(cd "$dir" && mini-soong Android.bp soong.mk 2>"$dir/warnings") || fail "$(cat "$dir/warnings")"

# What the tool leaves to the caller: the C++ standard, and where the machine's liblog has its headers.
standard=$(sed -n 's/^ *cpp_std: "\(.*\)",$/\1/p' Android.bp)
make_target() {
  make -C "$dir" -f soong.mk -s CXXFLAGS="-std=$standard" liblog_INCLUDES=-I/usr/include/android "$1"
}
# The tool compiles one file after the other. The makefile does not know that the library needs the archive.
make_target libkest_cold.a
make_target libkest.so

tests/install/check_library.sh "$dir/libkest.so" tests/install/exported_symbols.txt nm readelf
liblog_dir=/usr/lib/$(dpkg-architecture -q DEB_HOST_MULTIARCH)/android
cc -Iinclude tests/consumer/c/main.c -o "$dir/consumer" -L"$dir" -lkest -Wl,-rpath-link,"$liblog_dir"
LD_LIBRARY_PATH=$dir:$liblog_dir tests/support/in_namespace.sh "$dir/consumer"
say "Android.bp is formatted, and libkest.so, built from it, works"
