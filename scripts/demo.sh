#!/usr/bin/env bash
# demo.sh [AUDIO]: plays AUDIO through the player's pipelines and, while it plays, types commands into the pipe and
# shows the replies as they reach the log. AUDIO defaults to a recording from Debian's alsa-utils.
called_from=$PWD
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

audio=${1:-/usr/share/sounds/alsa/Front_Center.wav}
case $audio in /*) ;; *) audio=$called_from/$audio ;; esac

# Fails, saying why, when the debug directory or the files of an earlier run in it cannot be used.
make_debug_dir() {
  [ -w "$debug_dir" ] || { as_root mkdir -p "$debug_dir" && as_root chmod 777 "$debug_dir"; } || return 1
  local file
  for file in D KestLog.txt shm_global shm_flock_global; do
    [ ! -e "$debug_dir$file" ] || [ -w "$debug_dir$file" ] || fail "$debug_dir$file belongs to another user"
  done
}

# Waits until the player's command thread reads the pipe.
wait_for_pipe() {
  local tries
  for tries in $(seq 100); do
    [ -p "${debug_dir}D" ] && return 0
    kill -0 "$player" 2>/dev/null || return 1
    sleep 0.1
  done
  return 1
}

# Types lines into the pipe, all at once; the replies appear from the log file. pause: seconds to wait for them.
command_to_pipe() {
  local typed=("${@/#/\$ echo }")
  say "" "${typed[@]/%/ >D}"
  timeout 5 sh -c 'pipe=$1; shift; printf "%s\n" "$@" >"$pipe"' sh "${debug_dir}D" "$@" ||
    fail "No process reads the pipe ${debug_dir}D"
  sleep "${pause:-0.4}"
}

# Runs kestctl on the player.
ctl() {
  say "" "\$ kestctl $*"
  "$build_dir/kestctl" --dir "$debug_dir" "$@" || true
}

# Shows what is new in the log as it comes; cat -s squeezes the empty rows of the help into one.
start_tail() {
  tail -n 0 -f --pid="$player" "${debug_dir}KestLog.txt" > >(cat -s) &
  log_tail=$!
}
stop_tail() { kill "$log_tail" 2>/dev/null && wait "$log_tail" 2>/dev/null || true; }

stop_player() { kill "${player:-}" 2>/dev/null || true; }

need "${build_packages[@]}" "${demo_packages[@]}"
[ -r "$audio" ] || fail "There is no readable audio file $audio"

if why=$(make_debug_dir 2>&1); then
  build_dir=$root/build/release
  build_preset release -DKEST_BUILD_TESTS=OFF
else
  say "$debug_dir cannot be used: $why"
  debug_dir=$root/build/local/kest/
  build_dir=$root/build/local
  say "Using a build with the debug directory $debug_dir instead."
  mkdir -p "$debug_dir"
  build local --preset release -B "$build_dir" -DKEST_BUILD_TESTS=OFF -DKEST_DEBUG_DIR="$debug_dir"
fi

output=$root/build/demo.wav
touch "${debug_dir}KestLog.txt"
trap stop_player EXIT

say "Playing $audio through Decoder_13 (Lpcm, Volume, a LADSPA low-pass in a module) and SpeakerOutput (Mixer, Delay, SpeakerOutput) ..."
rm -f "$debug_dir"{Dump{In,Out}SpeakerOutputMixer*,Out{,Sig}MixerDelay_*.pcm,Decoder.txt}
"$build_dir/kest-player" "$audio" -o "$output" --loop --seconds 22 --delay-ms 50 --wide \
  --module "$build_dir/modules/ladspa_host.so:Ladspa,Cutoff_Frequency=8000" --module-config filter:lpf &
player=$!
start_tail
wait_for_pipe || { wait "$player"; exit 1; }

sleep 0.5
command_to_pipe help
command_to_pipe kest_log_level=info
command_to_pipe ascii_color
command_to_pipe kest_log_level=none
command_to_pipe kest_debug_list=print
stop_tail
say "" "The same with kestctl, which waits for the answers and says what came of them:"
ctl doctor
ctl ls
ctl ls parameters
ctl set Decoder_13/Volume Gain -6
ctl set Decoder_13/Volume gain -6
say "" "The low-pass of the module takes thousandths of a hertz:"
ctl set Decoder_13/Ladspa Cutoff_Frequency 900000
ctl status
start_tail
command_to_pipe kest_debug_send_cmd_by_text=Decoder_13,Volume,state
command_to_pipe kest_log_level=info
command_to_pipe kest_debug_preset_cmd=all,adc_filter=dump_pcm
command_to_pipe kest_print_current_shm
command_to_pipe kest_debug_preset_cmd=off
command_to_pipe kest_log_to_file=off
command_to_pipe kest_log_to_file=on
command_to_pipe no_such_command
command_to_pipe kest_log_level=none

say "" "What the filters' ports hold, for a few cycles:"
pause=0.01 command_to_pipe kest_print_filter_info=on
command_to_pipe kest_print_filter_info=off
say "" "What the mixer consumes and produces, dumped to files:"
command_to_pipe kest_dump_filter_io=SpeakerOutput,Mixer
command_to_pipe kest_dump_io=on
command_to_pipe kest_dump_io=off
say "" "When the filters of the decoder pipeline ran, traced to a file:"
command_to_pipe kest_debug_filter_io=Decoder kest_debug_filter_io=restart
command_to_pipe kest_debug_filter_io=release
tail -n 4 "${debug_dir}Decoder.txt"
say "" "The delay of 50 ms, measured: 500 cycles of silence (2.7 s), then a burst of a sine."
command_to_pipe kest_latency_config=SpeakerOutput,Mixer,SpeakerOutput,Delay
command_to_pipe kest_latency=on
sleep 4
command_to_pipe kest_latency=off

say "" "Waiting for the end of the audio ..."
wait "$player"
wait
say "" "Output: $output" "Log:    ${debug_dir}KestLog.txt" "Pipe:   ${debug_dir}D (while a player runs)" \
  "Dumps:  $(cd "$debug_dir" && say Dump*SpeakerOutputMixer* | paste -sd ' ')" \
  "Trace:  ${debug_dir}Decoder.txt" \
  "Burst:  ${debug_dir}OutSigMixerDelay_0.pcm, the output of the delay from the hit on"
