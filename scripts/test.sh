#!/usr/bin/env bash
# test.sh [PRESET... | --all]: installs what is missing, builds and runs every test; ends non-zero on any failure.
# Without an argument: release. PRESET: release, debug, asan, tsan or arm. --all: release, asan, tsan, arm and the
# fuzzers for a minute each.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

summary=()
failures=0

# A row of the summary: row NAME RESULT SECONDS
row() { summary+=("$(printf '%-8s  %-44s  %5d s' "$1" "$2" "$3")"); }

# The tests of a build directory; the last lines say what failed and what was skipped.
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

# A failing test in full, of the others the last line.
show_progress() { grep -vE '^ +Start +[0-9]+:|(Passed|\*\*\*Skipped) +[0-9.]+ sec$' || true; }

tests_passed() {
  local skipped
  skipped=$(grep -c '\*\*\*Skipped' "$1" || true)
  sed -n 's/^.*tests passed, 0 tests failed out of \([0-9]*\)$/\1 tests, none failed/p' "$1" | tr -d '\n'
  [ "$skipped" = 0 ] || printf ', %s skipped' "$skipped"
}

# Every test runs in a namespace of its own with a tmpfs over /mnt. Where that is not allowed, the tests use a
# build with a debug directory of its own, one after another.
test_preset() {
  local preset=$1 why
  need "${build_packages[@]}" "${test_packages[@]}"
  [ "$preset" != arm ] || need "${arm_packages[@]}"
  if why=$("$root/tests/support/in_namespace.sh" true 2>&1); then
    build_preset "$preset"
    run_tests "$preset" "$root/build/$preset" -j "$(nproc)"
    return
  fi
  # Short and without a blank, wherever the tree is: commands name files in it.
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
    *) fail "There is no preset $preset: release, debug, asan, tsan, arm, or --all" ;;
  esac
done
cd "$root"
for preset in "${presets[@]}"; do test_preset "$preset"; done
[ "${1:-}" != --all ] || fuzz

say "" "${summary[@]}"
[ "$failures" = 0 ]
