# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Usage: LC_ALL=C awk -f sh_messages.awk PROGRAM
#
# Prints every message of ostrafel-publish-redis, one a line, with %s for what the shell or printf
# fills in; without a place that is filled in before them. A text "${NAME:+TEXT}" gives two messages,
# with and without TEXT. Messages are the texts of
#   say, fail and a function that ends with it, in double quotes
#   printf, in single quotes, unless nothing but conversions is in them
#   print "!", NR, ... in awk
# and the first line of the usage text. For anything else that prints, the script fails.

/^[ \t]*#/ { next }
{ program = program $0 "\n" }

END {
  while (match(program, /(^|[\n;|&({ \t])(say|fail|put_a_line) "|printf '|print "!", NR, |Usage: [^\n]*|[\n ]echo /)) {
    kind = substr(program, RSTART, RLENGTH)
    program = substr(program, RSTART + RLENGTH)
    if (kind ~ /^Usage/) emit(kind)
    else if (kind ~ /echo/) fail("echo is no known way to print a message")
    else if (kind ~ /printf/) emit(until("'"))
    else if (kind ~ /NR/) emit(awk_text())
    else emit(shell_text())
  }
  if (!messages) fail("no message at all")
  exit failed
}

function fail(text) {
  print text >"/dev/stderr"
  failed = 2
}

function until(mark,    text) {
  text = substr(program, 1, index(program, mark) - 1)
  program = substr(program, length(text) + 2)
  return text
}

# The rest of a line of awk: texts, and names whose values are filled in. The dot at the end is not
# shown.
function awk_text(    line, result) {
  line = until("\n")
  result = ""
  while (match(line, /"[^"]*"|[a-z_]+/)) {
    result = result (substr(line, RSTART, 1) == "\"" ? substr(line, RSTART + 1, RLENGTH - 2) : "%s")
    line = substr(line, RSTART + RLENGTH)
  }
  if (!sub(/[.]$/, "", result)) fail("no dot at the end of: " result)
  return result
}

# The rest of a text in double quotes.
function shell_text(    result) {
  result = ""
  while (match(program, /^[^"$\\]+|^\\.|^\$[A-Za-z_]+|^\$[0-9]|^\$\{[a-z_]+:\+[^}]*\}|^\$\{[^}:]*\}/)) {
    piece = substr(program, 1, RLENGTH)
    program = substr(program, RLENGTH + 1)
    if (piece ~ /^\\/) piece = substr(piece, 2)
    else if (piece ~ /:\+/) piece = "\001" substr(piece, index(piece, "+") + 1, length(piece) - index(piece, "+") - 1) "\002"
    else if (piece ~ /^\$/) piece = "%s"
    result = result piece
  }
  if (substr(program, 1, 1) != "\"") fail("cannot read on after: " result)
  gsub(/\$[A-Za-z_]+/, "%s", result)
  return result
}

function emit(text,    lines, n, i, without) {
  ++messages
  if (text ~ /\001/) {
    without = text
    sub(/\001[^\002]*\002/, "", without)
    emit(without)
    gsub(/[\001\002]/, "", text)
  }
  gsub(/\\n/, "\n", text)
  n = split(text, lines, "\n")
  for (i = 1; i <= n; ++i) {
    sub(/^%s(, line %s)?: /, "", lines[i])
    gsub(/(%s)+/, "%s", lines[i])
    if (lines[i] ~ /[A-Za-z]/ && lines[i] !~ /^(%s)*$/) print lines[i]
  }
}
