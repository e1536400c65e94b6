#!/usr/bin/env bash
# package.sh [--check]: builds the Debian packages libkest1, libkest-dev and kest-tools into build/package/deb/.
# --check: also looks at them with lintian, installs them in a new Debian system in a directory, uses them there and
# removes them again. Needs root and the mirror that apt uses.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$root"

case ${1:-} in '' | --check) ;; *) fail "package.sh [--check]" ;; esac
need "${build_packages[@]}" dpkg-dev file
build package --preset release -B "$root/build/package" -DCMAKE_INSTALL_PREFIX=/usr -DKEST_BUILD_TESTS=OFF
packages=$root/build/package/deb
rm -rf "$packages"
cpack -G DEB --config build/package/CPackConfig.cmake -B "$packages" >build/package/cpack.log 2>&1 ||
  fail "$(cat build/package/cpack.log)"
rm -rf "$packages/_CPack_Packages"
say "$packages"/*.deb
[ $# -gt 0 ] || exit 0

need "${package_check_packages[@]}"
lintian --fail-on error,warning "$packages"/*.deb

system=$(mktemp -d)
remove_system() { as_root rm -rf "$system"; }
trap remove_system EXIT
say "Making a new system in $system ..."
. /etc/os-release
sources=(/etc/apt/sources.list.d/debian.sources /etc/apt/sources.list)
[ -s "${sources[0]}" ] || sources=("${sources[1]}")
as_root mmdebstrap --quiet --mode=root --variant=apt --architectures="$(dpkg --print-architecture)" \
  "$VERSION_CODENAME" "$system" "${sources[0]}" >build/package/system.log 2>&1 ||
  fail "$(tail -n 20 build/package/system.log)"
as_root mkdir "$system/try"
as_root cp "$packages"/*.deb tests/consumer/c/main.c /usr/share/sounds/alsa/Front_Center.wav \
  tests/install/use_packages.sh "$system/try"
as_root cp /etc/resolv.conf /etc/hosts "$system/etc"
as_root unshare --mount --pid --fork --kill-child sh -c \
  'mount -t proc proc "$1/proc" && exec chroot "$1" /try/use_packages.sh' sh "$system"
say "The packages can be installed, used and removed"
