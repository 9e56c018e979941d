# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Usage: awk -v folder=FOLDER -f blocks.awk DOCUMENT...
#
# Writes each literal block of the documents, in their order, to a file FOLDER/NNNN.text, and prints
# a line for it: NNNN, DOCUMENT:LINE, and the label above the block, with tabs between. Without a
# label the last field is empty. Blocks stand between fences, and in Markdown also after four
# spaces. A label is a comment: "<!-- WORD: VALUE -->", or "; WORD: VALUE" in the source of a manual
# page. One without a block makes the script fail.

function fail(text) {
  print where ": " text >"/dev/stderr"
  failed = 1
}

function begin_block() {
  text = sprintf("%s/%04d.text", folder, ++blocks)
  printf "" >text
  printf "%04d\t%s\t%s\n", blocks, where, label
  label = ""
}

{ where = FILENAME ":" FNR }

FNR == 1 {
  if (fence || label != "") fail("a block or a label was left open before this")
  manual = FILENAME ~ /\.scd/
  fence = indented = 0
  label = ""
  after_blank = 1
}

fence && /^\t?```$/ { fence = 0; close(text); next }
fence {
  if (manual) {
    sub(/^\t/, "")
    $0 = unescaped($0)
  }
  print >text
  next
}

!manual && /^    / && (indented || after_blank) {
  if (!indented) begin_block()
  indented = 1
  print substr($0, 5) >text
  next
}
/^$/ { after_blank = 1; next }
{ after_blank = indented = 0 }

/^\t?```/ { begin_block(); fence = 1; next }
label != "" { fail("the label above has no block") ; label = "" }
/^<!-- [a-z]+: .* -->$/ && !manual { label = substr($0, 6, length - 9) }
/^\t?; [a-z]+: / && manual { label = $0; sub(/^\t?; /, "", label) }

# In a manual page a backslash takes a character as it is, and CMake fills in names.
function unescaped(line,    result) {
  while (match(line, /\\./)) {
    result = result substr(line, 1, RSTART - 1) substr(line, RSTART + 1, 1)
    line = substr(line, RSTART + 2)
  }
  return result line
}

END {
  if (fence || label != "") fail("a block or a label is left open")
  exit failed
}
