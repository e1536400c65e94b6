#!/usr/bin/env bash
# test.sh [PRESET... | --all]: installs what is missing, builds and runs every test; exits non-zero on any failure.
# PRESET: release (the default), debug, asan, tsan or arm. --all: release, asan, tsan, arm, and each fuzzer for a
# minute.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

summary=()
failures=0

# Adds a row to the summary: row NAME RESULT SECONDS
row() { summary+=("$(printf '%-8s  %-44s  %5d s' "$1" "$2" "$3")"); }

# Runs the tests of a build directory. The last lines of the output say what failed and what was skipped.
run_tests() {
  local name=$1 build_dir=$2 start=$SECONDS log=$root/build/$1.tests.log
  shift 2
  if (cd "$build_dir" && ctest --output-on-failure --timeout 300 "$@" 2>&1) | tee "$log" | show_progress; then
    row "$name" "$(tests_passed "$log")" $((SECONDS - start))
  else
    row "$name" "FAILED, see $log" $((SECONDS - start))
    failures=$((failures + 1))
  fi
}

# Shows failing tests in full and drops the lines of tests that passed or were skipped.
show_progress() { grep -vE '^ +Start +[0-9]+:|(Passed|\*\*\*Skipped) +[0-9.]+ sec$' || true; }

tests_passed() {
  local skipped
  skipped=$(grep -c '\*\*\*Skipped' "$1" || true)
  sed -n 's/^.*tests passed, 0 tests failed out of \([0-9]*\)$/\1 tests, none failed/p' "$1" | tr -d '\n'
  [ "$skipped" = 0 ] || printf ', %s skipped' "$skipped"
}

# Every test runs in its own namespace with a tmpfs over /mnt. Where namespaces are not allowed, a build with its
# own debug directory is tested instead, one test at a time.
test_preset() {
  local preset=$1 why
  need "${build_packages[@]}" "${test_packages[@]}"
  [ "$preset" != arm ] || need "${arm_packages[@]}"
  if why=$("$root/tests/support/in_namespace.sh" true 2>&1); then
    build_preset "$preset"
    run_tests "$preset" "$root/build/$preset" -j "$(nproc)"
    return
  fi
  # Short and without blanks, wherever the tree is: commands contain file names in this directory.
  local name=local-$preset own_dir=/dev/shm/kest-test-$(id -u)/
  say "$debug_dir cannot be created in a namespace of its own: $why" \
    "Testing a build with the debug directory $own_dir instead."
  build "$name" --preset "$preset" -B "$root/build/$name" -DKEST_DEBUG_DIR="$own_dir"
  KEST_TEST_NAMESPACE=none run_tests "$preset" "$root/build/$name"
  rm -rf "$own_dir"
}

fuzz() {
  local start=$SECONDS result='no finding'
  need "${build_packages[@]}" "${fuzz_packages[@]}"
  "$root/fuzz/run.sh" 60 || { result='FAILED'; failures=$((failures + 1)); }
  row fuzz "$result" $((SECONDS - start))
}

presets=("${@:-release}")
[ "${1:-}" != --all ] || presets=(release asan tsan arm)
for preset in "${presets[@]}"; do
  case $preset in
    release | debug | asan | tsan | arm) ;;
    *) fail "There is no preset $preset; there are release, debug, asan, tsan and arm, or --all for several" ;;
  esac
done
cd "$root"
for preset in "${presets[@]}"; do test_preset "$preset"; done
[ "${1:-}" != --all ] || fuzz

say "" "${summary[@]}"
[ "$failures" = 0 ]
