#!/usr/bin/env bash
# run.sh [ROUNDS]: the player beside other programs that do the same, as whole processes, in turn in one run: sox,
# ffmpeg and GStreamer, as far as they are installed. Prints the medians of the ratios, player / other.
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

rounds=${1:-5}
seconds=120
real_time_seconds=20
need "${build_packages[@]}"
(cd "$root" && cmake --preset release && cmake --build build/release --target kest-player -j "$(nproc)") >/dev/null
# On a disk, it would be the disk that is measured.
work=$(mktemp -d /dev/shm/kest-bench-XXXXXX)
trap 'rm -rf "$work"' EXIT

# NUMBER BYTES: little-endian
bytes() {
  local number=$1 i
  for ((i = 0; i < $2; i++, number >>= 8)); do printf "\\x$(printf %02x $((number & 255)))"; done
}

# Noise: 48 kHz, stereo, 16 bits.
make_input() {
  local data=$((seconds * 48000 * 4))
  printf RIFF && bytes $((data + 36)) 4 && printf 'WAVEfmt ' && bytes 16 4 && bytes 1 2 && bytes 2 2
  bytes 48000 4 && bytes 192000 4 && bytes 4 2 && bytes 16 2 && printf data && bytes "$data" 4
  head -c "$data" /dev/urandom
}

inputs=()
for i in 1 2 3 4 5 6 7 8; do
  inputs+=("$work/in$i.wav")
  make_input >"$work/in$i.wav"
done

player() { "$root/tests/support/in_namespace.sh" "$root/build/release/kest-player" -o "$work/kest.wav" "$@"; }
with_sox() { sox -m "${inputs[@]}" "$work/other.wav"; }
copy_with_sox() { sox "${inputs[0]}" "$work/other.wav"; }
with_ffmpeg() {
  local input arguments=()
  for input in "${inputs[@]}"; do arguments+=(-i "$input"); done
  ffmpeg -y -v error "${arguments[@]}" -filter_complex amix=inputs=8:normalize=0 "$work/other.wav"
}
# SINK: gstreamer's mixer in cycles as long as the player's
with_gstreamer() {
  local input arguments=()
  for input in "${inputs[@]}"; do arguments+=(filesrc "location=$input" ! wavparse ! queue ! mix.); done
  gst-launch-1.0 -q audiomixer name=mix output-buffer-duration=5333333 ! wavenc ! "$@" "${arguments[@]}"
}
fast_with_gstreamer() { with_gstreamer filesink "location=$work/other.wav"; }
slowly_with_gstreamer() {
  export -f with_gstreamer
  timeout -s INT "$real_time_seconds" bash -c 'inputs=("${@:2}"); with_gstreamer filesink sync=true "location=$1"' \
    - "$work/other.wav" "${inputs[@]}" || true
}

# COMMAND...: wall and processor seconds
seconds_of() {
  local TIMEFORMAT='%R %U %S'
  { time "$@" >/dev/null 2>&1; } 2>&1 | awk '{ print $1, $2 + $3 }'
}

# NAME PROGRAM COMMAND PLAYER-ARGUMENTS...: a row, if the program is installed
compare() {
  local name=$1 program=$2 command=$3 round
  shift 3
  command -v "$program" >/dev/null || { say "| $name | not installed | |" && return; }
  for ((round = 0; round < rounds; round++)); do
    say "$(seconds_of player "$@") $(seconds_of "$command")"
  done >"$work/rounds"
  say "| $name | $(median '$1 / $3') | $(median '$2 / $4') |"
}

# EXPRESSION over player's wall, processor, other's wall, processor
median() { awk "{ print $1 }" "$work/rounds" | sort -g | awk '{ r[NR] = $1 } END { printf "%.2f", r[int((NR + 1) / 2)] }'; }

say '| what | wall time, player / other | processor time, player / other |' '|---|---|---|'
compare "eight files mixed, sox" sox with_sox --fast "${inputs[@]}"
compare "eight files mixed, ffmpeg's amix" ffmpeg with_ffmpeg --fast "${inputs[@]}"
compare "eight files mixed, GStreamer's audiomixer" gst-launch-1.0 fast_with_gstreamer --fast "${inputs[@]}"
compare "one file copied, sox" sox copy_with_sox --fast "${inputs[0]}"
rounds=1
compare "eight files mixed in real time, GStreamer's audiomixer" gst-launch-1.0 slowly_with_gstreamer \
  --seconds "$real_time_seconds" "${inputs[@]}"
