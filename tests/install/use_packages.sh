#!/bin/sh
# use_packages.sh: for scripts/package.sh, in a system of its own, as root. Installs the packages beside this script with
# nothing but what they depend on, uses each, and removes them: nothing of them may stay.
set -eu
cd "$(dirname "$0")"
export DEBIAN_FRONTEND=noninteractive
debug_dir=/mnt/vendor/tmp/kest
install() { apt-get install -y -qq --no-install-recommends "$@" >log 2>&1 || { cat log; exit 1; }; }

apt-get update -qq
install ./libkest1_*.deb ./kest-tools_*.deb
mkdir -p $debug_dir
kest-player --version
kestctl --version
kest-player Front_Center.wav -o played.wav --loop >summary &
player=$!
tries=0
until kestctl ls >listing 2>&1 && grep -q Mixer listing; do
  tries=$((tries + 1))
  [ $tries -lt 50 ] || { cat listing; exit 1; }
  sleep 0.2
done
kill $player
wait $player
cat listing summary
kest-player - -o streamed.wav --fast <Front_Center.wav
zcat /usr/share/man/man1/kest-player.1.gz /usr/share/man/man1/kestctl.1.gz | grep -q '^.TH KEST'

install ./libkest-dev_*.deb gcc libc6-dev pkg-config
cc -Wall -Werror main.c -o consumer $(pkg-config --cflags --libs kest)
./consumer
[ "$(pkg-config --variable=debugdir kest)" = $debug_dir/ ]
cp /usr/share/kest/starter/*.c .
cc -Wall -Werror -shared -fPIC my_filter.c -o my_filter.so $(pkg-config --cflags --libs kest) -lm
cc -Wall -Werror my_filter_test.c my_filter.c -o my_filter_test $(pkg-config --cflags --libs kest-harness) -lm
./my_filter_test
kest-player --inspect ./my_filter.so

dpkg -L libkest1 libkest-dev kest-tools | sort -u >installed
dpkg --purge libkest-dev kest-tools libkest1 >log
rm -rf /mnt/vendor
while read -r path; do
  [ -d "$path" ] || [ ! -e "$path" ] || { echo "$path was not removed"; exit 1; }
done <installed
left=$(find / -xdev \( -path /try -o -path /proc \) -prune -o -iname '*kest*' -print)
[ -z "$left" ] || { printf 'These were not removed:\n%s\n' "$left"; exit 1; }
! ldconfig -p | grep kest
