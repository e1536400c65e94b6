#!/usr/bin/env bash
# bench.sh [--quick] [TEXT...]: prints the table of docs/performance.md, or its rows that contain a TEXT.
# --quick: runs every case once, briefly, to see that it works; the figures mean nothing.
# bench.sh --kestctl [--quick]: prints what it costs a playing player to be observed by kestctl.
# bench.sh --arm ...: counts executed instructions on the target's instruction set, see bench/arm/run.sh.
# bench.sh --player [ROUNDS]: the player beside sox, ffmpeg and GStreamer, as far as they are installed.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

case ${1:-} in --arm)
  shift
  exec "$root/bench/arm/run.sh" "$@"
  ;;
--player)
  shift
  exec "$root/bench/player/run.sh" "$@"
  ;;
esac
need "${build_packages[@]}" "${bench_packages[@]}"

case ${1:-} in --kestctl)
  build_preset release >&2
  exec "$root/tests/support/in_namespace.sh" "$root/bench/kestctl.sh" "$root/build/release" "${@:2}"
  ;;
esac

# In memory: on a disk, the benchmarks of the log would measure its file system.
debug_dir=/dev/shm/kest-bench-$(id -u)/
mkdir -p "$debug_dir"
trap 'rm -rf "$debug_dir"' EXIT
build_preset bench -DKEST_DEBUG_DIR="$debug_dir" >&2
"$root/build/bench/kest-bench" "$@"
