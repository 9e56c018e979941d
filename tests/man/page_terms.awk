# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Usage: LC_ALL=C awk -v section=NAME -f page_terms.awk
#
# Reads a page as man shows it on a terminal, where a character struck twice is bold and one with an
# underscore below it is underlined. Prints the terms of a section, one a line: the lines at the
# margin of the text that are all marked, with something indented below. A run of underlined
# characters stands for something that differs, and becomes %s.

function plain(text) {
  gsub(/.\b/, "", text)
  return text
}

# The text with %s for what is underlined; nothing when some of it is neither that nor bold.
function term(text,    result, rest) {
  result = ""
  rest = ""
  if (sub(/ \(without a line end\)$/, "", text)) rest = " (without a line end)"
  while (text != "") {
    if (match(text, /^(_\b[^_])+/)) {
      result = result "%s"
    } else if (match(text, /^(.\b.)+/)) {
      # One by one: an underlined character may follow.
      RLENGTH = 3
      result = result substr(text, 3, 1)
    } else if (match(text, /^ /)) {
      result = result " "
    } else {
      return ""
    }
    text = substr(text, RLENGTH + 1)
  }
  return result rest
}

/^[^ ]/ { is_wanted = plain($0) == section; waiting = ""; next }
!is_wanted || NF == 0 { next }
/^           / && waiting != "" { print waiting }
{ waiting = "" }
/^       [^ ]/ { waiting = term(substr($0, 8)) }
