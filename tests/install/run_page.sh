#!/bin/sh
# run_page.sh PAGE PREFIX DIRECTORY: types the commands of PAGE, those between "```sh" and "```", as they are, into a
# shell with PREFIX in its environment, in the empty DIRECTORY. Those of a block "```sh live" begin a process in the
# background; the next one waits until a filter of it runs, and it is ended after the last one.
set -eu
page=$1 PREFIX=$2 directory=$3
export PREFIX
rm -rf "$directory"
mkdir -p "$directory"
cd "$directory"
awk '
  /^```sh/ { inside = 1; live = /live/; next }
  /^```/ && inside { if (live) print "kill $!; wait $!"; inside = 0; next }
  inside { print }
  inside && /&$/ { print "until \"$PREFIX\"/bin/kestctl ls 2>&1 | grep RUN; do sleep 0.1; done" }
' "$page" >commands.sh
[ -s commands.sh ] || { echo "$page has no commands"; exit 1; }
sh -eux commands.sh
