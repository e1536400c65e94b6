#!/usr/bin/env bash
# run.sh SECONDS [commands|json|ports|ctl ...]: runs the named fuzzers, or all of them, and prints a line for each. Exits
# non-zero on a finding; the input that shows it is in build/fuzz/NAME-crash-... (or -timeout-, -leak-, -oom-). To
# reproduce it:
#   tests/support/in_namespace.sh build/fuzz/kest-fuzz-NAME build/fuzz/NAME-crash-...
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"

[[ "${1:-}" =~ ^[1-9][0-9]*$ ]] || fail "Usage: $0 SECONDS [commands|json|ports|ctl ...]"
seconds=$1
shift
[ $# -gt 0 ] || set -- commands json ports ctl
declare -A longest_input=([commands]=2048 [json]=8192 [ports]=512 [ctl]=8192)
for name in "$@"; do
  [ -n "${longest_input[$name]:-}" ] || fail "There is no fuzzer $name; there are commands, json, ports and ctl."
done

in_namespace="$root/tests/support/in_namespace.sh"
why=$("$in_namespace" true 2>&1) || fail "$debug_dir cannot be created in a namespace of its own: $why"
need "${build_packages[@]}" clang libclang-rt-14-dev
build_preset fuzz
out="$root/build/fuzz"

# The last match of an expression in a log.
last_of() { grep -aoE "$1" "$2" | tail -n 1 || true; }

# Inputs that reach new code are kept in build/fuzz/corpus/; the next run starts with them.
fuzz() {
  local name=$1 verdict="nothing found"
  local log="$out/$name.log" corpora=("$out/corpus/$name") options=()
  mkdir -p "${corpora[0]}"
  [ ! -d "$root/fuzz/corpus/$name" ] || corpora+=("$root/fuzz/corpus/$name")
  [ ! -f "$root/fuzz/$name.dict" ] || options=(-dict="$root/fuzz/$name.dict")
  "$in_namespace" "$out/kest-fuzz-$name" -max_total_time="$seconds" -timeout=20 \
    -max_len="${longest_input[$name]}" -artifact_prefix="$out/$name-" -print_final_stats=1 -close_fd_mask=1 \
    "${options[@]}" "${corpora[@]}" >"$log" 2>&1 ||
    verdict="FOUND: $(grep -aoE -m 1 'MISMATCH.*|ERROR: .*|runtime error.*' "$log" || true); see $log"
  say "$name: $(last_of '[0-9]+$' <(grep -a executed_units "$log")) executions, $(
    last_of '[0-9]+$' <(grep -a new_units_added "$log")
  ) new units, $(last_of 'cov: [0-9]+' "$log"), $verdict"
  [ "$verdict" = "nothing found" ]
}

failed=0
for name in "$@"; do
  fuzz "$name" || failed=1
done
exit "$failed"
