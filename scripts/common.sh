# Sourced by the scripts of this directory: where the tree is, which packages it needs, where debug files go.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
debug_dir=/mnt/vendor/tmp/kest/

build_packages=(g++ cmake make pkg-config android-liblog-dev libjsmn-dev
  libsndfile1-dev libsoxr-dev libasound2-dev libcli11-dev alsa-utils
  libfmt-dev nlohmann-json3-dev libedit-dev libncurses-dev libkissfft-dev libarchive-dev)
test_packages=(libgtest-dev libgmock-dev dpkg-dev file python3-jsonschema mksh toybox gnuplot-nox
  ladspa-sdk cmt swh-plugins prometheus prometheus-node-exporter python3-prometheus-client)
demo_packages=(ladspa-sdk)
arm_packages=(g++-arm-linux-gnueabihf qemu-user
  android-liblog-dev:armhf libsndfile1-dev:armhf libsoxr-dev:armhf libasound2-dev:armhf
  libgtest-dev:armhf libgmock-dev:armhf)
fuzz_packages=(clang libclang-rt-14-dev)
bench_packages=(libbenchmark-dev libswresample-dev)
android_bp_packages=(blueprint-tools mini-soong)
abi_packages=(abigail-tools)
docs_packages=(doxygen)
package_check_packages=(lintian mmdebstrap)

# Prints each argument on a line of its own.
say() { printf '%s\n' "$@"; }
fail() {
  say "$@" >&2
  exit 1
}

need_root_for() {
  [ "$(id -u)" = 0 ] || command -v sudo >/dev/null ||
    fail "This needs root: $*" "Run the script as root, or install sudo."
}

as_root() {
  need_root_for "$@"
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# PACKAGE, for this machine's architecture or architecture-independent, or PACKAGE:ARCHITECTURE.
is_installed() {
  case $1 in *:*)
    dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null | grep -qx installed
    return
    ;;
  esac
  dpkg-query -W -f '${Architecture}:${db:Status-Status}\n' "$1" 2>/dev/null |
    grep -qxE "($(dpkg --print-architecture)|all):installed"
}

install_packages() { as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@"; }

# Installs missing packages; quick and silent when none is missing.
need() {
  local missing=() package
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  need_root_for apt-get install "${missing[@]}"
  say "Installing ${missing[*]} ..."
  mkdir -p "$root/build"
  local log="$root/build/packages.log"
  case ${missing[*]} in *:armhf*)
    dpkg --print-foreign-architectures | grep -qx armhf || as_root dpkg --add-architecture armhf
    ;;
  esac
  # Tries the package lists that the machine has. Where these are missing or outdated, fetches new ones; a
  # failed update is no obstacle, since the mirror may still have the packages.
  install_packages "${missing[@]}" >"$log" 2>&1 && return 0
  as_root apt-get update >>"$log" 2>&1 || true
  install_packages "${missing[@]}" >>"$log" 2>&1 && return 0
  tail -n 20 "$log" >&2
  fail "The packages could not be installed; the whole log is $log"
}

# Configures and builds into build/NAME: build NAME [CMake options...]
build() {
  local name=$1
  shift
  local log="$root/build/$name.log"
  mkdir -p "$root/build"
  say "Building build/$name ..."
  if ! { cmake -S "$root" "$@" && cmake --build "$root/build/$name" -j "$(nproc)"; } >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    fail "The build failed; the whole log is $log"
  fi
}

build_preset() { (cd "$root" && build "$1" --preset "$1" "${@:2}"); }
