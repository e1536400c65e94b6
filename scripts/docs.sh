#!/usr/bin/env bash
# docs.sh: makes the reference of the interface from the headers, build/docs/html/index.html, and fails when a function, a
# parameter, a result, a record or a field is not documented. The manual pages of the programs are made by the build.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
need python3-minimal "${docs_packages[@]}"
cd "$root"

rm -rf build/docs
mkdir -p build/docs
doxygen scripts/docs/Doxyfile 2>build/docs/warnings || fail "$(cat build/docs/warnings)"
say "$root/build/docs/html/index.html"
