#!/usr/bin/env bash
# run.sh [--check | --record] [CASE]: counts the instructions that calls of the library execute on the target's
# instruction set. The counts are exact and do not vary from run to run. CASE: only cases whose names begin with it.
# --check: also fails when a case costs over 3 % more than in bench/arm/recorded.txt. --record: writes that file.
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

# executed CASE COUNT: the instructions of the whole program
executed() { qemu-arm -plugin "$plugin" "$calls" "$@" 2>&1 >/dev/null; }

# The difference of two runs excludes start-up and whatever the first calls bind or initialise.
per_call() { say $((($(executed "$1" 30) - $(executed "$1" 10)) / 20)); }

# Prints a line per case: name, samples, goal, instructions per call without those of the loop around it.
measure() {
  local name samples goal loop
  loop=$(per_call nothing)
  qemu-arm "$calls" | while IFS=$'\t' read -r name samples goal; do
    [[ $name != nothing && ($name == "$chosen"* || $name == memcpy*) ]] || continue
    printf '%s\t%s\t%s\t%d\n' "$name" "$samples" "$goal" $(($(per_call "$name") - loop))
  done
}

# Compares the measured costs with the recorded ones and with the goals (per sample if a case has samples).
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
