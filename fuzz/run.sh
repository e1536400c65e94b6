#!/usr/bin/env bash
# Fuzzes: run.sh SECONDS [commands|json|ports ...], all of them when none is named. One line for each; ends
# non-zero when something was found, with what shows it in build/fuzz/NAME-crash-... (or -timeout-, -leak-,
# -oom-). To see it again:
#   tests/support/in_namespace.sh build/fuzz/kest-fuzz-NAME build/fuzz/NAME-crash-...
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"

[[ "${1:-}" =~ ^[1-9][0-9]*$ ]] || fail "Usage: $0 SECONDS [commands|json|ports ...]"
seconds=$1
shift
[ $# -gt 0 ] || set -- commands json ports
declare -A longest_input=([commands]=2048 [json]=8192 [ports]=1024)
for name in "$@"; do
  [ -n "${longest_input[$name]:-}" ] || fail "There is no fuzzer $name, but commands, json and ports."
done

need "${build_packages[@]}" clang libclang-rt-14-dev
build_preset fuzz

value_of() { sed -n "s/^stat::$1: *//p" "$2"; }

# What is found of new ways through the code is kept in build/fuzz/corpus/, for the next run to begin with.
fuzz() {
  local name=$1 out="$root/build/fuzz" result=0
  local log="$out/$name.log" corpus="$out/corpus/$name"
  local options=()
  [ ! -f "$root/fuzz/$name.dict" ] || options=(-dict="$root/fuzz/$name.dict")
  mkdir -p "$corpus"
  "$root/tests/support/in_namespace.sh" "$out/kest-fuzz-$name" -max_total_time="$seconds" -timeout=20 \
    -max_len="${longest_input[$name]}" "${options[@]}" -artifact_prefix="$out/$name-" \
    -print_final_stats=1 -close_fd_mask=1 "$corpus" "$root/fuzz/corpus/$name" >"$log" 2>&1 || result=$?
  local verdict="nothing found"
  [ "$result" = 0 ] || verdict="FOUND something, see $log: $(grep -m 1 -E 'MISMATCH|ERROR|runtime error' "$log" || true)"
  say "$name: $(value_of number_of_executed_units "$log") executions, $(value_of new_units_added "$log") new units, $(
    grep -o 'cov: [0-9]*' "$log" | tail -n 1
  ), $verdict"
  return "$result"
}

failed=0
for name in "$@"; do
  fuzz "$name" || failed=1
done
exit "$failed"
