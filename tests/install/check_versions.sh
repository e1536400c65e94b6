#!/bin/sh
# check_versions.sh DIRECTORY VERSION LAUNCHER...: every program in the directory says its name and version, and nothing
# else.
set -eu
directory=$1 version=$2
shift 2
[ -e "$directory/kest-player" ]
for program in "$directory"/*; do
  said=$("$@" "$program" --version 2>&1)
  [ "$said" = "${program##*/} $version" ] || { echo "$program --version says: $said"; exit 1; }
done
