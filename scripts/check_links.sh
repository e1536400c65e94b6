#!/bin/sh
# Fails when a document links to a file or a heading that does not exist. Checks the tree given as argument, this one
# without.
set -eu
cd "${1:-$(dirname "$0")/..}"

documents=$(find . \( -path ./build -o -name .git \) -prune -o -name '*.md' -print | sed 's,^\./,,' | sort)
[ -n "$documents" ] || { echo "There are no documents in $PWD"; exit 1; }

# DOCUMENT HEADING, as the name by which links know it.
headings() {
  awk '
    FNR == 1 { inside = 0 }
    /^```/ { inside = !inside }
    !inside && /^#+ / {
      name = tolower($0)
      sub(/^#+ /, "", name)
      gsub(/[^a-z0-9_ -]/, "", name)
      gsub(/ /, "-", name)
      print FILENAME " " name
    }' $documents
}

# DOCUMENT TARGET HEADING of every link within the tree; what is missing of target and heading is "-".
links() {
  awk '
    FNR == 1 { inside = 0 }
    /^```/ { inside = !inside }
    inside || /^    / { next }
    {
      gsub(/`[^`]*`/, "")
      while (match($0, /\]\([^)]*\)/)) {
        target = substr($0, RSTART + 2, RLENGTH - 3)
        $0 = substr($0, RSTART + RLENGTH)
        if (target ~ /^[a-z]+:/) continue
        heading = "-"
        if (at = index(target, "#")) {
          heading = substr(target, at + 1)
          target = substr(target, 1, at - 1)
        }
        print FILENAME " " (target == "" ? "-" : target) " " heading
      }
    }' $documents
}

known=$(headings)
faults=$(links | while read -r document target heading; do
  path=$document
  [ "$target" = - ] || path=$(realpath -m --relative-to=. "$(dirname "$document")/$target")
  if [ ! -e "$path" ]; then
    echo "$document: there is no $target"
  elif [ "$heading" != - ] && ! printf '%s\n' "$known" | grep -qxF "$path $heading"; then
    echo "$document: $path has no heading $heading"
  fi
done)
[ -z "$faults" ] || { printf '%s\n' "$faults"; exit 1; }
