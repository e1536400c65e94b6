# Makes kest-player.1 of what kest-player --help prints; -v version=VERSION. A summary and a description come first,
# then "Usage:", then tables of options, whose rows are indented, then notes, which stand as they are.
function roff(text) {
  gsub(/\\/, "\\e", text)
  gsub(/-/, "\\-", text)
  sub(/^[.']/, "\\\\\\&&", text)
  return text
}
function option(term, text) { tables = tables ".TP\n\\fB" roff(term) "\\fR\n" roff(text) "\n" }

NR == 1 { summary = tolower(substr($0, 1, 1)) substr($0, 2); sub(/\.$/, "", summary); part = "description"; next }
/^Usage:/ { part = "synopsis"; sub(/^Usage:/, "      ") }
part == "synopsis" && /^  / { synopsis = synopsis (synopsis ? ".br\n" : "") roff(substr($0, 8)) "\n"; next }
part == "synopsis" && NF { part = "tables" }
part == "tables" && /^[^ ]/ && !/:$/ { part = "notes" }

part == "description" { description = description (NF ? roff($0) : ".PP") "\n" }
part == "tables" && /^  [^ ]/ {
  behind_term = match(substr($0, 3), /  +/) ? RSTART : length($0)
  term = substr($0, 3, behind_term - 1)
  text = substr($0, 2 + behind_term)
  sub(/^ +/, "", text)
  needs_text = text == ""
  if (!needs_text) option(term, text)
}
part == "tables" && /^   / {
  sub(/^ +/, "")
  if (needs_text) option(term, $0)
  else tables = tables roff($0) "\n"
  needs_text = 0
}
part == "notes" { notes = notes roff($0) "\n" }

END {
  printf ".TH KEST-PLAYER 1 \"\" \"kest %s\" \"User Commands\"\n", version
  printf ".SH NAME\nkest\\-player \\- %s\n.SH SYNOPSIS\n%s", roff(summary), synopsis
  printf ".SH DESCRIPTION\n%s.SH OPTIONS\n%s.SH NOTES\n.nf\n%s.fi\n", description, tables, notes
  print ".SH \"SEE ALSO\"\n\\fBkestctl\\fR(1)"
}
