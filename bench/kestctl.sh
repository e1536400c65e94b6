#!/usr/bin/env bash
# kestctl.sh [--quick]: what it costs a playing player to be observed by kestctl, as a table of ratios. Its audio threads
# run the same number of cycles whether they are observed or not, so the CPU time that they take says what a cycle
# costs. All cases run in turns, several times each, beside one player; a ratio is that of two medians.
# To be run by tests/support/in_namespace.sh, with kest-player and kestctl in the directory $1.
set -euo pipefail
bin=$1
rounds=7
seconds=2
case ${2:-} in --quick)
  rounds=1
  seconds=0.3
  ;;
esac

work=$(mktemp -d /dev/shm/kest-bench.XXXXXX)
"$bin/kest-player" /usr/share/sounds/alsa/Front_Center.wav -o "$work/out.wav" --loop --delay-ms 50 >/dev/null &
player=$!
trap 'kill $player; wait $player 2>/dev/null || true; rm -rf "$work"' EXIT
until "$bin/kestctl" ls 2>/dev/null | grep -q Decoder_13; do sleep 0.1; done
audio_threads=$("$bin/kestctl" --json ls | grep -oE '"tid":[0-9]+' | cut -d: -f2 | sort -u)

# Nanoseconds on a core so far: of the audio threads, and of all.
cpu_ns() {
  local audio=0 all=0 ns task
  for task in "/proc/$player/task"/*; do
    read -r ns _ <"$task/schedstat"
    all=$((all + ns))
    case " ${audio_threads//$'\n'/ } " in *" ${task##*/} "*) audio=$((audio + ns)) ;; esac
  done
  echo "$audio $all"
}

dump() {
  if "$bin/kestctl" help dump >/dev/null 2>&1; then
    "$bin/kestctl" -q dump SpeakerOutput/Mixer --out --seconds 60 -o "$work/files"
  else
    trap '"$bin/kestctl" send kest_dump_output=off >/dev/null; exit 0' INT
    "$bin/kestctl" send kest_dump_output_filter=SpeakerOutput,Mixer kest_dump_output=on >/dev/null
    while :; do sleep 0.1; done
  fi
}

# A job in the background ignores SIGINT unless it says otherwise.
interruptible() { exec env --default-signal=INT "$@"; }
nothing() { :; }
top() { interruptible "$bin/kestctl" top -b -d 1; }
watch() { interruptible "$bin/kestctl" watch; }
watch_now_and_then() { interruptible "$bin/kestctl" watch --every 1; }
trace() { interruptible "$bin/kestctl" trace Decoder_13 SpeakerOutput --seconds 60 -o "$work/trace.json"; }
trace_only() { interruptible "$bin/kestctl" trace Decoder_13 SpeakerOutput --seconds 60 --levels 0 -o "$work/trace.json"; }
cases=(nothing top dump trace trace_only watch watch_now_and_then)

# Appends how much CPU time the case took, of the audio threads and of all.
measure() {
  local before after observer
  ("$1") >/dev/null 2>&1 &
  observer=$!
  sleep 0.3
  before=$(cpu_ns)
  sleep "$seconds"
  after=$(cpu_ns)
  kill -INT "$observer" 2>/dev/null || true
  wait "$observer" 2>/dev/null || true
  echo "$after $before" | awk -v s="$seconds" '{ print $1 - $3, ($2 - $4) / s / 1e7 }' >>"$work/$1"
}

for ((round = 0; round < rounds; ++round)); do
  for name in $(shuf -e "${cases[@]}"); do
    measure "$name"
    rm -rf "$work/files" /mnt/vendor/tmp/kest/Dump*
  done
done

# The median of a column of a case.
median() { cut -d' ' -f"$2" "$work/$1" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

echo "| observed by | cycle, times without | % of a core more |"
echo "|---|---|---|"
row() {
  awk -v name="$2" -v with="$(median "$1" 1)" -v without="$(median nothing 1)" -v all="$(median "$1" 2)" \
    -v idle="$(median nothing 2)" 'BEGIN { printf "| %s | %.2f | %.2f |\n", name, with / without, all - idle }'
}
row top "\`top\`, a look a second"
row dump "\`dump\` of one output"
row trace "\`trace\` of all pipelines, levels every 100 ms"
row trace_only "\`trace --levels 0\`"
row watch "\`watch\`"
row watch_now_and_then "\`watch --every 1\`"
