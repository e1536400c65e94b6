#!/bin/sh
# Fails when a file includes a room that the list of floors in docs/architecture.md does not allow it. Checks the tree
# given as argument, this one without.
set -eu
cd "${1:-$(dirname "$0")/..}"

tops=$(sed -n '/^```floors$/,/^```$/ s,[/:].*,,p' docs/architecture.md | sort -u)
find $tops -name '*.h' -o -name '*.c' -o -name '*.cpp' |
  sort | xargs grep -H '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' |
  awk '
    # The longest listed folder that the path lies in, "" for none.
    function room(path) {
      while (sub("/[^/]*$", "", path)) if (path in listed) return path
      return ""
    }
    function complain(text) { print text; failed = 1 }

    FNR == NR && /^```floors$/ { inside = 1; next }
    FNR == NR && /^```$/ { inside = 0 }
    FNR == NR && inside {
      sub(":", "", $1)
      listed[$1] = 1
      for (i = 2; i <= NF; ++i) {
        if (!($i in listed) || $i == $1)
          complain("docs/architecture.md: " $1 " may not name " $i ", which does not stand above it")
        allowed[$1, $i] = 1
      }
    }
    FNR == NR { next }

    {
      file = substr($0, 1, index($0, ":") - 1)
      split($0, quoted, "\"")
      target = quoted[2] ~ /^ze_kest\// ? "include/" quoted[2] : quoted[2]
      from = room(file)
      to = room(target)
      ++includes
      if (from == "") complain(file ": lies in no room of docs/architecture.md")
      else if (to == "") complain(file ": \"" quoted[2] "\" lies in no room of docs/architecture.md")
      else if (from != to && to != "include/ze_kest" && !((from, to) in allowed))
        complain(file ": " from " may not include " to " (\"" quoted[2] "\")")
    }
    END {
      if (includes == 0) complain("no includes found")
      exit failed
    }
  ' docs/architecture.md -
