#!/usr/bin/env bash
# run.sh [--check | --record] [CASE]: what calls of the library cost on the target's instruction set, in executed
# instructions; exact, so the same at every run. CASE: only the cases whose names begin so.
# --check: also ends non-zero when a case costs more than 3 % over bench/arm/recorded.txt. --record: writes that.
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

recorded="$root/bench/arm/recorded.txt"
mode=table
case ${1:-} in
  --check | --record) mode=${1#--} && shift ;;
  -*) fail "Usage: $0 [--check | --record] [CASE]" ;;
esac
chosen=${1:-}
[ "$mode" != record ] || [ -z "$chosen" ] || fail "Only the whole table is recorded."

need "${build_packages[@]}" "${arm_packages[@]}"
plugin="$root/build/arm/libcount.so"
calls="$root/build/arm/kest-arm-calls"
log="$root/build/arm-bench.log"
mkdir -p "$root/build/arm"
(cd "$root" && cmake --preset arm && cmake --build build/arm --target kest-arm-calls &&
  gcc -shared -fPIC -O2 -Wall -Wextra -o "$plugin" bench/arm/count.c) >"$log" 2>&1 ||
  { tail -n 40 "$log" >&2; fail "The build failed; the whole log is $log"; }

# Instructions of the whole program: executed CASE COUNT
executed() { qemu-arm -plugin "$plugin" "$calls" "$@" 2>&1 >/dev/null; }

# The first calls may bind or fill something: what counts is what further ones cost.
per_call() { say $((($(executed "$1" 30) - $(executed "$1" 10)) / 20)); }

# A line for each case: name, samples, goal, instructions of a call without those of the loop around it.
measure() {
  local name samples goal loop
  loop=$(per_call nothing)
  qemu-arm "$calls" | while IFS=$'\t' read -r name samples goal; do
    [[ $name != nothing && ($name == "$chosen"* || $name == memcpy*) ]] || continue
    printf '%s\t%s\t%s\t%d\n' "$name" "$samples" "$goal" $(($(per_call "$name") - loop))
  done
}

# Goals and the recorded costs are compared with what was measured, per sample where there are samples.
table() {
  awk -F '\t' -v mode="$mode" -v recorded="$recorded" '
    function cost(instructions, samples) { return samples ? sprintf("%.3f", instructions / samples) : "" }
    BEGIN {
      while ((getline line < recorded) > 0) { split(line, field, "\t"); was[field[1]] = field[2] }
      printf "%-32s %10s %11s %10s  %s\n", "case", "per call", "per sample", "recorded", "goal"
    }
    {
      calls[$1] = $4; samples[$1] = $2; goal = $3; verdict = ""
      if (goal != "-") {
        limit = goal * (samples[$1] ? samples[$1] : 1)
        if (split(goal, part, " x ") == 2) limit = part[1] * calls[part[2]]
        verdict = limit == 0 ? "" : $4 <= limit ? "reached" : "MISSED"
      }
      note = ""
      if (!($1 in was)) note = mode == "check" ? "  NOT RECORDED" : ""
      else if ($4 > was[$1] * 1.03) note = "  MORE THAN RECORDED"
      if (note != "") bad = 1
      printf "%-32s %10d %11s %10s  %-22s %s%s\n", $1, $4, cost($4, $2), was[$1], goal, verdict, note
    }
    END { exit mode == "check" && bad }'
}

if [ "$mode" = record ]; then
  measure | cut -f 1,4 >"$recorded.new"
  mv "$recorded.new" "$recorded"
  say "Recorded $(wc -l <"$recorded") cases in $recorded"
else
  measure | table
fi
