#!/usr/bin/env bash
# Installs what is missing, builds the release and runs every test. Ends non-zero on any failure.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need "${build_packages[@]}" "${test_packages[@]}"

# Every test runs in a namespace of its own with a tmpfs over /mnt. Where that is not allowed, the tests use a
# build with a debug directory of its own, one after another.
if why=$("$root/tests/support/in_namespace.sh" true 2>&1); then
  build_preset release
  cd "$root/build/release"
  ctest --output-on-failure --timeout 120 -j "$(nproc)"
else
  say "$debug_dir cannot be created in a namespace of its own: $why" \
    "Testing a build with the debug directory build/local/kest/ instead."
  build local --preset release -B "$root/build/local" -DKEST_DEBUG_DIR="$root/build/local/kest/"
  cd "$root/build/local"
  KEST_TEST_NAMESPACE=none ctest --output-on-failure --timeout 120
fi
