#!/usr/bin/env bash
# abi.sh --check | --record [x86_64 | arm]...: compares the binary interface of libkest.so with the one recorded in
# tests/install/abi/, on both instruction sets unless named, or records it anew. --check fails with a report of what
# differs.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$root"

mode=${1:-}
case $mode in --check | --record) shift ;; *) fail "abi.sh --check | --record [x86_64 | arm]..." ;; esac
targets=("$@")
[ $# -gt 0 ] || targets=(x86_64 arm)
need "${build_packages[@]}" "${abi_packages[@]}"

# Builds the library alone, with debug information, and writes what the public headers show of it to
# build/abi-TARGET/abi. The values of enumerators are not part of that; the tests pin them.
describe() {
  local target=$1 build_dir=$root/build/abi-$1 preset=debug
  [ "$target" != arm ] || { preset=arm && need "${arm_packages[@]}"; }
  build "abi-$target" --preset "$preset" -B "$build_dir" -DCMAKE_BUILD_TYPE=Debug \
    -DKEST_BUILD_PLAYER=OFF -DKEST_BUILD_CTL=OFF -DKEST_BUILD_TESTS=OFF
  abidw --exported-interfaces-only --headers-dir include/ze_kest --drop-private-types --no-show-locs \
    --no-comp-dir-path --no-corpus-path --no-elf-needed --no-parameter-names --type-id-style hash \
    --out-file "$build_dir/abi" "$build_dir/libkest.so"
}

check() {
  local recorded=tests/install/abi/$1.xml
  abidiff "$recorded" "build/abi-$1/abi" && return 0
  fail "" "The binary interface on $1 differs from $recorded. A program built before an addition runs with it:" \
    "record it with scripts/abi.sh --record. It does not run with a removal or with a record, a type or an order" \
    "that changed: take it back, or record it under a new major version."
}

for target in "${targets[@]}"; do
  case $target in x86_64 | arm) ;; *) fail "There is no target $target; there are x86_64 and arm" ;; esac
  describe "$target"
  case $mode in
    --check) check "$target" && say "The binary interface on $target is as recorded" ;;
    --record) mkdir -p tests/install/abi && cp "build/abi-$target/abi" "tests/install/abi/$target.xml" ;;
  esac
done
