#!/usr/bin/env bash
# ladspa.sh --check | --record: compares what all tests of kest-player --check find in every LADSPA plug-in of Debian's
# packages with tests/player/modules/ladspa_findings.txt, or records it anew. The tests of the build run a part of it.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$root"

option=()
case ${1:-} in --check) ;; --record) option=(--record) ;; *) fail "ladspa.sh --check | --record" ;; esac
need "${build_packages[@]}" "${test_packages[@]}"
build_preset release
tests/support/in_namespace.sh tests/player/modules/ladspa_findings.sh "${option[@]}" build/release/kest-player \
  build/release/modules/ladspa_host.so tests/player/modules/ladspa_findings.txt "$(nproc)"
