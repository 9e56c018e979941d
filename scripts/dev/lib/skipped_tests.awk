# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# Lists, from a report that ctest writes in JUnit's form, the tests that were skipped, each with the
# reason: what GoogleTest prints after "Skipped", what a test in shell prints after "# SKIP", or what
# ctest itself says. Of a test in shell that ran, the checks that it skipped are listed; of a suite of
# GoogleTest's, its tests by their names.

function attribute(name,   found) {
  if (!match($0, " " name "=\"[^\"]*\"")) return ""
  found = substr($0, RSTART, RLENGTH)
  return decoded(substr(found, length(name) + 4, length(found) - length(name) - 4))
}

function decoded(text) {
  gsub(/&lt;/, "<", text)
  gsub(/&gt;/, ">", text)
  gsub(/&quot;/, "\"", text)
  gsub(/&apos;/, "'", text)
  gsub(/&amp;/, "\\&", text)
  return text
}

# Prints words in lines of up to 76 columns, each after INDENT.
function fold_words(text, indent,   words, count, i, line) {
  count = split(text, words, " ")
  line = indent words[1]
  for (i = 2; i <= count; ++i) {
    if (length(line) + length(words[i]) < 76) line = line " " words[i]
    else {
      print line
      line = indent words[i]
    }
  }
  print line
}

function add_reason(reason) { reasons[++reason_count] = reason }

/^[ \t]*<testcase / {
  name = attribute("name")
  skipped = attribute("status") == "notrun"
  reason_count = in_output = 0
  message = ""
}

/^[ \t]*<skipped / { message = attribute("message") }

/<system-out>/ {
  in_output = 1
  in_reason = 0
  sub(/.*<system-out>/, "")
}

in_output {
  line = decoded($0)
  sub(/<\/system-out>.*/, "", line)
  if (line ~ /^ok - everything # SKIP /) {
    sub(/^[^#]*# SKIP /, "", line)
    add_reason(line)
  } else if (line ~ /^ok - .* # SKIP /) {
    sub(/^ok - /, "", line)
    sub(/ # SKIP /, ": ", line)
    add_reason(line)
  } else if (in_reason) {
    if (line ~ /^$|^\[/) in_reason = 0
    else if (in_reason++ == 1) add_reason(running ": " line)
    else reasons[reason_count] = reasons[reason_count] " " line
  } else if (sub(/^\[ RUN +\] /, "", line)) running = line
  else if (line ~ /: Skipped$/) in_reason = 1
}

/<\/system-out>/ { in_output = 0 }

/^[ \t]*<\/testcase>/ {
  if (skipped && !reason_count) add_reason(message == "" ? "ctest did not run it" : message)
  if (reason_count) print "  " substr(name, 1, 66) (skipped ? "" : ", in part")
  for (i = 1; i <= reason_count; ++i) fold_words(reasons[i], "      ")
}
