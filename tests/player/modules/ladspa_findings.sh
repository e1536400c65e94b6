#!/bin/sh
# ladspa_findings.sh [--record] PLAYER MODULE LIST JOBS [GROUP...]: compares what kest-player --check finds in the LADSPA
# plug-ins of Debian's packages with LIST, JOBS plug-ins at a time; with GROUPs, by their tests only. --record writes LIST.
# A line of LIST is FILE:LABEL, the kind of filter that it is tested as unless that is Ladspa, then TEST=RESULT for each
# test that it does not pass, "sound" for none, or "refused" where MODULE takes it for no number of channels. The kinds
# are written by hand, and so is "untested", for a plug-in that takes minutes for a second of sound. How long a turn
# takes is the machine's affair and left out.
set -eu
record=
[ "$1" != --record ] || { record=1 && shift; }
player=$1 module=$2 list=$3 jobs=$4
shift 4
groups=${*:-Life Shapes Supply Bounds Accounting Metadata Result RealTime Parameters}
export player module list groups LC_ALL=C
unset LADSPA_PATH
packages="ladspa-sdk cmt swh-plugins"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

versions() { dpkg-query -W -f '# ${Package} ${Version}\n' $packages; }
plugins() {
  for file in $(dpkg -L $packages | grep '^/usr/lib/ladspa/.*\.so$'); do
    name=$(basename "$file" .so)
    analyseplugin -l "$file" | awk -v name="$name" '{ print name ":" $1 }'
  done
}
# The line of a plug-in, as a command of its own for xargs.
find_in_one='
kind=$(awk -v plugin="$0" '\''$1 == plugin && $2 ~ /^(Ladspa|untested)/ { print $2 }'\'' "$list")
[ "$kind" != untested ] || { echo "$0 untested"; exit; }
for group in $groups; do
  "$player" --check "$module:${kind:-Ladspa}" --module-config "$0" --seed 1 --time-limit 600 --only "$group" 2>&1 || true
done | awk -v plugin="$0${kind:+ $kind}" '\''
  $1 !~ /^[A-Z][A-Za-z]+\.[A-Z][A-Za-z]+$/ { next }
  { tests++ }
  /there is no instance/ { refused = 1 }
  $2 ~ /^(failed|crashed|warning)$/ && $1 != "RealTime.WorstTurn" { found = found " " $1 "=" $2 }
  END { print plugin (!tests ? " not tested" : refused ? " refused" : found ? found : " sound") }'\'
find_in_all() { plugins | xargs -P "$jobs" -n 1 sh -c "$find_in_one" | sort; }
# What LIST says of the tests of the groups.
listed() {
  awk -v groups=" $groups " '
    /^#/ { print; next }
    {
      line = $1
      found = 0
      for (i = 2; i <= NF; i++) {
        group = $i
        isTest = sub(/\..*/, "", group)
        if (isTest && !index(groups, " " group " ")) continue
        line = line " " $i
        found += isTest || $i !~ /^Ladspa/
      }
      print line (found ? "" : " sound")
    }' "$list"
}

{ versions; find_in_all; } >"$work/found"
if [ "$record" ]; then
  cp "$work/found" "$list"
else
  listed >"$work/listed"
  diff -u "$work/listed" "$work/found"
fi
